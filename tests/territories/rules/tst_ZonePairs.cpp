#include "territories/rules/ZonePairs.h"

#include "tests/support/Random.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>

using Relation = ZonePair::Relation;

namespace {

struct PlainZone
{
    ZoneValues values;
    WorldCircle circle;
};

ZoneValues Named(const QString& name)
{
    ZoneValues values;
    values.SetName(name);
    return values;
}

int PlainRelation(const PlainZone& a, const PlainZone& b)
{
    const WorldCircle& ca = a.circle;
    const WorldCircle& cb = b.circle;
    const double distance = std::hypot(ca.x - cb.x, ca.z - cb.z);
    if (a.values.Name() != b.values.Name()) {
        return -1;
    }
    if (a.values.counts == b.values.counts && distance == 0 && ca.radius == cb.radius) {
        return int(Relation::Equal);
    }
    if (ca.radius <= 0 || cb.radius <= 0) {
        return -1;
    }
    if (distance + cb.radius <= ca.radius) {
        return int(Relation::Inside);
    }
    if (distance + ca.radius <= cb.radius) {
        return int(Relation::Around);
    }
    return SharedArea(ca, cb) > ZonePairs::DefaultShare ? int(Relation::Overlapping) : -1;
}

/// Every zone with every earlier one, as far as they are among the last pairs of the zone.
QStringList PlainPairs(const std::vector<PlainZone>& zones)
{
    QStringList pairs;
    for (int later = 0; later < int(zones.size()); ++later) {
        QStringList own;
        for (int earlier = later - 1; earlier >= 0 && own.size() < ZonePairs::MaxPairs; --earlier) {
            const int relation =
                PlainRelation(zones[std::size_t(earlier)], zones[std::size_t(later)]);
            if (relation >= 0) {
                own.prepend(QString("%1 %2 %3").arg(later).arg(earlier).arg(relation));
            }
        }
        pairs += own;
    }
    return pairs;
}

QStringList FoundPairs(const std::vector<PlainZone>& zones)
{
    ZonePairs finder;
    QStringList found;
    for (std::size_t i = 0; i < zones.size(); ++i) {
        const std::vector<ZonePair> pairs = finder.Add(zones[i].values, zones[i].circle);
        for (const ZonePair& pair : pairs) {
            found.append(QString("%1 %2 %3").arg(i).arg(pair.earlier).arg(int(pair.relation)));
        }
    }
    return found;
}

/// The share of the smaller circle, by counting points in its square.
double CountedShare(const WorldCircle& a, const WorldCircle& b)
{
    const WorldCircle& small = a.radius < b.radius ? a : b;
    const WorldCircle& large = a.radius < b.radius ? b : a;
    constexpr int steps = 1000;
    int inSmall = 0;
    int inBoth = 0;
    for (int row = 0; row < steps; ++row) {
        for (int column = 0; column < steps; ++column) {
            const double x = small.x + small.radius * (2 * (column + 0.5) / steps - 1);
            const double z = small.z + small.radius * (2 * (row + 0.5) / steps - 1);
            if (std::hypot(x - small.x, z - small.z) <= small.radius) {
                ++inSmall;
                inBoth += std::hypot(x - large.x, z - large.z) <= large.radius ? 1 : 0;
            }
        }
    }
    return double(inBoth) / inSmall;
}

} // namespace

class tst_ZonePairs : public QObject
{
    Q_OBJECT

private slots:
    void SharedAreaIsThatOfTheSmallerCircle_data();
    void SharedAreaIsThatOfTheSmallerCircle();
    void RandomZonesHaveThePairsOfPlainSearch_data();
    void RandomZonesHaveThePairsOfPlainSearch();
    void ManyZonesOnOneSpotGiveFewPairsEach();
    void WhatIsNoNumberHasNoPair();
    void FindingsAreAtTheLaterZone();
};

void tst_ZonePairs::SharedAreaIsThatOfTheSmallerCircle_data()
{
    QTest::addColumn<double>("distance");
    QTest::addColumn<double>("radius");
    QTest::newRow("same place") << 0.0 << 100.0;
    QTest::newRow("a little aside") << 10.0 << 100.0;
    QTest::newRow("centre on the outline") << 100.0 << 100.0;
    QTest::newRow("hardly") << 190.0 << 100.0;
    QTest::newRow("small at the edge") << 90.0 << 30.0;
    QTest::newRow("small beyond the edge") << 115.0 << 30.0;
    QTest::newRow("small inside") << 60.0 << 30.0;
    QTest::newRow("large") << 250.0 << 300.0;
    QTest::newRow("apart") << 201.0 << 100.0;
}

