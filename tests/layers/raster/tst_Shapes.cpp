#include "layers/raster/Shapes.h"

#include "layers/raster/Mask.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/Regions.h"

#include <QPolygonF>
#include <QtTest>

#include <limits>

using raster::Region;

class tst_Shapes : public QObject
{
    Q_OBJECT

private slots:
    void RectanglesHoldTheirCentres();
    void EllipsesHoldTheirCentres();
    void PolygonsHoldTheirCentres();
    void LinesHoldTheirCentres();
    void RectanglesArePolygons();
    void NeighboursShareNoPixelAndLeaveNoneOut();
    void CornersAndEdgesThroughCentres();
    void ShapesWithoutAreaHaveNoPixels();
    void UnusableCoordinatesGiveNothing_data();
    void UnusableCoordinatesGiveNothing();
    void FarCornersAreClipped();
    void SizesOfNoMaskGiveNothing();
    void WithoutMemoryTheyAreEmpty();
};

namespace {

/// The tests use coordinates in eighths of a pixel, so that the definitions can be computed exactly
/// in integers.
constexpr int Unit = 8;

qint64 Centre(int pixel)
{
    return Unit * pixel + Unit / 2;
}

qint64 Square(qint64 number)
{
    return number * number;
}

struct Place
{
    qint64 x;
    qint64 y;

    QPointF Point() const { return {double(x) / Unit, double(y) / Unit}; }
};

/// Around a mask of that size, in a third of the cases on the lines through the centres.
Place RandomPlace(Random& random, QSize size)
{
    Place place{random.Between(-Unit * size.width(), 2 * Unit * size.width()),
                random.Between(-Unit * size.height(), 2 * Unit * size.height())};
    if (random.Below(3) == 0) {
        place = {Centre(static_cast<int>(place.x / Unit)),
                 Centre(static_cast<int>(place.y / Unit))};
    }
    return place;
}

/// From one place to the other, so that the size may be negative.
QRectF Between(Place a, Place b)
{
    return {a.Point().x(), a.Point().y(), b.Point().x() - a.Point().x(),
            b.Point().y() - a.Point().y()};
}

/// Corners of any kind, but no more than that many.
QVector<QPointF> RandomCorners(Random& random, QSize size, int most)
{
    QVector<QPointF> corners;
    const int kind = random.Below(4);
    for (int i = random.Below(most + 1); i > 0; --i) {
        QPointF corner = RandomPlace(random, size).Point();
        if (kind == 1) {
            corner += QPointF(random.Bits() / 1e10, random.Bits() / 1e10);
        } else if (kind == 2) {
            corner = QPointF(random.Below(6) * size.width(), random.Below(6) * size.height()) / 4;
        } else if (kind == 3 && random.Below(3) == 0) {
            corner *= random.Below(200000);
        }
        corners.append(corner);
    }
    return corners;
}

/// Whether QPolygonF, asked for each centre, finds it inside.
Region LiteralPolygon(const QVector<QPointF>& corners, QSize size)
{
    const QPolygonF polygon(corners);
    return RegionWhere(size, [&polygon](int x, int y) {
        return polygon.containsPoint({x + 0.5, y + 0.5}, Qt::OddEvenFill);
    });
}

/// Four times the square of the distance from the line, if it ends beside the place; all times the
/// square of the line's length otherwise.
bool IsOnLine(Place at, Place from, Place to, qint64 width)
{
    const Place along{to.x - from.x, to.y - from.y};
    const Place offset{at.x - from.x, at.y - from.y};
    const qint64 done = offset.x * along.x + offset.y * along.y;
    const qint64 length = Square(along.x) + Square(along.y);
    if (done <= 0) {
        return 4 * (Square(offset.x) + Square(offset.y)) <= Square(width);
    }
    if (done >= length) {
        return 4 * (Square(at.x - to.x) + Square(at.y - to.y)) <= Square(width);
    }
    return 4 * Square(offset.x * along.y - offset.y * along.x) <= Square(width) * length;
}

} // namespace

