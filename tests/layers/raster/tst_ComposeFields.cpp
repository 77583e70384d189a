#include "layers/raster/ComposeFields.h"

#include "layers/raster/Mask.h"

#include "tests/support/LiteralMap.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"

#include <QtTest>

using raster::BitFieldRaster;
using raster::FlaggedMask;

class tst_ComposeFields : public QObject
{
    Q_OBJECT

private slots:
    void TheTopLeftPixelIsInTheLastRowsHighestField();
    void FlagsOfOverlappingMasksAreOred();
    void EveryIndexButZeroIsSet();
    void MasksWithoutFlagsOfAKindStayOutOfItsSection();
    void PixelsOutsideAMaskAreClear();
    void PixelsOfALargerMaskThatHaveNoPlaceAreLeftOut();
    void TheRemainderOfARowIsLeftOut();
    void FlagsAboveTheBitCountAreLeftOut();
    void RastersWithoutWordsStayEmpty();
    void ClearMixedAndSetStretchesAreKeptApart_data();
    void ClearMixedAndSetStretchesAreKeptApart();
    void FieldsAreComposedLikeTheLiteralOnes_data();
    void FieldsAreComposedLikeTheLiteralOnes();
    void OneHugeSideTakesNoMoreMemoryThanTheMasks_data();
    void OneHugeSideTakesNoMoreMemoryThanTheMasks();
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

QSize RandomSize(Random& random)
{
    // Some masks are larger than the chunks and bands in which masks are read.
    return {random.Between(1, random.Below(4) == 0 ? 400 : 70),
            random.Between(1, random.Below(4) == 0 ? 150 : 12)};
}

QVector<FlaggedMask> RandomMasks(Random& random, QSize size)
{
    QVector<FlaggedMask> masks;
    for (int count = random.Below(6); count > 0; --count) {
        const QSize maskSize = random.Below(3) == 0 ? RandomSize(random) : size;
        const quint32 usages = random.Below(3) == 0 ? 0 : random.Bits() & random.Bits();
        const quint32 values = random.Below(3) == 0 ? 0 : random.Bits() & random.Bits();
        const bool isFull = random.Below(4) == 0;
        masks.append({isFull ? FullMask(maskSize) : RandomMask(random, maskSize), usages, values});
    }
    return masks;
}

} // namespace

void tst_ComposeFields::TheTopLeftPixelIsInTheLastRowsHighestField()
{
    QImage mask = raster::BlankMask({8, 3});
    mask.scanLine(0)[0] = raster::MaskSet;
    BitFieldRaster usages(8, 8, 3);
    BitFieldRaster values(4, 8, 3);
    raster::ComposeFields({{mask, 1, 2}}, usages, values);
    QCOMPARE(WordsOf(usages), (QVector<quint32>{0, 0, 0, 0, 0x01000000, 0}));
    QCOMPARE(WordsOf(values), (QVector<quint32>{0, 0, 0x20000000}));
}

void tst_ComposeFields::FlagsOfOverlappingMasksAreOred()
{
    BitFieldRaster usages(4, 8, 1);
    BitFieldRaster values(1, 8, 1);
    raster::ComposeFields({{MaskFromArt({"##......"}), 1, 0}, {MaskFromArt({".##....."}), 4, 0}},
                          usages, values);
    QCOMPARE(WordsOf(usages), QVector<quint32>{0x15400000});
}

void tst_ComposeFields::EveryIndexButZeroIsSet()
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

void tst_ComposeFields::MasksWithoutFlagsOfAKindStayOutOfItsSection()
{
    BitFieldRaster usages(32, 2, 1);
    BitFieldRaster values(32, 2, 1);
    raster::ComposeFields({{FullMask({2, 1}), 0, 7}, {FullMask({2, 1}), 0, 0}}, usages, values);
    QCOMPARE(WordsOf(usages), (QVector<quint32>{0, 0}));
    QCOMPARE(WordsOf(values), (QVector<quint32>{7, 7}));
}

void tst_ComposeFields::PixelsOutsideAMaskAreClear()
{
    BitFieldRaster usages(8, 8, 2);
    BitFieldRaster values(1, 8, 2);
    raster::ComposeFields({{FullMask({3, 1}), 1, 0}, {QImage(), 2, 0}}, usages, values);
    QCOMPARE(WordsOf(usages), (QVector<quint32>{0, 0, 0x01010100, 0}));
}

void tst_ComposeFields::PixelsOfALargerMaskThatHaveNoPlaceAreLeftOut()
{
    BitFieldRaster usages(16, 2, 1);
    BitFieldRaster values(16, 2, 1);
    raster::ComposeFields({{FullMask({5, 4}), 1, 2}}, usages, values);
    QCOMPARE(WordsOf(usages), QVector<quint32>{0x00010001});
    QCOMPARE(WordsOf(values), QVector<quint32>{0x00020002});
}

