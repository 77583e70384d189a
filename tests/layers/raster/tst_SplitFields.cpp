#include "layers/raster/SplitFields.h"

#include "layers/raster/BitFieldRaster.h"
#include "layers/raster/ComposeFields.h"
#include "layers/raster/Mask.h"

#include "tests/support/LiteralMap.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"

#include <QtTest>

using raster::BitFieldRaster;
using raster::FlagMask;
using raster::SplitResult;

class tst_SplitFields : public QObject
{
    Q_OBJECT

private slots:
    void FlagsComeInTheOrderOfTheirFirstPixels();
    void CombinedFlagsAreSplit();
    void FlagsBehindTheKnownOnesAreIgnored_data();
    void FlagsBehindTheKnownOnesAreIgnored();
    void MissingWordsCountAsClear();
    void MasksHaveTheGreyTable();
    void RowsNarrowerThanAWordHoldNothing();
    void FieldsAreSplitLikeTheLiteralOnes_data();
    void FieldsAreSplitLikeTheLiteralOnes();
    void ComposedFieldsSplitIntoTheirFlags();
    void WordsBehindTheLastRowAreIgnored();
    void MasksWithoutMemoryAreCounted();
};

namespace {

void AddBitCounts()
{
    QTest::addColumn<int>("bits");
    for (const int bits : {1, 2, 4, 8, 16, 32}) {
        QTest::newRow(QByteArray::number(bits).constData()) << bits;
    }
}

QVector<quint32> WordsOf(const BitFieldRaster& raster)
{
    return {raster.Words(), raster.Words() + raster.WordCount()};
}

/// The words in blocks of at most blockSize.
SplitResult SplitBlocks(const QVector<quint32>& words, int blockSize, int bits, QSize size,
                        int flagCount)
{
    int used = 0;
    const auto nextWords = [&]() -> raster::WordBlock {
        const quint32* block = words.constData() + used;
        const int count = qMin(blockSize, words.size() - used);
        used += count;
        return {block, count};
    };
    return raster::SplitFields({nextWords, bits, size}, flagCount);
}

QVector<FlagMask> Split(const QVector<quint32>& words, int bits, QSize size, int flagCount)
{
    return SplitBlocks(words, qMax(words.size(), 1), bits, size, flagCount).masks;
}

QSize RandomSize(Random& random)
{
    // Sometimes longer than the chunks in which words are read.
    return {random.Between(1, random.Below(4) == 0 ? 300 : 70), random.Between(1, 12)};
}

QVector<quint32> RandomWords(Random& random, qint64 count)
{
    QVector<quint32> words;
    const int clearShare = random.Below(5);
    for (qint64 i = 0; i < count; ++i) {
        words.append(random.Below(5) < clearShare ? 0 : random.Bits() & random.Bits());
    }
    return words;
}

} // namespace

void tst_SplitFields::FlagsComeInTheOrderOfTheirFirstPixels()
{
    // Two rows of two pixels: the bottom row is the first of the file.
    const QVector<FlagMask> masks = Split({0x00000006, 0x00000009, 0x00000011, 0}, 32, {2, 2}, 8);
    QVector<int> flags;
    for (const FlagMask& mask : masks) {
        flags.append(mask.flag);
    }
    QCOMPARE(flags, (QVector<int>{1, 2, 0, 3, 4}));
    QCOMPARE(ArtFromMask(masks.at(0).mask), (QStringList{"..", "#."}));
    QCOMPARE(ArtFromMask(masks.at(1).mask), (QStringList{"..", "#."}));
    QCOMPARE(ArtFromMask(masks.at(2).mask), (QStringList{"#.", ".#"}));
    QCOMPARE(ArtFromMask(masks.at(3).mask), (QStringList{"..", ".#"}));
    QCOMPARE(ArtFromMask(masks.at(4).mask), (QStringList{"#.", ".."}));
}

void tst_SplitFields::CombinedFlagsAreSplit()
{
    const QVector<FlagMask> masks = Split({0x00050500}, 8, {4, 1}, 3);
    QCOMPARE(masks.size(), 2);
    QCOMPARE(masks.at(0).flag, 0);
    QCOMPARE(masks.at(1).flag, 2);
    QCOMPARE(ArtFromMask(masks.at(0).mask), QStringList{".##."});
    QCOMPARE(ArtFromMask(masks.at(1).mask), QStringList{".##."});
}

void tst_SplitFields::FlagsBehindTheKnownOnesAreIgnored_data()
{
    QTest::addColumn<int>("flagCount");
    QTest::addColumn<int>("found");
    QTest::newRow("negative") << -1 << 0;
    QTest::newRow("0") << 0 << 0;
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("31") << 31 << 31;
    QTest::newRow("32") << 32 << 32;
    QTest::newRow("more than there are bits") << 40 << 32;
}

