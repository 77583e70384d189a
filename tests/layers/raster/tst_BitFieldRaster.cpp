#include "layers/raster/BitFieldRaster.h"

#include <QSize>
#include <QtTest>

using raster::BitFieldRaster;

class tst_BitFieldRaster : public QObject
{
    Q_OBJECT

private slots:
    void NextPowerOfTwo_data();
    void NextPowerOfTwo();
    void BitCountsSayHowManyPixelsShareAWord_data();
    void BitCountsSayHowManyPixelsShareAWord();
    void OtherBitCountsHaveNoWords_data();
    void OtherBitCountsHaveNoWords();
    void EmptySizesHaveNoWords_data();
    void EmptySizesHaveNoWords();
    void SizesBeyondAllMemoryAreInvalid();
    void TheLeftmostPixelIsInTheHighestField_data();
    void TheLeftmostPixelIsInTheHighestField();
    void BitsBesideTheFieldAreCutOff_data();
    void BitsBesideTheFieldAreCutOff();
    void EveryFieldIsOnItsOwn_data();
    void EveryFieldIsOnItsOwn();
    void PlacesOutsideAreZero_data();
    void PlacesOutsideAreZero();
};

void tst_BitFieldRaster::NextPowerOfTwo_data()
{
    QTest::addColumn<quint32>("number");
    QTest::addColumn<quint32>("power");
    QTest::newRow("0") << 0U << 0U;
    QTest::newRow("1") << 1U << 1U;
    QTest::newRow("2") << 2U << 2U;
    QTest::newRow("3") << 3U << 4U;
    QTest::newRow("4") << 4U << 4U;
    QTest::newRow("5") << 5U << 8U;
    QTest::newRow("8") << 8U << 8U;
    QTest::newRow("9") << 9U << 16U;
    QTest::newRow("16") << 16U << 16U;
    QTest::newRow("17") << 17U << 32U;
    QTest::newRow("32") << 32U << 32U;
    QTest::newRow("33") << 33U << 64U;
    QTest::newRow("just above 2^30") << 0x40000001U << 0x80000000U;
    QTest::newRow("2^31") << 0x80000000U << 0x80000000U;
    QTest::newRow("just above 2^31") << 0x80000001U << 0U;
    QTest::newRow("largest") << 0xFFFFFFFFU << 0U;
}

void tst_BitFieldRaster::NextPowerOfTwo()
{
    QFETCH(quint32, number);
    QFETCH(quint32, power);
    QCOMPARE(raster::NextPowerOfTwo(number), power);
}

void tst_BitFieldRaster::BitCountsSayHowManyPixelsShareAWord_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("pixelsPerWord");
    QTest::addColumn<int>("wordsPerRow");
    // All rows are 70 pixels long, which is no multiple of any count but 1 and 2.
    QTest::newRow("1") << 1 << 32 << 2;
    QTest::newRow("2") << 2 << 16 << 4;
    QTest::newRow("4") << 4 << 8 << 8;
    QTest::newRow("8") << 8 << 4 << 17;
    QTest::newRow("16") << 16 << 2 << 35;
    QTest::newRow("32") << 32 << 1 << 70;
}

void tst_BitFieldRaster::BitCountsSayHowManyPixelsShareAWord()
{
    QFETCH(int, bits);
    QFETCH(int, pixelsPerWord);
    QFETCH(int, wordsPerRow);
    const BitFieldRaster raster(bits, 70, 3);
    QCOMPARE(raster.Bits(), bits);
    QCOMPARE(raster.PixelsPerWord(), pixelsPerWord);
    QCOMPARE(raster.WordsPerRow(), qint64(wordsPerRow));
    QCOMPARE(raster.FieldsPerRow(), wordsPerRow * pixelsPerWord);
    QCOMPARE(raster.WordCount(), qint64(3 * wordsPerRow));
    QCOMPARE(raster.Height(), 3);
    QVERIFY(raster.IsValid());
    const quint32* words = raster.Words();
    QVERIFY(std::all_of(words, words + raster.WordCount(), [](quint32 word) { return word == 0; }));
}

void tst_BitFieldRaster::OtherBitCountsHaveNoWords_data()
{
    QTest::addColumn<int>("bits");
    for (const int bits : {-2147483647 - 1, -1, 0, 3, 5, 7, 12, 24, 31, 33, 64, 2147483647}) {
        QTest::newRow(QByteArray::number(bits).constData()) << bits;
    }
}

void tst_BitFieldRaster::OtherBitCountsHaveNoWords()
{
    QFETCH(int, bits);
    BitFieldRaster raster(bits, 64, 64);
    QCOMPARE(raster.WordCount(), qint64(0));
    QCOMPARE(raster.FieldsPerRow(), 0);
    QVERIFY(raster.IsValid());
    QCOMPARE(raster.Get(0, 0), 0U);
}

void tst_BitFieldRaster::EmptySizesHaveNoWords_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("nothing") << QSize(0, 0);
    QTest::newRow("no width") << QSize(0, 64);
    QTest::newRow("no height") << QSize(64, 0);
    QTest::newRow("negative width") << QSize(-64, 64);
    QTest::newRow("negative height") << QSize(64, -64);
    QTest::newRow("both negative") << QSize(-64, -64);
    QTest::newRow("narrower than a word") << QSize(3, 64);
}