void tst_ComposeFields::TheRemainderOfARowIsLeftOut()
{
    // The usages hold 4 of 7 pixels, the values 6.
    BitFieldRaster usages(8, 7, 2);
    BitFieldRaster values(16, 7, 2);
    raster::ComposeFields({{FullMask({7, 2}), 1, 1}}, usages, values);
    QCOMPARE(WordsOf(usages), (QVector<quint32>{0x01010101, 0x01010101}));
    QCOMPARE(WordsOf(values), QVector<quint32>(6, 0x00010001));
}

void tst_ComposeFields::FlagsAboveTheBitCountAreLeftOut()
{
    BitFieldRaster usages(2, 16, 1);
    BitFieldRaster values(2, 16, 1);
    raster::ComposeFields({{FullMask({16, 1}), 0xFFFFFFFC, 0xFFFFFFFE}}, usages, values);
    QCOMPARE(WordsOf(usages), QVector<quint32>{0});
    QCOMPARE(WordsOf(values), QVector<quint32>{0xAAAAAAAA});
}

void tst_ComposeFields::RastersWithoutWordsStayEmpty()
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

void tst_ComposeFields::ClearMixedAndSetStretchesAreKeptApart_data()
{
    AddBitCounts();
}

void tst_ComposeFields::ClearMixedAndSetStretchesAreKeptApart()
{
    QFETCH(int, bits);
    // Each row is a different sequence of clear, mixed and set stretches, with a shorter one at its
    // end.
    constexpr int stretch = 128;
    constexpr int stretches = 4;
    const QSize size(stretches * stretch + 40, 81);
    QImage mask = FullMask(size);
    for (int y = 0; y < size.height(); ++y) {
        uchar* pixels = mask.scanLine(y);
        for (int i = 0, kinds = y; i < stretches; ++i, kinds /= 3, pixels += stretch) {
            if (kinds % 3 == 0) {
                std::fill_n(pixels, stretch, raster::MaskClear);
            } else if (kinds % 3 == 1) {
                pixels[y] = raster::MaskClear;
            }
        }
    }
    // The rasters are larger than the mask.
    const QSize rasterSize(size.width() + 300, size.height() + 70);
    BitFieldRaster usages(bits, rasterSize.width(), rasterSize.height());
    BitFieldRaster values(32, rasterSize.width(), rasterSize.height());
    raster::ComposeFields({{mask, 1, 0x80000001}}, usages, values);
    QCOMPARE(WordsOf(usages), literal::SectionWords({mask}, {1}, bits, rasterSize));
    QCOMPARE(WordsOf(values), literal::SectionWords({mask}, {0x80000001}, 32, rasterSize));
}

void tst_ComposeFields::FieldsAreComposedLikeTheLiteralOnes_data()
{
    AddBitCounts();
}

void tst_ComposeFields::FieldsAreComposedLikeTheLiteralOnes()
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

void tst_ComposeFields::OneHugeSideTakesNoMoreMemoryThanTheMasks_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("bits");
    for (const int bits : {1, 32}) {
        const QByteArray name = ", " + QByteArray::number(bits) + " bits";
        QTest::newRow(("highest" + name).constData()) << QSize(1, 2147483647) << bits;
        QTest::newRow(("widest" + name).constData()) << QSize(2147483647, 1) << bits;
        QTest::newRow(("wide" + name).constData()) << QSize(1000000000, 1) << bits;
    }
}

void tst_ComposeFields::OneHugeSideTakesNoMoreMemoryThanTheMasks()
{
    QFETCH(QSize, size);
    QFETCH(int, bits);
#ifdef __SANITIZE_ADDRESS__
    if (bits == 32) {
        return; // The sanitizer marks every byte of the words.
    }
#endif
    const quint64 before = ResidentMemory();
    BitFieldRaster usages(bits, size.width(), size.height());
    BitFieldRaster values(0, size.width(), size.height());
    if (!usages.IsValid()) {
        return; // This machine has no address space for so many words.
    }
    raster::ComposeFields({{FullMask({200, 300}), 1, 1}}, usages, values);
    QVERIFY(ResidentMemory() < before + (100 << 20));
    QCOMPARE(usages.Get(0, size.height() - 1), usages.WordCount() > 0 ? 1U : 0U);
    QCOMPARE(usages.Get(200, size.height() - 1), 0U);
}

QTEST_GUILESS_MAIN(tst_ComposeFields)

#include "tst_ComposeFields.moc"
