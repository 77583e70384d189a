#include "layers/raster/LargeBlock.h"

#include "layers/raster/Mask.h"
#include "layers/raster/SetOperations.h"

#include "tests/support/MemoryLimit.h"

#include <QtTest>

#include <cstring>

using raster::LargeBlock;

class LargeBlockTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void theLastBlockIsKeptForTheNextOfItsSize();
    void anotherSizeTakesThePlaceOfTheKeptBlock();
    void resultsAreKeptUpToTheSizeOfADenseWorld_data();
    void resultsAreKeptUpToTheSizeOfADenseWorld();
};

namespace {

constexpr qint64 Mebibyte = qint64(1) << 20;

/// How much more memory exists than there did.
qint64 GrowthSince(quint64 before)
{
    return static_cast<qint64>(ResidentMemory()) - static_cast<qint64>(before);
}

LargeBlock* TakeFilled(qint64 byteCount)
{
    LargeBlock* block = LargeBlock::Take(byteCount);
    std::memset(block->Bytes(), 1, static_cast<std::size_t>(byteCount));
    return block;
}

} // namespace

/// Leaves no more than a mebibyte kept.
void LargeBlockTest::cleanup()
{
    LargeBlock::GiveBack(LargeBlock::Take(Mebibyte));
}

void LargeBlockTest::theLastBlockIsKeptForTheNextOfItsSize()
{
    LargeBlock* first = LargeBlock::Take(40 * Mebibyte);
    uchar* const bytes = first->Bytes();
    bytes[12345] = 67;
    LargeBlock::GiveBack(first);
    LargeBlock* again = LargeBlock::Take(40 * Mebibyte);
    QCOMPARE(again, first);
    QCOMPARE(again->Bytes(), bytes);
    QCOMPARE(bytes[12345], uchar(67));
    LargeBlock* other = LargeBlock::Take(40 * Mebibyte);
    QVERIFY(other != again);
    LargeBlock::GiveBack(again);
    LargeBlock::GiveBack(other);
}

void LargeBlockTest::anotherSizeTakesThePlaceOfTheKeptBlock()
{
#ifdef __SANITIZE_ADDRESS__
    return; // The sanitizer keeps what was freed for a while.
#endif
    const quint64 before = ResidentMemory();
    LargeBlock::GiveBack(TakeFilled(64 * Mebibyte));
    QVERIFY(GrowthSince(before) > 60 * Mebibyte);
    LargeBlock::GiveBack(TakeFilled(40 * Mebibyte));
    QVERIFY(GrowthSince(before) < 50 * Mebibyte);
}

void LargeBlockTest::resultsAreKeptUpToTheSizeOfADenseWorld_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("a dense world") << QSize(8192, 8192) << true;
    QTest::newRow("one row more") << QSize(8192, 8193) << false;
}

void LargeBlockTest::resultsAreKeptUpToTheSizeOfADenseWorld()
{
#ifdef __SANITIZE_ADDRESS__
    return; // The sanitizer keeps what was freed for a while.
#endif
    QFETCH(QSize, size);
    QFETCH(bool, isKept);
    const QImage mask = raster::BlankMask(size);
    const quint64 before = ResidentMemory();
    QVERIFY(!raster::Complement(mask).isNull());
    // Reading the mask makes no memory of it; a quarter of the smallest size is room for the rest.
    QCOMPARE(GrowthSince(before) > 16 * Mebibyte, isKept);
}

QTEST_APPLESS_MAIN(LargeBlockTest)

#include "tst_LargeBlock.moc"