void tst_BitFieldRaster::EmptySizesHaveNoWords()
{
    QFETCH(QSize, size);
    BitFieldRaster raster(8, size.width(), size.height());
    QCOMPARE(raster.WordCount(), qint64(0));
    QVERIFY(raster.IsValid());
    QCOMPARE(raster.Get(0, 0), 0U);
}

void tst_BitFieldRaster::SizesBeyondAllMemoryAreInvalid()
{
    for (const int bits : {1, 8, 32}) {
        BitFieldRaster raster(bits, 2147483647, 2147483647);
        QVERIFY(raster.WordCount() > 0);
        QVERIFY(!raster.IsValid());
        QCOMPARE(raster.Get(0, 0), 0U);
    }
}

void tst_BitFieldRaster::TheLeftmostPixelIsInTheHighestField_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("word");
    QTest::addColumn<quint32>("content");
    QTest::newRow("1 bit, first") << 1 << 0 << 0 << 0x80000000U;
    QTest::newRow("1 bit, last") << 1 << 31 << 0 << 0x00000001U;
    QTest::newRow("1 bit, next word") << 1 << 32 << 1 << 0x80000000U;
    QTest::newRow("2 bits, second") << 2 << 1 << 0 << 0x10000000U;
    QTest::newRow("4 bits, second") << 4 << 1 << 0 << 0x01000000U;
    QTest::newRow("8 bits, first") << 8 << 0 << 0 << 0x01000000U;
    QTest::newRow("8 bits, last") << 8 << 7 << 1 << 0x00000001U;
    QTest::newRow("16 bits, first") << 16 << 0 << 0 << 0x00010000U;
    QTest::newRow("16 bits, second") << 16 << 1 << 0 << 0x00000001U;
    QTest::newRow("32 bits") << 32 << 3 << 3 << 0x00000001U;
}

void tst_BitFieldRaster::TheLeftmostPixelIsInTheHighestField()
{
    QFETCH(int, bits);
    QFETCH(int, x);
    QFETCH(int, word);
    QFETCH(quint32, content);
    BitFieldRaster raster(bits, 64, 2);
    raster.Row(1)[word] = content;
    QCOMPARE(raster.Get(x, 1), 1U);
    QCOMPARE(raster.Words()[raster.WordsPerRow() + word], content);
}

void tst_BitFieldRaster::BitsBesideTheFieldAreCutOff_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<quint32>("field");
    QTest::newRow("1") << 1 << 0x1U;
    QTest::newRow("2") << 2 << 0x3U;
    QTest::newRow("4") << 4 << 0xFU;
    QTest::newRow("8") << 8 << 0xFFU;
    QTest::newRow("16") << 16 << 0xFFFFU;
    QTest::newRow("32") << 32 << 0xFFFFFFFFU;
}

void tst_BitFieldRaster::BitsBesideTheFieldAreCutOff()
{
    QFETCH(int, bits);
    QFETCH(quint32, field);
    BitFieldRaster raster(bits, 96, 1);
    std::fill_n(raster.Words(), raster.WordCount(), 0xFFFFFFFF);
    QCOMPARE(raster.Get(33, 0), field);
}

void tst_BitFieldRaster::EveryFieldIsOnItsOwn_data()
{
    BitsBesideTheFieldAreCutOff_data();
}

void tst_BitFieldRaster::EveryFieldIsOnItsOwn()
{
    QFETCH(int, bits);
    QFETCH(quint32, field);
    const QSize size(64, 3);
    BitFieldRaster raster(bits, size.width(), size.height());
    const auto valueAt = [&](int x, int row) {
        return quint32(x * 2654435761U + row * 97) & field;
    };
    for (int row = 0; row < size.height(); ++row) {
        for (int x = 0; x < size.width(); ++x) {
            const int shift = 32 - bits * (x % raster.PixelsPerWord() + 1);
            raster.Row(row)[x / raster.PixelsPerWord()] |= valueAt(x, row) << shift;
        }
    }
    for (int row = 0; row < size.height(); ++row) {
        for (int x = 0; x < size.width(); ++x) {
            QCOMPARE(raster.Get(x, row), valueAt(x, row));
        }
    }
}

void tst_BitFieldRaster::PlacesOutsideAreZero_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("row");
    // The raster has 9 x 2 pixels. Its words hold 8 pixels of each row.
    QTest::newRow("left") << -1 << 0;
    QTest::newRow("right") << 9 << 0;
    QTest::newRow("in the remainder") << 8 << 0;
    QTest::newRow("before the first row") << 0 << -1;
    QTest::newRow("behind the last row") << 0 << 2;
}

void tst_BitFieldRaster::PlacesOutsideAreZero()
{
    QFETCH(int, x);
    QFETCH(int, row);
    BitFieldRaster raster(4, 9, 2);
    std::fill_n(raster.Words(), raster.WordCount(), 0xFFFFFFFF);
    QCOMPARE(raster.Get(x, row), 0U);
}

QTEST_GUILESS_MAIN(tst_BitFieldRaster)

#include "tst_BitFieldRaster.moc"
