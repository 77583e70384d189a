#include "layers/raster/SetOperations.h"

#include "layers/raster/Mask.h"

#include "tests/support/Masks.h"
#include "tests/support/Random.h"

#include <QtTest>

#include <vector>

using raster::BlankMask;
using raster::Complement;
using raster::Difference;
using raster::Intersection;
using raster::Union;

class tst_SetOperations : public QObject
{
    Q_OBJECT

private slots:
    void MasksAreCombined_data();
    void MasksAreCombined();
    void EveryPairOfIndicesIsCombinedBitByBit();
    void RandomMasksEqualTheLiteralResult();
    void PaddingIsTreatedLikePixels();
    void ForeignStridesAreServed();
    void ResultsKeepTheFirstMasksColours();
    void OperandsStayAsTheyAre();
    void OtherGeometriesGiveNull_data();
    void OtherGeometriesGiveNull();
    void TheComplementOfNullIsNull();
    void LargeResultsKeepToThemselves();
    void PicturesLongerThanMasksAreServed();
};

namespace {

using Operation = QImage (*)(const QImage&, const QImage&);

QStringList ArtA()
{
    return {"##..", "##.."};
}

QStringList ArtB()
{
    return {"#.#.", "#.#."};
}

uchar Literal(Operation operation, uchar a, uchar b)
{
    if (operation == Union) {
        return a | b;
    }
    return operation == Intersection ? a & b : a & static_cast<uchar>(~b);
}

QImage AllIndices()
{
    QImage mask = BlankMask({256, 1});
    for (int i = 0; i < 256; ++i) {
        mask.scanLine(0)[i] = static_cast<uchar>(i);
    }
    return mask;
}

} // namespace

void tst_SetOperations::MasksAreCombined_data()
{
    QTest::addColumn<QImage>("result");
    QTest::addColumn<QString>("row");
    const QImage a = MaskFromArt(ArtA());
    const QImage b = MaskFromArt(ArtB());
    QTest::newRow("complement") << Complement(a) << "..##";
    QTest::newRow("union") << Union(a, b) << "###.";
    QTest::newRow("intersection") << Intersection(a, b) << "#...";
    QTest::newRow("difference") << Difference(a, b) << ".#..";
}

void tst_SetOperations::MasksAreCombined()
{
    QFETCH(QImage, result);
    QFETCH(QString, row);
    QCOMPARE(ArtFromMask(result), QStringList({row, row}));
}

void tst_SetOperations::EveryPairOfIndicesIsCombinedBitByBit()
{
    const QImage a = AllIndices();
    for (int i = 0; i < 256; ++i) {
        QCOMPARE(Complement(a).pixelIndex(i, 0), 255 - i);
    }
    for (int j = 0; j < 256; ++j) {
        QImage b = BlankMask(a.size());
        b.fill(static_cast<uint>(j));
        for (const Operation operation : {Union, Intersection, Difference}) {
            const QImage result = operation(a, b);
            for (int i = 0; i < 256; ++i) {
                const uchar expected = Literal(operation, uchar(i), uchar(j));
                QCOMPARE(result.constScanLine(0)[i], expected);
            }
        }
    }
}

void tst_SetOperations::RandomMasksEqualTheLiteralResult()
{
    Random random;
    for (int i = 0; i < 300; ++i) {
        const QSize size(random.Between(1, 70), random.Between(1, 9));
        const QImage a = RandomMask(random, size);
        const QImage b = RandomMask(random, size);
        for (const Operation operation : {Union, Intersection, Difference}) {
            QImage expected = a.copy();
            for (int y = 0; y < size.height(); ++y) {
                for (int x = 0; x < size.width(); ++x) {
                    expected.scanLine(y)[x] =
                        Literal(operation, a.constScanLine(y)[x], b.constScanLine(y)[x]);
                }
            }
            QCOMPARE(operation(a, b), expected);
        }
    }
}

