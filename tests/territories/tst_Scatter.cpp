#include "territories/Scatter.h"

#include "app/ProjectSettings.h"
#include "layers/raster/Mask.h"
#include "tests/support/ProjectFixture.h"
#include "tests/support/Random.h"

#include <QTest>

#include <algorithm>
#include <cmath>

namespace {

struct Point
{
    double x;
    double z;
};

double Distance(const Point& a, const Point& b)
{
    return std::hypot(a.x - b.x, a.z - b.z);
}

/// A task in the world of the settings, without layers and zones.
ScatterTask Task(int count, double distance, quint32 seed = 1)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    return {settings.LayerSize(), WorldScale(settings), {}, {}, {}, distance, 0, count, seed};
}

std::vector<QPointF> Run(const ScatterTask& task)
{
    Scatter scatter(task);
    while (!scatter.Advance(1000)) {}
    return scatter.Places();
}

/// Set where the rule holds.
template <typename Rule>
QImage MaskWhere(Rule rule)
{
    QImage mask = raster::BlankMask(ProjectSettings::Instance().LayerSize());
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            // Any value but 0 counts.
            mask.scanLine(y)[x] = rule(x, y) ? uchar(1 + (x + y) % 255) : 0;
        }
    }
    return mask;
}

bool IsSet(const QImage& mask, double sceneX, double sceneY)
{
    const int x = int(std::floor(sceneX));
    const int y = int(std::floor(sceneY));
    return mask.rect().contains(x, y) && mask.constScanLine(y)[x] != 0;
}

Point InFile(QPointF place)
{
    const WorldCircle circle = InWorld({{}, place, 0}, WorldScale(ProjectSettings::Instance()));
    return {circle.x, circle.z};
}

/// As a file with six digits is read back.
Point ReadBack(const Point& metres)
{
    const auto digits = [](double number) {
        return double(QString::number(number, 'g', 6).toFloat());
    };
    return {digits(metres.x), digits(metres.z)};
}

/// The place in the scene of a zone that is read from a file.
QPointF Loaded(const Point& metres)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const float x = settings.PixelsPerMetreX() * float(metres.x);
    const float y = float(settings.LayerHeight()) - settings.PixelsPerMetreZ() * float(metres.z);
    return {double(x), double(y)};
}

} // namespace

class tst_Scatter : public QObject
{
    Q_OBJECT

private slots:
    void KeepsDistancesAndLayersForThousandSeeds();
    void TheSameSeedGivesTheSamePlaces();
    void PlacesAreTheSameOnEveryMachine();
    void LeavesNoRoomWhenFewerFit();
    void FillsUnconnectedAndTinyPlaces();
    void DrawsEvenly();
    void EndsWhateverTheNumbersAre();
};

/// Metres per pixel differ: 10 along X and 20 along Z.
void tst_Scatter::KeepsDistancesAndLayersForThousandSeeds()
{
    const ProjectFixture fixture({64, 48}, {640, 960});
    const QImage disc = MaskWhere([](int x, int y) { return std::hypot(x - 20, y - 20) < 16; });
    const QImage stripes = MaskWhere([](int x, int y) { return x % 9 < 4 && y > 10; });
    const QImage minus = MaskWhere([](int x, int y) { return y % 7 == 3 || x > 55; });
    std::vector<WorldCircle> existing;
    for (int i = 0; i < 12; ++i) {
        existing.push_back({InSinglePrecision(i * 53.37), InSinglePrecision(i * 81.111), 100});
    }
    for (quint32 seed = 0; seed < 1000; ++seed) {
        ScatterTask task = Task(40, 31.7, seed);
        task.existingDistance = 24.3;
        task.inside = {disc, stripes};
        task.outside = {minus};
        task.existing = existing;
        const std::vector<QPointF> places = Run(task);
        QCOMPARE(places.size(), std::size_t(40));
        std::vector<Point> kept;
        std::vector<Point> keptRead;
        for (const QPointF& place : places) {
            QCOMPARE(place, QPointF(double(float(place.x())), double(float(place.y()))));
            const Point metres = InFile(place);
            const Point read = ReadBack(metres);
            for (const QPointF& each : {place, Loaded(metres), Loaded(read)}) {
                QVERIFY(IsSet(disc, each.x(), each.y()) || IsSet(stripes, each.x(), each.y()));
                QVERIFY(!IsSet(minus, each.x(), each.y()));
            }
            QVERIFY(metres.x >= 0 && metres.x <= 640 && metres.z >= 0 && metres.z <= 960);
            for (std::size_t i = 0; i < kept.size(); ++i) {
                QVERIFY(Distance(metres, kept[i]) >= 31.7);
                QVERIFY(Distance(read, keptRead[i]) >= 31.7);
            }
            for (const WorldCircle& zone : existing) {
                QVERIFY(Distance(metres, {zone.x, zone.z}) >= 24.3);
                QVERIFY(Distance(read, ReadBack({zone.x, zone.z})) >= 24.3);
            }
            kept.push_back(metres);
            keptRead.push_back(read);
        }
    }
}

void tst_Scatter::TheSameSeedGivesTheSamePlaces()
{
    const ProjectFixture fixture({64, 64}, {640, 640});
    std::vector<QPointF> before;
    for (quint32 seed = 0; seed < 50; ++seed) {
        const std::vector<QPointF> places = Run(Task(30, 40, seed));
        QCOMPARE(Run(Task(30, 40, seed)), places);
        // However the work is divided.
        Scatter slow(Task(30, 40, seed));
        while (!slow.Advance(1)) {}
        QCOMPARE(slow.Places(), places);
        QVERIFY(places != before);
        before = places;
    }
}

