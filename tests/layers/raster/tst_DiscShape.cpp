#include "layers/raster/DiscShape.h"

#include "tests/support/LiteralMorphology.h"
#include "tests/support/Random.h"

#include <QtTest>

#include <cmath>
#include <cstdlib>
#include <limits>

using raster::DiscShape;

namespace {

constexpr QSize Picture(100, 60);
constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinity = std::numeric_limits<float>::infinity();

/// Row by row.
QVector<QPoint> OffsetsOf(const DiscShape& disc)
{
    QVector<QPoint> offsets;
    for (int dy = -disc.Radius(); dy <= disc.Radius(); ++dy) {
        const int half = disc.HalfChord(std::abs(dy));
        for (int dx = -half; dx <= half; ++dx) {
            offsets.append(QPoint(dx, dy));
        }
    }
    return offsets;
}

} // namespace

class tst_DiscShape : public QObject
{
    Q_OBJECT

private slots:
    void DiscsHaveTheirOffsets_data();
    void DiscsHaveTheirOffsets();
    void TheBoundaryCircleBelongsToTheDisc();
    void RandomDiscsEqualTheLiteralOnes();
    void SquaresAreComparedAsFloats();
    void ShapesAreCutOffAtThePicture_data();
    void ShapesAreCutOffAtThePicture();
    void ADiscCoversAPictureOfItsDiagonal_data();
    void ADiscCoversAPictureOfItsDiagonal();
};

void tst_DiscShape::DiscsHaveTheirOffsets_data()
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

void tst_DiscShape::DiscsHaveTheirOffsets()
{
    QFETCH(float, radius);
    QFETCH(int, count);
    const QVector<QPoint> offsets = OffsetsOf(DiscShape(radius, Picture));
    QCOMPARE(offsets.size(), count);
    QVERIFY(offsets.contains(QPoint(0, 0)));
}

void tst_DiscShape::TheBoundaryCircleBelongsToTheDisc()
{
    const QVector<QPoint> offsets = OffsetsOf(DiscShape(5, Picture));
    QVERIFY(offsets.contains(QPoint(3, -4)));
    QVERIFY(offsets.contains(QPoint(-5, 0)));
    QVERIFY(!offsets.contains(QPoint(4, 4)));
}

void tst_DiscShape::RandomDiscsEqualTheLiteralOnes()
{
    Random random;
    for (int i = 0; i < 300; ++i) {
        const float radius = static_cast<float>(random.Below(3200)) / 64;
        QCOMPARE(OffsetsOf(DiscShape(radius, Picture)), literal::Disc(radius));
    }
}

void tst_DiscShape::SquaresAreComparedAsFloats()
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

void tst_DiscShape::ShapesAreCutOffAtThePicture_data()
{
    QTest::addColumn<float>("radius");
    for (const float radius : {100.0F, 117.0F, 30000.0F, 1e30F, Infinity}) {
        QTest::addRow("%g", static_cast<double>(radius)) << radius;
    }
}

void tst_DiscShape::ShapesAreCutOffAtThePicture()
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

void tst_DiscShape::ADiscCoversAPictureOfItsDiagonal_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<float>("diagonal");
    QTest::newRow("wide") << QSize(41, 10) << 41.0F;
    QTest::newRow("high") << QSize(10, 41) << 41.0F;
    QTest::newRow("a row") << QSize(8, 1) << 7.0F;
    QTest::newRow("a column") << QSize(1, 8) << 7.0F;
}

/// Between the centres of opposite corners: 40 and 9 pixels make 41.
void tst_DiscShape::ADiscCoversAPictureOfItsDiagonal()
{
    QFETCH(QSize, picture);
    QFETCH(float, diagonal);
    QVERIFY(DiscShape(diagonal, picture).Covers(picture));
    QVERIFY(DiscShape(Infinity, picture).Covers(picture));
    QVERIFY(!DiscShape(diagonal - 0.1F, picture).Covers(picture));
}

QTEST_APPLESS_MAIN(tst_DiscShape)

#include "tst_DiscShape.moc"