void tst_SetOperations::PaddingIsTreatedLikePixels()
{
    const QImage a = MaskFromArt({"#"});
    QCOMPARE(a.bytesPerLine(), 4);
    QCOMPARE(Complement(a).constScanLine(0)[3], uchar(~a.constScanLine(0)[3]));
}

void tst_SetOperations::ForeignStridesAreServed()
{
    std::vector<uchar> buffer(2 * 12, 0);
    buffer[0] = buffer[13] = raster::MaskSet;
    QImage foreign(buffer.data(), 3, 2, 12, QImage::Format_Indexed8);
    foreign.setColorTable(raster::GreyTable());
    const QImage own = MaskFromArt({"..#", "..#"});
    const QStringList both = {"#.#", ".##"};
    QCOMPARE(ArtFromMask(Union(own, foreign)), both);
    QCOMPARE(ArtFromMask(Union(foreign, own)), both);
    QCOMPARE(ArtFromMask(Complement(foreign)), QStringList({".##", "#.#"}));
}

void tst_SetOperations::ResultsKeepTheFirstMasksColours()
{
    QImage a = MaskFromArt(ArtA());
    a.setColor(0, qRgb(1, 2, 3));
    const QImage b = MaskFromArt(ArtB());
    for (const QImage& result :
         {Complement(a), Union(a, b), Intersection(a, b), Difference(a, b)}) {
        QCOMPARE(result.format(), QImage::Format_Indexed8);
        QCOMPARE(result.colorTable(), a.colorTable());
    }
}

void tst_SetOperations::OperandsStayAsTheyAre()
{
    const QImage a = MaskFromArt(ArtA());
    const QImage b = MaskFromArt(ArtB());
    Complement(a);
    Union(a, b);
    Difference(a, b);
    QCOMPARE(ArtFromMask(a), ArtA());
    QCOMPARE(ArtFromMask(b), ArtB());
}

void tst_SetOperations::OtherGeometriesGiveNull_data()
{
    QTest::addColumn<QImage>("other");
    QTest::newRow("null") << QImage();
    QTest::newRow("wider") << BlankMask({5, 2});
    QTest::newRow("higher") << BlankMask({4, 3});
    QTest::newRow("another format") << QImage(4, 2, QImage::Format_Grayscale8);
}

void tst_SetOperations::OtherGeometriesGiveNull()
{
    QFETCH(QImage, other);
    const QImage mask = MaskFromArt(ArtA());
    for (const Operation operation : {Union, Intersection, Difference}) {
        QVERIFY(operation(mask, other).isNull());
        QVERIFY(operation(other, mask).isNull());
    }
}

void tst_SetOperations::TheComplementOfNullIsNull()
{
    QVERIFY(Complement(QImage()).isNull());
}

void tst_SetOperations::PicturesLongerThanMasksAreServed()
{
    QImage picture(70000, 600, QImage::Format_Indexed8);
    picture.fill(raster::MaskSet);
    const QImage complement = Complement(picture);
    QCOMPARE(complement.size(), picture.size());
    QCOMPARE(complement.constScanLine(599)[69999], raster::MaskClear);
    QCOMPARE(Union(complement, picture), picture);
}

void tst_SetOperations::LargeResultsKeepToThemselves()
{
    // Above 32 MB the memory of a destroyed result is used again.
    const QSize size(6001, 6001);
    const QImage clear = BlankMask(size);
    QImage first = Complement(clear);
    const QImage second = Complement(clear);
    const QImage copyOfFirst = first;
    first = Complement(second);
    QCOMPARE(first, clear);
    QCOMPARE(copyOfFirst, second);
    first = Union(clear, second);
    first = Difference(second, clear);
    QCOMPARE(first, second);
    QCOMPARE(first.colorTable(), clear.colorTable());
    QCOMPARE(second.pixelIndex(6000, 6000), 255);
}

QTEST_APPLESS_MAIN(tst_SetOperations)

#include "tst_SetOperations.moc"
