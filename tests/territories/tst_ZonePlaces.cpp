#include "territories/ZonePlaces.h"

#include "app/ProjectSettings.h"
#include "territories/TerritoryRecords.h"
#include "tests/support/ProjectFixture.h"
#include "tests/support/Random.h"

#include <QTest>

#include <cmath>
#include <limits>

namespace {

WorldScale Scale()
{
    return WorldScale(ProjectSettings::Instance());
}

WorldCircle Metres(QPointF place)
{
    return InWorld({{}, place, 0}, Scale());
}

QString Written(double metres)
{
    return QString::number(metres, 'g', 6);
}

QPointF InZoneNumbers(QPointF place)
{
    return {InSinglePrecision(place.x()), InSinglePrecision(place.y())};
}

} // namespace

class tst_ZonePlaces : public QObject
{
    Q_OBJECT

private slots:
    void MovesByExactlySoManyMetres();
    void FindsTheNearestPlaceThereIs();
    void WhatDoesNotMoveKeepsItsNumbers();
    void WithoutAScaleNothingMoves();
};

/// In the example a pixel is 7.5 metres.
void tst_ZonePlaces::MovesByExactlySoManyMetres()
{
    const ProjectFixture fixture({2048, 2048}, {15360, 15360});
    Random random;
    for (int i = 0; i < 20000; ++i) {
        // Away from the lower edge, where files have finer digits than zones have places.
        const double x = random.Between(2000, 24000) / 2.0;
        const double z = random.Between(2000, 24000) / 2.0;
        const QPointF place = PlaceInScene(x, z, Scale());
        QCOMPARE(place, InZoneNumbers(place));
        QCOMPARE(Written(Metres(place).x), Written(x));
        QCOMPARE(Written(Metres(place).z), Written(z));
        const double eastward = random.Between(-1500, 1500) / 2.0;
        const double upward = random.Between(-1500, 1500) / 2.0;
        const QPointF moved = MovedPlace(place, eastward, upward, Scale());
        QCOMPARE(moved, InZoneNumbers(moved));
        QCOMPARE(Written(Metres(moved).x), Written(x + eastward));
        QCOMPARE(Written(Metres(moved).z), Written(z + upward));
        // As the scene grows downward.
        QVERIFY((moved.y() < place.y()) == (upward > 0));
    }
    // With places that are 32-bit numbers of metres there is nothing left to round.
    const ProjectFixture metres({4096, 4096}, {4096, 4096});
    for (int i = 0; i < 2000; ++i) {
        const QPointF place(random.Below(4096), random.Below(4096));
        const QPointF moved = MovedPlace(place, 50, -30.5, Scale());
        QCOMPARE(moved, place + QPointF(50, 30.5));
    }
}

void tst_ZonePlaces::FindsTheNearestPlaceThereIs()
{
    const ProjectFixture fixture({2048, 1000}, {15360, 3333});
    constexpr float most = std::numeric_limits<float>::max();
    Random random;
    for (int i = 0; i < 5000; ++i) {
        const double x = InSinglePrecision(random.Bits() / 4294967296.0 * 20000 - 2000);
        const double z = InSinglePrecision(random.Bits() / 4294967296.0 * 5000 - 1000);
        const QPointF place = PlaceInScene(x, z, Scale());
        const double missX = std::fabs(Metres(place).x - x);
        const double missZ = std::fabs(Metres(place).z - z);
        QPointF other = place;
        for (const float end : {-most, most}) {
            other = place;
            for (int step = 0; step < 4; ++step) {
                other.setX(double(std::nextafter(float(other.x()), end)));
                other.setY(double(std::nextafter(float(other.y()), end)));
                QVERIFY(std::fabs(Metres(other).x - x) >= missX);
                QVERIFY(std::fabs(Metres(other).z - z) >= missZ);
            }
        }
    }
}

void tst_ZonePlaces::WhatDoesNotMoveKeepsItsNumbers()
{
    const ProjectFixture fixture({2048, 2048}, {15360, 15360});
    Random random;
    for (int i = 0; i < 2000; ++i) {
        const QPointF place = InZoneNumbers({random.Bits() / 2000000.0, random.Bits() / 2000000.0});
        QCOMPARE(MovedPlace(place, 0, 12.5, Scale()).x(), place.x());
        QCOMPARE(MovedPlace(place, 12.5, 0, Scale()).y(), place.y());
        QCOMPARE(PlaceAtMetres(place, Metres(place).x, Metres(place).z, Scale()), place);
    }
}

void tst_ZonePlaces::WithoutAScaleNothingMoves()
{
    const ProjectFixture nothing({0, 0}, {0, 0});
    QCOMPARE(MovedPlace({3, 4}, 50, 50, Scale()), QPointF(3, 4));
    QCOMPARE(PlaceInScene(3, 4, Scale()), QPointF());
    const ProjectFixture fixture;
    QCOMPARE(MovedPlace({3, 4}, 1e300, std::nan(""), Scale()), QPointF(3, 4));
}

QTEST_APPLESS_MAIN(tst_ZonePlaces)
#include "tst_ZonePlaces.moc"