void tst_Shapes::RectanglesHoldTheirCentres()
{
    Random random;
    for (int round = 0; round < 1500; ++round) {
        const QSize size = RandomSize(random);
        const Place a = RandomPlace(random, size);
        const Place b = RandomPlace(random, size);
        const Region expected = RegionWhere(size, [a, b](int x, int y) {
            return std::min(a.x, b.x) <= Centre(x) && Centre(x) < std::max(a.x, b.x) &&
                   std::min(a.y, b.y) <= Centre(y) && Centre(y) < std::max(a.y, b.y);
        });
        QCOMPARE(Difference(raster::RectangleRegion(Between(a, b), size), expected), QString());
    }
}

void tst_Shapes::EllipsesHoldTheirCentres()
{
    Random random;
    for (int round = 0; round < 2000; ++round) {
        const QSize size = RandomSize(random);
        const Place a = RandomPlace(random, size);
        const Place b = RandomPlace(random, size);
        const qint64 width = a.x - b.x;
        const qint64 height = a.y - b.y;
        const Region expected = RegionWhere(size, [=](int x, int y) {
            // Twice the distances from the middle.
            const qint64 dx = 2 * Centre(x) - a.x - b.x;
            const qint64 dy = 2 * Centre(y) - a.y - b.y;
            return width != 0 && height != 0 &&
                   Square(dx * height) + Square(dy * width) <= Square(width * height);
        });
        QCOMPARE(Difference(raster::EllipseRegion(Between(a, b), size), expected), QString());
    }
}

void tst_Shapes::PolygonsHoldTheirCentres()
{
    Random random;
    for (int round = 0; round < 3000; ++round) {
        const QSize size = RandomSize(random);
        const QVector<QPointF> corners = RandomCorners(random, size, round % 10 == 0 ? 100 : 9);
        QCOMPARE(Difference(raster::PolygonRegion(corners, size), LiteralPolygon(corners, size)),
                 QString());
    }
}

void tst_Shapes::LinesHoldTheirCentres()
{
    Random random;
    for (int round = 0; round < 2000; ++round) {
        const QSize size = RandomSize(random);
        const Place from = RandomPlace(random, size);
        Place to = RandomPlace(random, size);
        switch (random.Below(6)) {
        case 0:
            to = from;
            break;
        case 1:
            to.x = from.x;
            break;
        case 2:
            to.y = from.y;
            break;
        default:
            break;
        }
        const int width = random.Between(-2, random.Below(2) == 0 ? 4 * Unit : 40 * Unit);
        const Region expected = RegionWhere(size, [=](int x, int y) {
            return width > 0 && IsOnLine({Centre(x), Centre(y)}, from, to, width);
        });
        QCOMPARE(
            Difference(raster::LineRegion(from.Point(), to.Point(), double(width) / Unit, size),
                       expected),
            QString());
    }
}

void tst_Shapes::RectanglesArePolygons()
{
    Random random;
    for (int round = 0; round < 200; ++round) {
        const QSize size = RandomSize(random);
        const QRectF rectangle = Between(RandomPlace(random, size), RandomPlace(random, size));
        const QVector<QPointF> corners{rectangle.topLeft(), rectangle.topRight(),
                                       rectangle.bottomRight(), rectangle.bottomLeft()};
        QCOMPARE(Difference(raster::RectangleRegion(rectangle, size),
                            raster::PolygonRegion(corners, size)),
                 QString());
    }
}

/// A net of triangles is laid over a mask. Its knots are moved at random, some onto lines through
/// the centres.
void tst_Shapes::NeighboursShareNoPixelAndLeaveNoneOut()
{
    Random random;
    constexpr int cells = 6;
    constexpr int cellSide = 9;
    const QSize size(cells * cellSide, cells * cellSide);
    for (int round = 0; round < 100; ++round) {
        const bool isFine = random.Below(2) == 0;
        QVector<QPointF> knots;
        for (int i = 0; i < (cells + 1) * (cells + 1); ++i) {
            const auto shift = [&random, isFine](int cell) {
                const bool isBorder = cell == 0 || cell == cells;
                const double by = isFine ? random.Below(4000) / 1e3 : random.Below(8) / 2.0;
                return cell * cellSide + (isBorder ? 0 : by);
            };
            const double x = shift(i % (cells + 1));
            knots.append({x, shift(i / (cells + 1))});
        }
        QImage counts = raster::BlankMask(size);
        const auto count = [&](const QVector<QPointF>& corners) {
            const Region region = raster::PolygonRegion(corners, size);
            for (const raster::Span& span : region) {
                uchar* row = counts.scanLine(span.y);
                std::for_each(row + span.begin, row + span.end, [](uchar& pixel) { ++pixel; });
            }
        };
        for (int i = 0; i < cells * cells; ++i) {
            const int first = i / cells * (cells + 1) + i % cells;
            const int below = first + cells + 1;
            count({knots.at(first), knots.at(first + 1), knots.at(below)});
            count({knots.at(below), knots.at(below + 1), knots.at(first + 1)});
        }
        const Region once =
            RegionWhere(size, [&counts](int x, int y) { return counts.pixelIndex(x, y) == 1; });
        QCOMPARE(Difference(once, raster::RectangleRegion(QRectF({0, 0}, size), size)), QString());
    }
}

