#include "layers/raster/StructuringElement.h"

#include "tests/support/LiteralMorphology.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Random.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

using raster::Disc;
using raster::DiscShape;

namespace {

constexpr QSize Picture(100, 60);
constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinity = std::numeric_limits<float>::infinity();

} // namespace

class StructuringElementTest : public QObject
{
    Q_OBJECT

private slots:
    void discsHaveTheirOffsets_data();
    void discsHaveTheirOffsets();
    void theBoundaryCircleBelongsToTheDisc();
    void offsetsGoRowByRow();
    void randomDiscsEqualTheLiteralOnes();
    void squaresAreComparedAsFloats();
    void hugeDiscsAreListed_data();
    void hugeDiscsAreListed();
    void discsThatNoListHoldsAreRefused_data();
    void discsThatNoListHoldsAreRefused();

    void discsAreRecognised_data();
    void discsAreRecognised();
    void discsAreRecognisedInAnyOrder();
    void otherShapesAreNoDiscs_data();
    void otherShapesAreNoDiscs();
    void shapesAreCutOffAtThePicture_data();
    void shapesAreCutOffAtThePicture();
    void aDiscCoversAPictureOfItsDiagonal_data();
    void aDiscCoversAPictureOfItsDiagonal();
};

void StructuringElementTest::discsHaveTheirOffsets_data()
{
    QTest::addColumn<float>("radius");
    QTest::addColumn<int>("count");
    QTest::newRow("0") << 0.0F << 1;
    QTest::newRow("negative") << -3.0F << 1;
    QTest::newRow("no number") << NotANumber << 1;
    QTest::newRow("below 1") << 0.9F << 1;
    QTest::newRow("1") << 1.0F << 5;
    QTest::newRow("1.5") << 1.5F << 9;
    QTest::newRow("2") << 2.0F << 13;
    QTest::newRow("3") << 3.0F << 29;
}

void StructuringElementTest::discsHaveTheirOffsets()
{
    QFETCH(float, radius);
    QFETCH(int, count);
    QCOMPARE(Disc(radius).size(), count);
    QVERIFY(Disc(radius).contains(QPoint(0, 0)));
}

void StructuringElementTest::theBoundaryCircleBelongsToTheDisc()
{
    const QVector<QPoint> offsets = Disc(5);
    QVERIFY(offsets.contains(QPoint(3, -4)));
    QVERIFY(offsets.contains(QPoint(-5, 0)));
    QVERIFY(!offsets.contains(QPoint(4, 4)));
}

void StructuringElementTest::offsetsGoRowByRow()
{
    const QVector<QPoint> expected = {{0, -1}, {-1, 0}, {0, 0}, {1, 0}, {0, 1}};
    QCOMPARE(Disc(1), expected);
}

void StructuringElementTest::randomDiscsEqualTheLiteralOnes()
{
    Random random;
    for (int i = 0; i < 300; ++i) {
        const float radius = static_cast<float>(random.Below(3200)) / 64;
        QCOMPARE(Disc(radius), literal::Disc(radius));
    }
}

void StructuringElementTest::squaresAreComparedAsFloats()
{
    // 5801 * 5801 + 1 is more than 5801 * 5801, but both are the same float.
    const DiscShape shape(5801, QSize(5803, 3));
    QCOMPARE(shape.HalfChord(0), 5801);
    QCOMPARE(shape.HalfChord(1), 5801);
    QCOMPARE(shape.HalfChord(2), 5800);
    Random random;
    for (int i = 0; i < 200; ++i) {
        const float radius = 4096 + static_cast<float>(random.Below(1 << 20)) / 16;
        const DiscShape disc(radius, QSize(80000, 1));
        const int distance = random.Below(disc.Radius());
        const int half = disc.HalfChord(distance);
        QVERIFY(literal::IsInDisc(radius, half, distance));
        QVERIFY(half == disc.Radius() || !literal::IsInDisc(radius, half + 1, distance));
    }
}

void StructuringElementTest::hugeDiscsAreListed_data()
{
    QTest::addColumn<float>("discRadius");
    for (const float radius : {8193.0F, 9200.0F}) {
        QTest::addRow("%g", static_cast<double>(radius)) << radius;
    }
}

void StructuringElementTest::hugeDiscsAreListed()
{
#ifdef __SANITIZE_ADDRESS__
    return; // The sanitizer ends the program when there is no memory.
#endif
    // The lists take 1.7 GB and more: that they are not had without memory shows that they are
    // made.
    QFETCH(float, discRadius);
    const MemoryLimit limit(quint64(1) << 30);
    QVERIFY_EXCEPTION_THROWN(Disc(discRadius), std::bad_alloc);
}

void StructuringElementTest::discsThatNoListHoldsAreRefused_data()
{
    QTest::addColumn<float>("discRadius");
    for (const float radius : {9250.0F, 9299.0F, 9301.0F, 13200.0F, 128000.0F, 1e30F, Infinity}) {
        QTest::addRow("%g", static_cast<double>(radius)) << radius;
    }
}

