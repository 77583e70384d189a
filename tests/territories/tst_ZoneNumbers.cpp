#include "territories/HeatGrid.h"
#include "territories/ZoneNumbers.h"

#include "tests/support/Random.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double Pi = 3.14159265358979323846;

ZoneValues MakeZone(const QString& name, const SpawnCounts& counts, float radius)
{
    ZoneValues values;
    values.SetName(name);
    values.counts = counts;
    values.radius = radius;
    return values;
}

/// The creatures of all cells.
double Creatures(const HeatGrid& grid, double cellSquareKm)
{
    double sum = 0;
    for (int y = 0; y < grid.Cells().height(); ++y) {
        for (int x = 0; x < grid.Cells().width(); ++x) {
            sum += grid.PerSquareKm(x, y) * cellSquareKm;
        }
    }
    return sum;
}

bool IsNear(double a, double b, double tolerance)
{
    return std::abs(a - b) <= tolerance;
}

} // namespace

/// The sums over zones, and the grid of creatures per square kilometre.
class tst_ZoneNumbers : public QObject
{
    Q_OBJECT

private slots:
    void SumsAreThoseOfTheZones();
    void UsagesAreToldApart();
    void SumsDoNotWrap();
    void OddRadiiHaveNoArea();
    void CreaturesAreSpreadOverTheCircle();
    void TheGridKeepsAllCreatures();
    void CreaturesOutsideOfTheWorldAreLeftOut();
    void OddCirclesHaveNoCreatures();
};

void tst_ZoneNumbers::SumsAreThoseOfTheZones()
{
    ZoneNumbers north;
    north.Add(MakeZone("Rest", {1, 2, 3, 4}, 1000));
    north.Add(MakeZone("Graze", {10, 20, 30, 40}, 500));
    ZoneNumbers south;
    south.Add(MakeZone("Rest", {5, 6, 7, 8}, 2000));
    ZoneNumbers both = north;
    both += south;

    QCOMPARE(both.All().zones, qint64(3));
    QCOMPARE(both.All().creaturesMin, qint64(56));
    QCOMPARE(both.All().creaturesMax, qint64(80));
    QVERIFY(IsNear(both.All().squareKm, Pi * (1 + 0.25 + 4), 1e-9));
    QVERIFY(IsNear(*both.All().MaxPerSquareKm(), 80 / (Pi * 5.25), 1e-9));
    QVERIFY(IsNear(*both.All().MinPerSquareKm(), 56 / (Pi * 5.25), 1e-9));
    QCOMPARE(north.All().zones, qint64(2));
}

void tst_ZoneNumbers::UsagesAreToldApart()
{
    ZoneNumbers numbers;
    for (const char* name : {"Water", "Migration", "Rest", "Autumn", "Water", "Migration"}) {
        numbers.Add(MakeZone(name, {1, 2, 0, 0}, 10));
    }
    QStringList usages;
    for (const ZoneNumbers::UsageSums& usage : numbers.Usages()) {
        usages.append(QString("%1 %2").arg(usage.name).arg(usage.sums.creaturesMax));
    }
    QCOMPARE(usages, (QStringList{"Rest 2", "Water 4", "Autumn 2", "Migration 4"}));
}

void tst_ZoneNumbers::SumsDoNotWrap()
{
    constexpr int most = std::numeric_limits<int>::max();
    ZoneNumbers numbers;
    numbers.Add(MakeZone("Rest", {most, most, most, most}, 1));
    numbers.Add(MakeZone("Rest", {most, most, most, most}, 1));
    QCOMPARE(numbers.All().creaturesMax, 4 * qint64(most));
}

void tst_ZoneNumbers::OddRadiiHaveNoArea()
{
    for (const float radius : {0.0F, -5.0F, std::numeric_limits<float>::quiet_NaN(),
                               std::numeric_limits<float>::infinity()}) {
        ZoneNumbers numbers;
        numbers.Add(MakeZone("Rest", {1, 2, 3, 4}, radius));
        QCOMPARE(numbers.All().squareKm, 0.0);
        QVERIFY(!numbers.All().MaxPerSquareKm());
    }
}

void tst_ZoneNumbers::CreaturesAreSpreadOverTheCircle()
{
    // Cells of 100 m.
    HeatGrid grid({100, 50}, {10000, 5000});
    grid.Add({3000, 4000, 800}, 60);
    const double density = 60 / (Pi * 0.64);
    QVERIFY(IsNear(grid.PerSquareKm(30, 10), density, 1e-6));
    QVERIFY(IsNear(grid.PerSquareKm(25, 9), density, 1e-6));
    QCOMPARE(grid.PerSquareKm(30, 1), 0.0);
    QCOMPARE(grid.PerSquareKm(39, 10), 0.0);
    // At the rim.
    const double rim = grid.PerSquareKm(22, 12);
    QVERIFY(rim > 0 && rim < density);
    QVERIFY(IsNear(grid.Highest(), density, 1e-6));
    // Circles add up where they overlap.
    grid.Add({3000, 4000, 800}, 60);
    QVERIFY(IsNear(grid.PerSquareKm(30, 10), 2 * density, 1e-6));
}

void tst_ZoneNumbers::TheGridKeepsAllCreatures()
{
    Random random;
    HeatGrid grid({64, 48}, {6400, 9600});
    double creatures = 0;
    for (int i = 0; i < 200; ++i) {
        const double radius = random.Between(1, 900);
        const double count = random.Below(50);
        grid.Add({radius + random.Below(6400 - 1800), radius + random.Below(9600 - 1800), radius},
                 count);
        creatures += count;
    }
    QVERIFY(IsNear(Creatures(grid, 0.1 * 0.2), creatures, 1e-6 * creatures));
}

void tst_ZoneNumbers::CreaturesOutsideOfTheWorldAreLeftOut()
{
    HeatGrid grid({64, 64}, {6400, 6400});
    grid.Add({0, 3200, 500}, 10);
    QVERIFY(IsNear(Creatures(grid, 0.01), 5, 1e-6));
    grid.Add({3200, 6400, 500}, 10);
    QVERIFY(IsNear(Creatures(grid, 0.01), 10, 1e-6));
    grid.Add({-600, 3200, 500}, 10);
    grid.Add({3200, 7000, 500}, 10);
    QVERIFY(IsNear(Creatures(grid, 0.01), 10, 1e-6));
    // One that covers the world many times.
    grid = HeatGrid({64, 64}, {6400, 6400});
    grid.Add({3200, 3200, 1e6}, 1e6);
    QVERIFY(IsNear(grid.PerSquareKm(10, 10), 1e6 / (Pi * 1e6), 1e-6));
}

void tst_ZoneNumbers::OddCirclesHaveNoCreatures()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    HeatGrid grid({10, 10}, {100, 100});
    for (const WorldCircle& circle :
         {WorldCircle{nan, 1, 1}, WorldCircle{1, nan, 1}, WorldCircle{1, 1, nan},
          WorldCircle{1, 1, 0}, WorldCircle{1, 1, -3}, WorldCircle{infinity, 1, 1},
          WorldCircle{1, 1, infinity}}) {
        grid.Add(circle, 5);
    }
    QCOMPARE(grid.Highest(), 0.0);
    HeatGrid none({0, 3}, {100, 100});
    none.Add({1, 1, 1}, 5);
    QCOMPARE(none.Highest(), 0.0);
}

QTEST_APPLESS_MAIN(tst_ZoneNumbers)
#include "tst_ZoneNumbers.moc"