void tst_Shapes::CornersAndEdgesThroughCentres()
{
    const QSize size(8, 8);
    // Left and top edges belong to the shape, right and bottom edges do not.
    QCOMPARE(Difference(raster::RectangleRegion({1.5, 2.5, 3, 1}, size), {{2, 1, 4}}), QString());
    QCOMPARE(Difference(raster::PolygonRegion({{1.5, 1.5}, {4.5, 1.5}, {1.5, 4.5}}, size),
                        {{1, 1, 4}, {2, 1, 3}, {3, 1, 2}}),
             QString());
    QCOMPARE(Difference(raster::PolygonRegion({{4.5, 1.5}, {4.5, 4.5}, {1.5, 4.5}}, size),
                        {{2, 3, 4}, {3, 2, 4}}),
             QString());
    // The lines of ellipses and lines belong to them everywhere.
    QCOMPARE(Difference(raster::EllipseRegion({1.5, 1.5, 2, 2}, size),
                        {{1, 2, 3}, {2, 1, 4}, {3, 2, 3}}),
             QString());
    QCOMPARE(Difference(raster::LineRegion({2.5, 2.5}, {4.5, 2.5}, 2, size),
                        {{1, 2, 5}, {2, 1, 6}, {3, 2, 5}}),
             QString());
}

void tst_Shapes::ShapesWithoutAreaHaveNoPixels()
{
    const QSize size(8, 8);
    QVERIFY(raster::RectangleRegion({2.5, 2.5, 0, 4}, size).empty());
    QVERIFY(raster::RectangleRegion({2.5, 2.5, 4, 0}, size).empty());
    QVERIFY(raster::EllipseRegion({2.5, 2.5, 0, 4}, size).empty());
    QVERIFY(raster::EllipseRegion({2.5, 2.5, 4, 0}, size).empty());
    QVERIFY(raster::EllipseRegion({2.1, 2.1, 0.2, 0.2}, size).empty());
    QVERIFY(raster::LineRegion({0.5, 0.5}, {7.5, 7.5}, 0, size).empty());
    QVERIFY(raster::PolygonRegion({}, size).empty());
    QVERIFY(raster::PolygonRegion({{2.5, 2.5}}, size).empty());
    QVERIFY(raster::PolygonRegion({{0.5, 0.5}, {6.5, 6.5}}, size).empty());
    QVERIFY(raster::PolygonRegion({{0.5, 0.5}, {3.5, 3.5}, {6.5, 6.5}}, size).empty());
    // A square that is gone around twice.
    const QVector<QPointF> square{{1, 1}, {5, 1}, {5, 5}, {1, 5}};
    QVERIFY(raster::PolygonRegion(square + square, size).empty());
    // Gone around three times, with corners that repeat.
    QCOMPARE(raster::PixelCount(raster::PolygonRegion(square + square + square, size)), qint64(16));
    QCOMPARE(raster::PixelCount(raster::PolygonRegion(
                 {{1, 1}, {1, 1}, {5, 1}, {5, 5}, {5, 5}, {5, 5}, {1, 5}, {1, 1}}, size)),
             qint64(16));
}

void tst_Shapes::UnusableCoordinatesGiveNothing_data()
{
    QTest::addColumn<double>("number");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
    QTest::newRow("infinite to the left") << -std::numeric_limits<double>::infinity();
    QTest::newRow("largest") << std::numeric_limits<double>::max();
    QTest::newRow("lowest") << std::numeric_limits<double>::lowest();
    QTest::newRow("too large") << raster::LargestCoordinate * 1.001;
}