void tst_Scatter::PlacesAreTheSameOnEveryMachine()
{
    const ProjectFixture fixture({2048, 2048}, {15360, 15360});
    const std::vector<QPointF> places = Run(Task(3, 500, 2026));
    QStringList written;
    for (const QPointF& place : places) {
        const Point metres = InFile(place);
        written.append(QString::number(metres.x, 'g', 6) + ' ' + QString::number(metres.z, 'g', 6));
    }
    QCOMPARE(written.join(", "), QString("2386 11975.2, 958.598 542.228, 11622.4 14011.2"));
}

void tst_Scatter::LeavesNoRoomWhenFewerFit()
{
    const ProjectFixture fixture({64, 48}, {640, 960});
    constexpr double distance = 90;
    const QImage mask = MaskWhere([](int x, int y) { return std::hypot(x - 30, y - 24) < 22; });
    ScatterTask task = Task(1000, distance);
    task.inside = {mask};
    task.existing = {{300, 500, 10}};
    task.existingDistance = 150;
    for (const quint32 seed : {1U, 2U, 3U}) {
        task.seed = seed;
        const std::vector<QPointF> places = Run(task);
        QVERIFY(places.size() > 15 && places.size() < 200);
        // What is free at the edge of a pixel, or by less than a metre, may stay free.
        for (double x = 0.5; x < 64; x += 0.25) {
            for (double y = 0.5; y < 48; y += 0.25) {
                const bool isInside =
                    IsSet(mask, x - 0.1, y - 0.1) && IsSet(mask, x + 0.1, y + 0.1) &&
                    IsSet(mask, x - 0.1, y + 0.1) && IsSet(mask, x + 0.1, y - 0.1);
                const Point metres = InFile({x, y});
                const bool isFree =
                    Distance(metres, {300, 500}) > 151 &&
                    std::all_of(places.begin(), places.end(), [&metres](const QPointF& place) {
                        return Distance(metres, InFile(place)) > distance + 1;
                    });
                QVERIFY(!isInside || !isFree);
            }
        }
    }
}

void tst_Scatter::FillsUnconnectedAndTinyPlaces()
{
    const ProjectFixture fixture({2000, 1500}, {15360, 15360});
    const QVector<QPoint> pixels{{0, 0}, {1999, 1499}, {700, 3}, {1234, 777}};
    ScatterTask task = Task(100, 50);
    task.inside = {MaskWhere([&pixels](int x, int y) { return pixels.contains({x, y}); })};
    std::vector<QPointF> places = Run(task);
    // One fits into each.
    QCOMPARE(places.size(), std::size_t(4));
    for (const QPointF& place : places) {
        QVERIFY(pixels.contains({int(place.x()), int(place.y())}));
    }
    // A layer that is smaller than the world counts as far as it reaches.
    QImage small = raster::BlankMask({10, 10});
    small.fill(255);
    task.inside = {QImage(), small};
    task.distance = 20;
    places = Run(task);
    QVERIFY(places.size() > 5);
    for (const QPointF& place : places) {
        QVERIFY(place.x() < 10 && place.y() < 10);
    }
    task.outside = {small};
    QVERIFY(Run(task).empty());
}

void tst_Scatter::DrawsEvenly()
{
    const ProjectFixture fixture({100, 100}, {1000, 1000});
    constexpr int count = 8000;
    ScatterTask task = Task(count, 0);
    task.outside = {MaskWhere([](int x, int y) { return x >= 50 && y >= 50; })};
    const std::vector<QPointF> places = Run(task);
    QCOMPARE(places.size(), std::size_t(count));
    int counts[2][2] = {};
    for (const QPointF& place : places) {
        ++counts[place.y() < 50 ? 0 : 1][place.x() < 50 ? 0 : 1];
    }
    // Six standard deviations.
    constexpr int tolerance = 260;
    QVERIFY(std::abs(counts[0][0] - count / 3) < tolerance);
    QVERIFY(std::abs(counts[0][1] - count / 3) < tolerance);
    QVERIFY(std::abs(counts[1][0] - count / 3) < tolerance);
    QCOMPARE(counts[1][1], 0);
}

void tst_Scatter::EndsWhateverTheNumbersAre()
{
    {
        const ProjectFixture nothing({0, 0}, {0, 0});
        QVERIFY(Run(Task(10, 5)).empty());
    }
    const ProjectFixture fixture({64, 64}, {640, 640});
    QVERIFY(Run(Task(0, 5)).empty());
    QVERIFY(Run(Task(-3, 5)).empty());
    QCOMPARE(Run(Task(10, 1e9)).size(), std::size_t(1));
    QCOMPARE(Run(Task(10, -5)).size(), std::size_t(10));
    ScatterTask task = Task(10, 0);
    task.existing = {{std::nan(""), 5, 1}, {1e30, -1e30, 1}, {320, 320, 1}};
    task.existingDistance = 1e5;
    QVERIFY(Run(task).empty());
    // Far more than fit.
    task = Task(1000000, 5);
    const std::size_t many = Run(task).size();
    QVERIFY(many > 7000 && many < 20000);
}

QTEST_APPLESS_MAIN(tst_Scatter)
#include "tst_Scatter.moc"
