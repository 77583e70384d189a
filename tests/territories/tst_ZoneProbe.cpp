#include "territories/ZoneProbe.h"

#include "app/ProjectSettings.h"
#include "territories/Territory.h"
#include "territories/TerritoryRecords.h"
#include "tests/support/Random.h"
#include "tests/support/XmlText.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_ZoneProbe : public QObject
{
    Q_OBJECT

private slots:
    void CirclesCoverTheirOutline_data();
    void CirclesCoverTheirOutline();
    void CoveringZonesKeepTheOrderOfTheList();
    void ManyZonesAreFoundAsByPlainArithmetic();
    void ZonesOfTheSceneHaveTheNumbersOfTheirFiles();
};

namespace {

constexpr float Nan = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinity = std::numeric_limits<float>::infinity();

} // namespace

void tst_ZoneProbe::CirclesCoverTheirOutline_data()
{
    QTest::addColumn<float>("radius");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("z");
    QTest::addColumn<bool>("isCovered");
    QTest::addColumn<double>("distance");
    QTest::newRow("centre") << 100.0F << 1000.0 << 2000.0 << true << 0.0;
    QTest::newRow("inside") << 100.0F << 1030.0 << 1960.0 << true << 50.0;
    QTest::newRow("outline") << 100.0F << 1060.0 << 1920.0 << true << 100.0;
    QTest::newRow("just outside") << 100.0F << 1060.0 << 1919.999 << false << 0.0;
    QTest::newRow("in the corner of its square") << 100.0F << 1080.0 << 2080.0 << false << 0.0;
    QTest::newRow("centre of a point") << 0.0F << 1000.0 << 2000.0 << true << 0.0;
    QTest::newRow("beside a point") << 0.0F << 1000.0 << 2000.001 << false << 0.0;
    QTest::newRow("negative radius") << -100.0F << 1000.0 << 2000.0 << false << 0.0;
    QTest::newRow("no radius") << Nan << 1000.0 << 2000.0 << false << 0.0;
    QTest::newRow("infinite radius") << Infinity << 1000.0 << 2050.0 << true << 50.0;
    QTest::newRow("far away") << 100.0F << 1e300 << -1e300 << false << 0.0;
    QTest::newRow("left of the world") << 2000.0F << -500.0 << 2000.0 << true << 1500.0;
}

void tst_ZoneProbe::CirclesCoverTheirOutline()
{
    QFETCH(float, radius);
    QFETCH(double, x);
    QFETCH(double, z);
    QFETCH(bool, isCovered);
    QFETCH(double, distance);
    const std::vector<ZoneHere> covering = ZonesAt({{1000, 2000, radius, 0, 1}}, x, z);
    QCOMPARE(covering.size(), std::size_t(isCovered ? 1 : 0));
    if (isCovered) {
        QCOMPARE(covering.front().distance, distance);
    }
}

void tst_ZoneProbe::CoveringZonesKeepTheOrderOfTheList()
{
    const ProbedZones zones = {{0, 0, 50, 3, 1}, {500, 0, 50, 3, 2}, {10, 0, 50, 1, 1}};
    const std::vector<ZoneHere> covering = ZonesAt(zones, 4, 3);
    QCOMPARE(covering.size(), std::size_t(2));
    QCOMPARE(covering.at(0).index, 0);
    QCOMPARE(covering.at(0).distance, 5.0);
    QCOMPARE(covering.at(1).index, 2);
}

void tst_ZoneProbe::ManyZonesAreFoundAsByPlainArithmetic()
{
    Random random;
    ProbedZones zones;
    for (int i = 0; i < 500; ++i) {
        zones.push_back({float(random.Between(-500, 10500)) / 3, float(random.Below(10000)) / 7,
                         float(random.Below(3000)) / 11, i % 7, i});
    }
    int found = 0;
    for (int place = 0; place < 500; ++place) {
        const double x = random.Between(-100, 3500);
        const double z = random.Between(-100, 1500);
        QVector<int> expected;
        for (int i = 0; i < 500; ++i) {
            const ProbedZone& zone = zones.at(std::size_t(i));
            if (std::hypot(x - double(zone.x), z - double(zone.z)) <= double(zone.radius)) {
                expected.append(i);
            }
        }
        QVector<int> indices;
        for (const ZoneHere& zone : ZonesAt(zones, x, z)) {
            const ProbedZone& circle = zones.at(std::size_t(zone.index));
            QCOMPARE(zone.distance, std::hypot(x - double(circle.x), z - double(circle.z)));
            indices.append(zone.index);
        }
        QCOMPARE(indices, expected);
        found += indices.size();
    }
    QVERIFY(found > 1000);
}

void tst_ZoneProbe::ZonesOfTheSceneHaveTheNumbersOfTheirFiles()
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetSizes(2048, 1024, 15360, 10240);
    Territory territory(QStringLiteral("North"));
    ElementReader xml("<territory><zone name='Rest' x='1234.5' z='9876' r='150'/></territory>");
    QVERIFY(territory.Read(xml, nullptr));
    const TerritoryRecord record = territory.Record();
    const ProbedZone zone = ProbedZoneOf(record.zones.front(), WorldScale(settings), 4, 1);
    QCOMPARE(zone.x, 1234.5F);
    QCOMPARE(zone.z, 9876.0F);
    QCOMPARE(zone.radius, 150.0F);
    QCOMPARE(zone.owner, 4);
    QCOMPARE(zone.number, 1);
}

QTEST_GUILESS_MAIN(tst_ZoneProbe)

#include "tst_ZoneProbe.moc"
