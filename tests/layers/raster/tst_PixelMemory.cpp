#include "layers/raster/PixelMemory.h"

#include "layers/raster/Mask.h"
#include "layers/raster/SetOperations.h"

#include "tests/support/MemoryLimit.h"

#include <QtTest>

#include <algorithm>
#include <cstring>
#include <limits>

using raster::PixelMemory;

class tst_PixelMemory : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void ZeroedMemoryIsZero_data();
    void ZeroedMemoryIsZero();
    void IsEmptyWhereThereIsNoMemory();
    void TheLastBlockIsKeptForTheNextOfItsSize();
    void AnotherSizeTakesThePlaceOfTheKeptBlock();
    void ResultsAreKeptUpToTheSizeOfADenseWorld_data();
    void ResultsAreKeptUpToTheSizeOfADenseWorld();
};

namespace {

constexpr std::size_t Mebibyte = std::size_t(1) << 20;

/// How much more memory exists than there did.
qint64 GrowthSince(quint64 before)
{
    return static_cast<qint64>(ResidentMemory()) - static_cast<qint64>(before);
}

void ReleaseWritten(std::size_t byteCount)
{
    const PixelMemory memory = PixelMemory::Unfilled(byteCount);
    std::memset(memory.As<char>(), 1, byteCount);
}

} // namespace

/// Leaves no more than a mebibyte kept.
void tst_PixelMemory::cleanup()
{
    PixelMemory::Unfilled(Mebibyte);
}

void tst_PixelMemory::ZeroedMemoryIsZero_data()
{
    QTest::addColumn<int>("byteCount");
    QTest::newRow("small") << 100000;
    QTest::newRow("pages") << int(5 * Mebibyte + 7);
    QTest::newRow("as large as what is kept") << int(40 * Mebibyte);
}

void tst_PixelMemory::ZeroedMemoryIsZero()
{
    QFETCH(int, byteCount);
    const auto count = static_cast<std::size_t>(byteCount);
    ReleaseWritten(count);
    const PixelMemory memory = PixelMemory::Zeroed(count);
    QVERIFY(!memory.IsEmpty());
    const auto* bytes = memory.As<char>();
    QVERIFY(std::all_of(bytes, bytes + count, [](char byte) { return byte == 0; }));
}

void tst_PixelMemory::IsEmptyWhereThereIsNoMemory()
{
    QVERIFY(PixelMemory().IsEmpty());
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    for (const std::size_t byteCount : {most / 4, most / 2, most}) {
        QVERIFY(PixelMemory::Zeroed(byteCount).IsEmpty());
        QVERIFY(PixelMemory::Unfilled(byteCount).IsEmpty());
    }
}

void tst_PixelMemory::TheLastBlockIsKeptForTheNextOfItsSize()
{
    uchar* bytes = nullptr;
    {
        const PixelMemory first = PixelMemory::Unfilled(40 * Mebibyte);
        bytes = first.As<uchar>();
        bytes[12345] = 67;
    }
    const PixelMemory again = PixelMemory::Unfilled(40 * Mebibyte);
    QCOMPARE(again.As<uchar>(), bytes);
    QCOMPARE(bytes[12345], uchar(67));
    const PixelMemory other = PixelMemory::Unfilled(40 * Mebibyte);
    QVERIFY(other.As<uchar>() != bytes);
}

void tst_PixelMemory::AnotherSizeTakesThePlaceOfTheKeptBlock()
{
#ifdef __SANITIZE_ADDRESS__
    return; // The sanitizer keeps what was freed for a while.
#endif
    const quint64 before = ResidentMemory();
    ReleaseWritten(64 * Mebibyte);
    QVERIFY(GrowthSince(before) > qint64(60 * Mebibyte));
    ReleaseWritten(40 * Mebibyte);
    QVERIFY(GrowthSince(before) < qint64(50 * Mebibyte));
}

void tst_PixelMemory::ResultsAreKeptUpToTheSizeOfADenseWorld_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("a dense world") << QSize(8192, 8192) << true;
    QTest::newRow("one row more") << QSize(8192, 8193) << false;
}

void tst_PixelMemory::ResultsAreKeptUpToTheSizeOfADenseWorld()
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
    QCOMPARE(GrowthSince(before) > qint64(16 * Mebibyte), isKept);
}

QTEST_APPLESS_MAIN(tst_PixelMemory)

#include "tst_PixelMemory.moc"
