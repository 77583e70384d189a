#include "layers/raster/ComposeFields.h"
#include "layers/raster/SplitFields.h"

#include "layers/raster/Mask.h"

#include "tests/support/LiteralMap.h"
#include "tests/support/Masks.h"

#include <QtTest>

using raster::BitFieldRaster;
using raster::FlaggedMask;
using raster::FlagMask;

class AreaFieldsTest : public QObject
{
    Q_OBJECT

private slots:
    void theTopLeftPixelIsInTheLastRowsHighestField();
    void flagsOfOverlappingMasksAreOred();
    void everyIndexButZeroIsSet();
    void masksWithoutFlagsOfAKindStayOutOfItsSection();
    void pixelsOutsideAMaskAreClear();
    void pixelsOfALargerMaskThatHaveNoPlaceAreLeftOut();
    void theRemainderOfARowIsLeftOut();
    void flagsAboveTheBitCountAreLeftOut();
    void rastersWithoutWordsStayEmpty();
    void fieldsAreComposedLikeTheLiteralOnes_data();
    void fieldsAreComposedLikeTheLiteralOnes();

    void flagsComeInTheOrderOfTheirFirstPixels();
    void combinedFlagsAreSplit();
    void flagsBehindTheKnownOnesAreIgnored_data();
    void flagsBehindTheKnownOnesAreIgnored();
    void missingWordsCountAsClear();
    void masksHaveTheGreyTable();
    void rowsNarrowerThanAWordHoldNothing();
    void fieldsAreSplitLikeTheLiteralOnes_data();
    void fieldsAreSplitLikeTheLiteralOnes();
    void composedFieldsSplitIntoTheirFlags();
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

QVector<FlagMask> Split(const QVector<quint32>& words, int bits, QSize size, int flagCount)
{
    return raster::SplitFields({words.constData(), words.size(), bits, size}, flagCount);
}

QImage FullMask(QSize size)
{
    QImage mask = raster::BlankMask(size);
    mask.fill(255);
    return mask;
}

QSize RandomSize(Random& random)
{
    // Now and then longer than the chunks, and higher than the bands, in which masks are looked at.
    return {random.Between(1, random.Below(4) == 0 ? 300 : 70),
            random.Between(1, random.Below(4) == 0 ? 150 : 12)};
}

QVector<FlaggedMask> RandomMasks(Random& random, QSize size)
{
    QVector<FlaggedMask> masks;
    for (int count = random.Below(6); count > 0; --count) {
        const QSize maskSize = random.Below(3) == 0 ? RandomSize(random) : size;
        const quint32 usages = random.Below(3) == 0 ? 0 : random.Bits() & random.Bits();
        const quint32 values = random.Below(3) == 0 ? 0 : random.Bits() & random.Bits();
        masks.append({RandomMask(random, maskSize), usages, values});
    }
    return masks;
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

void AreaFieldsTest::theTopLeftPixelIsInTheLastRowsHighestField()
{
    QImage mask = raster::BlankMask({8, 3});
    mask.scanLine(0)[0] = raster::MaskSet;
    BitFieldRaster usages(8, 8, 3);
    BitFieldRaster values(4, 8, 3);
    raster::ComposeFields({{mask, 1, 2}}, usages, values);
    QCOMPARE(WordsOf(usages), (QVector<quint32>{0, 0, 0, 0, 0x01000000, 0}));
    QCOMPARE(WordsOf(values), (QVector<quint32>{0, 0, 0x20000000}));
}

void AreaFieldsTest::flagsOfOverlappingMasksAreOred()
{
    BitFieldRaster usages(4, 8, 1);
    BitFieldRaster values(1, 8, 1);
    raster::ComposeFields({{MaskFromArt({"##......"}), 1, 0}, {MaskFromArt({".##....."}), 4, 0}},
                          usages, values);
    QCOMPARE(WordsOf(usages), QVector<quint32>{0x15400000});
}

void AreaFieldsTest::everyIndexButZeroIsSet()
{
    QImage mask = raster::BlankMask({4, 1});
    mask.scanLine(0)[1] = 1;
    mask.scanLine(0)[2] = 254;
    BitFieldRaster usages(8, 4, 1);
    BitFieldRaster values(8, 4, 1);
    raster::ComposeFields({{mask, 3, 5}}, usages, values);
    QCOMPARE(WordsOf(usages), QVector<quint32>{0x00030300});
    QCOMPARE(WordsOf(values), QVector<quint32>{0x00050500});
}

void AreaFieldsTest::masksWithoutFlagsOfAKindStayOutOfItsSection()
{
    BitFieldRaster usages(32, 2, 1);
    BitFieldRaster values(32, 2, 1);
    raster::ComposeFields({{FullMask({2, 1}), 0, 7}, {FullMask({2, 1}), 0, 0}}, usages, values);
    QCOMPARE(WordsOf(usages), (QVector<quint32>{0, 0}));
    QCOMPARE(WordsOf(values), (QVector<quint32>{7, 7}));
}

void AreaFieldsTest::pixelsOutsideAMaskAreClear()
{
    BitFieldRaster usages(8, 8, 2);
    BitFieldRaster values(1, 8, 2);
    raster::ComposeFields({{FullMask({3, 1}), 1, 0}, {QImage(), 2, 0}}, usages, values);
    QCOMPARE(WordsOf(usages), (QVector<quint32>{0, 0, 0x01010100, 0}));
}

void AreaFieldsTest::pixelsOfALargerMaskThatHaveNoPlaceAreLeftOut()
{
    BitFieldRaster usages(16, 2, 1);
    BitFieldRaster values(16, 2, 1);
    raster::ComposeFields({{FullMask({5, 4}), 1, 2}}, usages, values);
    QCOMPARE(WordsOf(usages), QVector<quint32>{0x00010001});
    QCOMPARE(WordsOf(values), QVector<quint32>{0x00020002});
}

void AreaFieldsTest::theRemainderOfARowIsLeftOut()
{
    // Of 7 pixels 4 have a place in the usages and 6 in the values.
    BitFieldRaster usages(8, 7, 2);
    BitFieldRaster values(16, 7, 2);
    raster::ComposeFields({{FullMask({7, 2}), 1, 1}}, usages, values);
    QCOMPARE(WordsOf(usages), (QVector<quint32>{0x01010101, 0x01010101}));
    QCOMPARE(WordsOf(values), QVector<quint32>(6, 0x00010001));
}

void AreaFieldsTest::flagsAboveTheBitCountAreLeftOut()
{
    BitFieldRaster usages(2, 16, 1);
    BitFieldRaster values(2, 16, 1);
    raster::ComposeFields({{FullMask({16, 1}), 0xFFFFFFFC, 0xFFFFFFFE}}, usages, values);
    QCOMPARE(WordsOf(usages), QVector<quint32>{0});
    QCOMPARE(WordsOf(values), QVector<quint32>{0xAAAAAAAA});
}

void AreaFieldsTest::rastersWithoutWordsStayEmpty()
{
    BitFieldRaster none(0, 8, 2);
    BitFieldRaster values(4, 8, 2);
    raster::ComposeFields({{FullMask({8, 2}), 1, 2}}, none, values);
    QCOMPARE(none.WordCount(), qint64(0));
    QCOMPARE(WordsOf(values), (QVector<quint32>{0x22222222, 0x22222222}));
    BitFieldRaster alsoNone(0, 8, 2);
    raster::ComposeFields({{FullMask({8, 2}), 1, 2}}, none, alsoNone);
    QCOMPARE(alsoNone.WordCount(), qint64(0));
}

void AreaFieldsTest::fieldsAreComposedLikeTheLiteralOnes_data()
{
    AddBitCounts();
}

void AreaFieldsTest::fieldsAreComposedLikeTheLiteralOnes()
{
    QFETCH(int, bits);
    Random random;
    for (int i = 0; i < 60; ++i) {
        const QSize size = RandomSize(random);
        const int valueBits = 1 << random.Below(6);
        const QVector<FlaggedMask> masks = RandomMasks(random, size);
        BitFieldRaster usages(bits, size.width(), size.height());
        BitFieldRaster values(valueBits, size.width(), size.height());
        raster::ComposeFields(masks, usages, values);
        QVector<QImage> images;
        QVector<quint32> usageFlags;
        QVector<quint32> valueFlags;
        for (const FlaggedMask& mask : masks) {
            images.append(mask.mask);
            usageFlags.append(mask.usageFlags);
            valueFlags.append(mask.valueFlags);
        }
        QCOMPARE(WordsOf(usages), literal::SectionWords(images, usageFlags, bits, size));
        QCOMPARE(WordsOf(values), literal::SectionWords(images, valueFlags, valueBits, size));
    }
}

void AreaFieldsTest::flagsComeInTheOrderOfTheirFirstPixels()
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

void AreaFieldsTest::combinedFlagsAreSplit()
{
    const QVector<FlagMask> masks = Split({0x00050500}, 8, {4, 1}, 3);
    QCOMPARE(masks.size(), 2);
    QCOMPARE(masks.at(0).flag, 0);
    QCOMPARE(masks.at(1).flag, 2);
    QCOMPARE(ArtFromMask(masks.at(0).mask), QStringList{".##."});
    QCOMPARE(ArtFromMask(masks.at(1).mask), QStringList{".##."});
}

void AreaFieldsTest::flagsBehindTheKnownOnesAreIgnored_data()
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

void AreaFieldsTest::flagsBehindTheKnownOnesAreIgnored()
{
    QFETCH(int, flagCount);
    QFETCH(int, found);
    const QVector<FlagMask> masks = Split({0xFFFFFFFF}, 32, {1, 1}, flagCount);
    QCOMPARE(masks.size(), found);
    for (int i = 0; i < found; ++i) {
        QCOMPARE(masks.at(i).flag, i);
    }
}

void AreaFieldsTest::missingWordsCountAsClear()
{
    // The second file row, the top one of the image, lacks its second word.
    const QVector<FlagMask> masks = Split({0x01010101, 0x01010101, 0x01010101}, 8, {8, 3}, 1);
    QCOMPARE(masks.size(), 1);
    QCOMPARE(ArtFromMask(masks.at(0).mask), (QStringList{"........", "####....", "########"}));
    QVERIFY(Split({}, 8, {8, 3}, 1).isEmpty());
}

void AreaFieldsTest::masksHaveTheGreyTable()
{
    const QImage mask = Split({1}, 32, {1, 1}, 1).at(0).mask;
    QCOMPARE(mask.format(), QImage::Format_Indexed8);
    QCOMPARE(mask.colorTable(), raster::GreyTable());
}

void AreaFieldsTest::rowsNarrowerThanAWordHoldNothing()
{
    QVERIFY(Split({}, 8, {3, 5}, 8).isEmpty());
}

void AreaFieldsTest::fieldsAreSplitLikeTheLiteralOnes_data()
{
    AddBitCounts();
}

void AreaFieldsTest::fieldsAreSplitLikeTheLiteralOnes()
{
    QFETCH(int, bits);
    Random random;
    for (int i = 0; i < 40; ++i) {
        const QSize size = RandomSize(random);
        const qint64 fullCount = BitFieldRaster(bits, size.width(), size.height()).WordCount();
        const qint64 count = random.Below(2) == 0 ? fullCount : random.Below(int(fullCount) + 1);
        const QVector<quint32> words = RandomWords(random, count);
        const int flagCount = random.Below(33);
        const QVector<FlagMask> masks = Split(words, bits, size, flagCount);
        const auto expected = literal::SplitSection(words, bits, size, flagCount);
        QCOMPARE(masks.size(), expected.size());
        for (int m = 0; m < masks.size(); ++m) {
            QCOMPARE(masks.at(m).flag, expected.at(m).flag);
            QCOMPARE(masks.at(m).mask, expected.at(m).image);
        }
    }
}

void AreaFieldsTest::composedFieldsSplitIntoTheirFlags()
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

QTEST_GUILESS_MAIN(AreaFieldsTest)

#include "tst_AreaFields.moc"