void tst_Shapes::UnusableCoordinatesGiveNothing()
{
    QFETCH(double, number);
    const QSize size(8, 8);
    for (int i = 0; i < 4; ++i) {
        double numbers[] = {1, 1, 6, 6};
        numbers[i] = number;
        const QPointF a(numbers[0], numbers[1]);
        const QPointF b(numbers[2], numbers[3]);
        const QRectF rectangle(a, QSizeF(numbers[2], numbers[3]));
        QVERIFY(raster::RectangleRegion(rectangle, size).empty());
        QVERIFY(raster::EllipseRegion(rectangle, size).empty());
        QVERIFY(raster::PolygonRegion({{2, 1}, a, {4, 2}, b}, size).empty());
        QVERIFY(raster::LineRegion(a, b, 3, size).empty());
    }
    QVERIFY(raster::LineRegion({1, 1}, {6, 6}, number, size).empty());
}

void tst_Shapes::FarCornersAreClipped()
{
    const QSize size(70, 8);
    const Region all = raster::RectangleRegion(QRectF({0, 0}, size), size);
    constexpr double far = raster::LargestCoordinate;
    const QRectF around(-far, -far, 2 * far, 2 * far);
    QCOMPARE(Difference(raster::RectangleRegion(around, size), all), QString());
    QCOMPARE(Difference(raster::EllipseRegion(around, size), all), QString());
    QCOMPARE(Difference(raster::PolygonRegion({around.topLeft(), around.topRight(),
                                               around.bottomRight(), around.bottomLeft()},
                                              size),
                        all),
             QString());
    QCOMPARE(Difference(raster::LineRegion(around.topLeft(), around.bottomRight(), 1, size),
                        raster::LineRegion({0, 0}, {8, 8}, 1, size)),
             QString());
    for (const QPointF away :
         {QPointF(-far, 0), QPointF(far, 0), QPointF(0, far), QPointF(0, -far)}) {
        const QRectF beside(away, QSizeF(60, 60));
        QVERIFY(raster::RectangleRegion(beside, size).empty());
        QVERIFY(raster::EllipseRegion(beside, size).empty());
        QVERIFY(raster::LineRegion(away, away + QPointF(9, 9), 100, size).empty());
        QVERIFY(raster::PolygonRegion({away, away + QPointF(9, 0), away + QPointF(0, 9)}, size)
                    .empty());
    }
}

void tst_Shapes::SizesOfNoMaskGiveNothing()
{
    for (const QSize size : {QSize(), QSize(0, 5), QSize(-3, -3), QSize(65536, 2)}) {
        QVERIFY(raster::RectangleRegion({0, 0, 9, 9}, size).empty());
        QVERIFY(raster::EllipseRegion({0, 0, 9, 9}, size).empty());
        QVERIFY(raster::PolygonRegion({{0, 0}, {9, 0}, {9, 9}}, size).empty());
        QVERIFY(raster::LineRegion({0, 0}, {9, 9}, 3, size).empty());
    }
    QCOMPARE(raster::PixelCount(raster::RectangleRegion({0, 0, 1e5, 1e5}, {65535, 65535})),
             qint64(65535) * 65535);
}

void tst_Shapes::WithoutMemoryTheyAreEmpty()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("The sanitizers take address space as they go.");
#endif
    // A comb: each tooth is one pixel wide, and a span of six bytes in each row.
    const QSize size(4096, 4096);
    QVector<QPointF> comb;
    for (int x = 0; x < size.width(); x += 2) {
        comb += {QPointF(x, 0), QPointF(x, 4096), QPointF(x + 1, 4096), QPointF(x + 1, 0)};
    }
    {
        const MemoryLimit limit(16 * AMebibyte);
        QVERIFY(raster::PolygonRegion(comb, size).empty());
    }
    QCOMPARE(raster::PixelCount(raster::PolygonRegion(comb, size)), qint64(2048 * 4096));
}

QTEST_GUILESS_MAIN(tst_Shapes)
#include "tst_Shapes.moc"