/// However much memory there is; a smaller disc in its place would be a wrong one.
void StructuringElementTest::discsThatNoListHoldsAreRefused()
{
    QFETCH(float, discRadius);
    QVERIFY_EXCEPTION_THROWN(Disc(discRadius), std::bad_alloc);
}

void StructuringElementTest::discsAreRecognised_data()
{
    QTest::addColumn<float>("radius");
    for (const float radius : {0.0F, 1.0F, 1.5F, 2.0F, 3.0F, 3.7F, 12.0F, 49.0F}) {
        QTest::addRow("%g", static_cast<double>(radius)) << radius;
    }
}

void StructuringElementTest::discsAreRecognised()
{
    QFETCH(float, radius);
    const auto shape = DiscShape::FromOffsets(Disc(radius), Picture);
    QVERIFY(shape);
    const DiscShape expected(radius, Picture);
    QCOMPARE(shape->Radius(), expected.Radius());
    for (int distance = 0; distance <= expected.Radius(); ++distance) {
        QCOMPARE(shape->HalfChord(distance), expected.HalfChord(distance));
    }
}

void StructuringElementTest::discsAreRecognisedInAnyOrder()
{
    Random random;
    QVector<QPoint> offsets = Disc(6);
    for (int last = offsets.size() - 1; last > 0; --last) {
        std::swap(offsets[last], offsets[random.Below(last + 1)]);
    }
    QVERIFY(DiscShape::FromOffsets(offsets, Picture));
}

void StructuringElementTest::otherShapesAreNoDiscs_data()
{
    QTest::addColumn<QVector<QPoint>>("offsets");
    QTest::newRow("nothing") << QVector<QPoint>();
    QTest::newRow("one neighbour") << QVector<QPoint>{{0, 1}};
    QTest::newRow("a line") << QVector<QPoint>{{-1, 0}, {0, 0}, {1, 0}};
    QTest::newRow("a far point") << QVector<QPoint>{{0, 0}, {2000000000, -2000000000}};
    QVector<QPoint> square;
    for (int i = 0; i < 49; ++i) {
        square.append(QPoint(i % 7 - 3, i / 7 - 3));
    }
    QTest::newRow("a square of 7") << square;
    QVector<QPoint> holed = Disc(4);
    holed.removeOne(QPoint(0, 0));
    QTest::newRow("a disc with a hole") << holed;
    QVector<QPoint> doubled = holed;
    doubled.append(QPoint(1, 1));
    QTest::newRow("one twice in place of another") << doubled;
    QVector<QPoint> moved = Disc(4);
    for (QPoint& offset : moved) {
        offset += QPoint(1, 0);
    }
    QTest::newRow("a disc beside") << moved;
}

void StructuringElementTest::otherShapesAreNoDiscs()
{
    QFETCH(QVector<QPoint>, offsets);
    QVERIFY(!DiscShape::FromOffsets(offsets, Picture));
}

void StructuringElementTest::shapesAreCutOffAtThePicture_data()
{
    QTest::addColumn<float>("radius");
    for (const float radius : {100.0F, 117.0F, 30000.0F, 1e30F, Infinity}) {
        QTest::addRow("%g", static_cast<double>(radius)) << radius;
    }
}

void StructuringElementTest::shapesAreCutOffAtThePicture()
{
    QFETCH(float, radius);
    const DiscShape shape(radius, Picture);
    QCOMPARE(shape.Radius(), 99);
    QCOMPARE(shape.HalfChord(0), 99);
    const float diagonal = std::hypot(100.0F, 60.0F);
    if (radius > diagonal) {
        QCOMPARE(shape.HalfChord(59), 99);
    }
}

void StructuringElementTest::aDiscCoversAPictureOfItsDiagonal_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<float>("diagonal");
    QTest::newRow("wide") << QSize(41, 10) << 41.0F;
    QTest::newRow("high") << QSize(10, 41) << 41.0F;
    QTest::newRow("a row") << QSize(8, 1) << 7.0F;
    QTest::newRow("a column") << QSize(1, 8) << 7.0F;
}

/// Between the centres of opposite corners: 40 and 9 pixels make 41.
void StructuringElementTest::aDiscCoversAPictureOfItsDiagonal()
{
    QFETCH(QSize, picture);
    QFETCH(float, diagonal);
    QVERIFY(DiscShape(diagonal, picture).Covers(picture));
    QVERIFY(DiscShape(Infinity, picture).Covers(picture));
    QVERIFY(!DiscShape(diagonal - 0.1F, picture).Covers(picture));
    QVERIFY(DiscShape::FromOffsets(Disc(diagonal), picture)->Covers(picture));
}

QTEST_APPLESS_MAIN(StructuringElementTest)

#include "tst_StructuringElement.moc"