void tst_SplitFields::FlagsBehindTheKnownOnesAreIgnored()
{
    QFETCH(int, flagCount);
    QFETCH(int, found);
    const QVector<FlagMask> masks = Split({0xFFFFFFFF}, 32, {1, 1}, flagCount);
    QCOMPARE(masks.size(), found);
    for (int i = 0; i < found; ++i) {
        QCOMPARE(masks.at(i).flag, i);
    }
}

void tst_SplitFields::MissingWordsCountAsClear()
{
    // The second file row, the top one of the image, lacks its second word.
    const QVector<FlagMask> masks = Split({0x01010101, 0x01010101, 0x01010101}, 8, {8, 3}, 1);
    QCOMPARE(masks.size(), 1);
    QCOMPARE(ArtFromMask(masks.at(0).mask), (QStringList{"........", "####....", "########"}));
    QVERIFY(Split({}, 8, {8, 3}, 1).isEmpty());
}

void tst_SplitFields::MasksHaveTheGreyTable()
{
    const QImage mask = Split({1}, 32, {1, 1}, 1).at(0).mask;
    QCOMPARE(mask.format(), QImage::Format_Indexed8);
    QCOMPARE(mask.colorTable(), raster::GreyTable());
}

void tst_SplitFields::RowsNarrowerThanAWordHoldNothing()
{
    QVERIFY(Split({}, 8, {3, 5}, 8).isEmpty());
}

void tst_SplitFields::FieldsAreSplitLikeTheLiteralOnes_data()
{
    AddBitCounts();
}

void tst_SplitFields::FieldsAreSplitLikeTheLiteralOnes()
{
    QFETCH(int, bits);
    Random random;
    for (int i = 0; i < 40; ++i) {
        const QSize size = RandomSize(random);
        const qint64 fullCount = BitFieldRaster(bits, size.width(), size.height()).WordCount();
        const qint64 count = random.Below(2) == 0 ? fullCount : random.Below(int(fullCount) + 1);
        const QVector<quint32> words = RandomWords(random, count);
        const int flagCount = random.Below(33);
        const int blockSize = random.Between(1, random.Below(2) == 0 ? 5 : 1000);
        const QVector<FlagMask> masks = SplitBlocks(words, blockSize, bits, size, flagCount).masks;
        const auto expected = literal::SplitSection(words, bits, size, flagCount);
        QCOMPARE(masks.size(), expected.size());
        for (int m = 0; m < masks.size(); ++m) {
            QCOMPARE(masks.at(m).flag, expected.at(m).flag);
            QCOMPARE(masks.at(m).mask, expected.at(m).image);
        }
    }
}

void tst_SplitFields::ComposedFieldsSplitIntoTheirFlags()
{
    const QImage left = MaskFromArt({"####....", "..##...."});
    const QImage right = MaskFromArt({"....####", ".....#.."});
    BitFieldRaster usages(4, 8, 2);
    BitFieldRaster values(4, 8, 2);
    raster::ComposeFields({{left, 1, 8}, {right, 2, 4}}, usages, values);
    const QVector<FlagMask> usageMasks = Split(WordsOf(usages), 4, {8, 2}, 4);
    QCOMPARE(usageMasks.size(), 2);
    QCOMPARE(usageMasks.at(0).mask, left);
    QCOMPARE(usageMasks.at(1).mask, right);
    const QVector<FlagMask> valueMasks = Split(WordsOf(values), 4, {8, 2}, 4);
    QCOMPARE(valueMasks.size(), 2);
    QCOMPARE(valueMasks.at(0).flag, 3);
    QCOMPARE(valueMasks.at(1).flag, 2);
}

void tst_SplitFields::WordsBehindTheLastRowAreIgnored()
{
    const QVector<FlagMask> masks = Split({0x01000000, 0x00000001, 0x02020202}, 8, {4, 2}, 8);
    QCOMPARE(masks.size(), 1);
    QCOMPARE(ArtFromMask(masks.at(0).mask), (QStringList{"...#", "#..."}));
}

void tst_SplitFields::MasksWithoutMemoryAreCounted()
{
    const MemoryLimit limit(64 << 20);
    const SplitResult result = SplitBlocks({0xFFFF0003, 4}, 1, 32, {16384, 16384}, 8);
    QVERIFY(result.masks.isEmpty());
    QCOMPARE(result.missingCount, 3);
}

QTEST_GUILESS_MAIN(tst_SplitFields)

#include "tst_SplitFields.moc"