void tst_ZonePairs::SharedAreaIsThatOfTheSmallerCircle()
{
    QFETCH(double, distance);
    QFETCH(double, radius);
    const WorldCircle a = {1000, 2000, 100};
    const WorldCircle b = {1000 + distance * 0.6, 2000 - distance * 0.8, radius};
    const double counted = CountedShare(a, b);
    QVERIFY(std::abs(SharedArea(a, b) - counted) < 0.003);
    QVERIFY(std::abs(SharedArea(b, a) - counted) < 0.003);
    QCOMPARE(SharedArea(a, {a.x, a.z, 0}), 0.0);
    QCOMPARE(SharedArea(a, {a.x, a.z, -5}), 0.0);
}

void tst_ZonePairs::RandomZonesHaveThePairsOfPlainSearch_data()
{
    QTest::addColumn<int>("worldSize");
    QTest::addColumn<int>("largestRadius");
    QTest::addColumn<int>("least");
    QTest::newRow("crowded") << 300 << 200 << 1000;
    QTest::newRow("spread") << 5000 << 900 << 20;
    QTest::newRow("one spot") << 3 << 4 << 1000;
    QTest::newRow("giants") << 2000 << 500000 << 1000;
}

void tst_ZonePairs::RandomZonesHaveThePairsOfPlainSearch()
{
    QFETCH(int, worldSize);
    QFETCH(int, largestRadius);
    QFETCH(int, least);
    Random random;
    std::vector<PlainZone> zones;
    for (int i = 0; i < 1500; ++i) {
        PlainZone zone{Named(random.Below(3) == 0 ? "Graze" : "Howling"), {}};
        zone.values.counts.staticMin = random.Below(2);
        const double span = std::pow(random.Below(1000) / 1000.0, 3);
        zone.circle = {double(random.Between(-worldSize, worldSize)),
                       double(random.Between(-worldSize, worldSize)),
                       std::floor(span * largestRadius) - 2};
        zones.push_back(zone);
    }
    const QStringList found = FoundPairs(zones);
    QVERIFY(found.size() >= least);
    QCOMPARE(found, PlainPairs(zones));
}

void tst_ZonePairs::ManyZonesOnOneSpotGiveFewPairsEach()
{
    ZonePairs finder;
    for (int i = 0; i < 20000; ++i) {
        const auto pairs = finder.Add(Named("Graze"), {500, 500, 100});
        QCOMPARE(int(pairs.size()), std::min(i, ZonePairs::MaxPairs));
        for (std::size_t k = 0; k < pairs.size(); ++k) {
            QCOMPARE(pairs[k].earlier, i - int(pairs.size()) + int(k));
            QCOMPARE(pairs[k].relation, Relation::Equal);
        }
    }
}

void tst_ZonePairs::WhatIsNoNumberHasNoPair()
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    ZonePairs finder;
    for (const WorldCircle& circle :
         {WorldCircle{nan, 5, 100}, WorldCircle{5, infinity, 100}, WorldCircle{5, 5, nan}}) {
        QVERIFY(finder.Add(Named("Graze"), circle).empty());
        QVERIFY(finder.Add(Named("Graze"), circle).empty());
    }
    QVERIFY(finder.Add(Named("Graze"), {1e38, -1e38, 3e38}).empty());
    const auto pairs = finder.Add(Named("Graze"), {1e38, -1e38, 3e38});
    QCOMPARE(pairs.size(), std::size_t(1));
    QCOMPARE(pairs.front().earlier, 6);
}

void tst_ZonePairs::FindingsAreAtTheLaterZone()
{
    PairRules rules;
    Findings findings;
    const FindingSpot first = {{FindingSubject::Kind::Zone, 1, 2, 3}, "the first"};
    const FindingSpot second = {{FindingSubject::Kind::Zone, 1, 4, 5}, "the second"};
    rules.Add(first, Named("Rest"), {0, 0, 100}, findings);
    rules.Add(second, Named("Rest"), {0, 0, 100}, findings);
    QCOMPARE(findings.size(), 1);
    QCOMPARE(findings.first().rule, QString("zone-equal"));
    QCOMPARE(findings.first().place, second.place);
    QCOMPARE(findings.first().text, QString("it is equal to the first."));
    QVERIFY(findings.first().subject == second.subject);
}

QTEST_APPLESS_MAIN(tst_ZonePairs)
#include "tst_ZonePairs.moc"
