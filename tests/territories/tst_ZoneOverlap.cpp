#include "territories/ZoneOverlap.h"

#include "tests/support/Random.h"
#include "tests/support/ZoneRecords.h"

#include <QtTest>

#include <cmath>
#include <limits>

namespace {

constexpr double Nan = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

ZoneRow Circle(double x, double z, double radius, const QString& type = "Deer")
{
    ZoneRow row;
    row.type = type;
    row.circle = {x, z, radius};
    return row;
}

std::vector<bool> ByComparingAll(const std::vector<ZoneRow>& rows)
{
    std::vector<bool> doOverlap(rows.size(), false);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t k = 0; k < rows.size(); ++k) {
            const WorldCircle& a = rows[i].circle;
            const WorldCircle& b = rows[k].circle;
            if (i != k && rows[i].type == rows[k].type && a.radius >= 0 && b.radius >= 0 &&
                std::pow(a.x - b.x, 2) + std::pow(a.z - b.z, 2) <=
                    std::pow(a.radius + b.radius, 2)) {
                doOverlap[i] = true;
            }
        }
    }
    return doOverlap;
}

} // namespace

class tst_ZoneOverlap : public QObject
{
    Q_OBJECT

private slots:
    void CirclesOfATypeTouch_data();
    void CirclesOfATypeTouch();
    void CirclesTouchByTheNumbersOfFiles();
    void ManyCirclesTouchAsByComparingAll_data();
    void ManyCirclesTouchAsByComparingAll();
};

void tst_ZoneOverlap::CirclesOfATypeTouch_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("radius");
    QTest::addColumn<QString>("type");
    QTest::addColumn<bool>("doTouch");
    QTest::newRow("apart") << 300.5 << 200.0 << "Deer" << false;
    QTest::newRow("touching") << 300.0 << 200.0 << "Deer" << true;
    QTest::newRow("covered") << 10.0 << 1.0 << "Deer" << true;
    QTest::newRow("equal") << 0.0 << 100.0 << "Deer" << true;
    QTest::newRow("a point within") << 50.0 << 0.0 << "Deer" << true;
    QTest::newRow("another type") << 0.0 << 100.0 << "deer" << false;
    QTest::newRow("negative radius") << 0.0 << -100.0 << "Deer" << false;
    QTest::newRow("no radius") << 0.0 << Nan << "Deer" << false;
    QTest::newRow("infinite radius") << 0.0 << Infinity << "Deer" << false;
    QTest::newRow("no place") << Nan << 100.0 << "Deer" << false;
    QTest::newRow("nowhere") << -Infinity << 100.0 << "Deer" << false;
}

void tst_ZoneOverlap::CirclesOfATypeTouch()
{
    QFETCH(double, x);
    QFETCH(double, radius);
    QFETCH(QString, type);
    QFETCH(bool, doTouch);
    const std::vector<ZoneRow> rows = {Circle(0, 7, 100), Circle(x, 7, radius, type)};
    QCOMPARE(OverlappingRows(rows), (std::vector<bool>{doTouch, doTouch}));
    QCOMPARE(OverlappingRows({rows.front()}), std::vector<bool>{false});
    QCOMPARE(OverlappingRows({}), std::vector<bool>());
}

/// Places are not kept in metres, so what is read from a file is a little off.
void tst_ZoneOverlap::CirclesTouchByTheNumbersOfFiles()
{
    const WorldScale scale = SetZoneWorld();
    Random random;
    for (int i = 0; i < 1000; ++i) {
        const int radius = random.Between(1, 900);
        const int otherRadius = random.Between(1, 900);
        const int x = random.Between(1000, 12000);
        const auto z = static_cast<float>(random.Between(1000, 12000));
        const auto circleAt = [&](int place, int itsRadius) {
            ZoneRecord zone;
            zone.place = InScene(static_cast<float>(place), z, scale);
            zone.values.radius = static_cast<float>(itsRadius);
            zone.radius = scale.pixelsPerMetreX * zone.values.radius;
            const WorldCircle circle = InWorld(zone, scale);
            return Circle(circle.x, circle.z, circle.radius);
        };
        const ZoneRow first = circleAt(x, radius);
        const int rim = x + radius + otherRadius;
        QCOMPARE(OverlappingRows({first, circleAt(rim, otherRadius)}),
                 (std::vector<bool>{true, true}));
        QCOMPARE(OverlappingRows({first, circleAt(rim + 1, otherRadius)}),
                 (std::vector<bool>{false, false}));
    }
}

void tst_ZoneOverlap::ManyCirclesTouchAsByComparingAll_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("largest");
    QTest::newRow("spread") << 100000 << 100000 << 1500;
    QTest::newRow("crowded") << 3000 << 3000 << 300;
    QTest::newRow("on a line") << 0 << 100000 << 60;
    QTest::newRow("one upon another") << 3 << 2 << 1;
    QTest::newRow("points") << 200 << 200 << 0;
    QTest::newRow("some large") << 1000000 << 1000000 << -1;
}

void tst_ZoneOverlap::ManyCirclesTouchAsByComparingAll()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, largest);
    Random random;
    std::vector<ZoneRow> rows;
    for (int i = 0; i < 700; ++i) {
        const int radius = largest >= 0            ? random.Between(0, largest)
                           : random.Below(50) == 0 ? random.Between(0, 60000)
                                                   : random.Between(0, 900);
        rows.push_back(Circle(random.Between(0, width), random.Between(0, height), radius,
                              QString::number(random.Below(3))));
    }
    QCOMPARE(OverlappingRows(rows), ByComparingAll(rows));
}

QTEST_APPLESS_MAIN(tst_ZoneOverlap)
#include "tst_ZoneOverlap.moc"
