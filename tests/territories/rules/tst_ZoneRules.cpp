#include "territories/rules/ZoneRules.h"

#include <QtTest>

class tst_ZoneRules : public QObject
{
    Q_OBJECT

private slots:
    void SpotsNameTheZoneAndItsIndexes();
    void ProblemsAreAFewWords();
    void CirclesAreAsFilesSay_data();
    void CirclesAreAsFilesSay();
};

void tst_ZoneRules::SpotsNameTheZoneAndItsIndexes()
{
    const FindingSpot territory = TerritorySpot(2, "Deer", 3, "%1 woods");
    QCOMPARE(territory.place, QString("territory '%1 woods' of type 'Deer'"));
    QVERIFY(territory.subject == (FindingSubject{FindingSubject::Kind::Territory, 2, 3}));
    Findings findings;
    CheckTerritory(territory, true, findings);
    QVERIFY(findings.isEmpty());
    CheckTerritory(territory, false, findings);
    QCOMPARE(findings.size(), 1);
    QVERIFY(findings.first().subject == territory.subject);

    const FindingSpot zone = ZoneSpot(territory, 4);
    QCOMPARE(zone.place, QString("zone 5 of territory '%1 woods' of type 'Deer'"));
    CheckZone(zone, {}, {0, 0, 100}, {}, findings);
    QCOMPARE(findings.size(), 1);
    CheckZone(zone, {}, {0, 0, 10}, {}, findings);
    QVERIFY(findings.last().subject == (FindingSubject{FindingSubject::Kind::Zone, 2, 3, 4}));
}

void tst_ZoneRules::ProblemsAreAFewWords()
{
    ZoneValues values;
    Findings findings;
    CheckZone({}, values, {500, 500, 100}, {1000, 1000}, findings);
    QCOMPARE(ZoneProblems(findings), QString());
    values.counts = {2, 1, 4, 3};
    values.SetName("hunting-ground");
    CheckZone({}, values, {1500, 500, 10}, {1000, 1000}, findings);
    QCOMPARE(ZoneProblems(findings),
             QString("minimum above maximum, radius out of range, event named like a usage, "
                     "outside of the world"));
    findings.clear();
    for (const char* rule : {"zone-overlap", "zone-overlap", "new-rule"}) {
        AddFinding(findings, {}, rule, Severity::Warning, {}, "");
    }
    QCOMPARE(ZoneProblems(findings), QString("overlaps another zone"));
}

void tst_ZoneRules::CirclesAreAsFilesSay_data()
{
    QTest::addColumn<double>("metres");
    QTest::addColumn<double>("written");
    QTest::newRow("six digits") << 12345.6784 << double(12345.7F);
    QTest::newRow("few digits") << 7.5 << 7.5;
    QTest::newRow("many digits") << 1234567.0 << double(1.23457e6F);
}

void tst_ZoneRules::CirclesAreAsFilesSay()
{
    QFETCH(double, metres);
    QFETCH(double, written);
    const WorldCircle circle = AsWritten({metres, -metres, 2 * metres / 2});
    QCOMPARE(circle.x, written);
    QCOMPARE(circle.z, -written);
    QCOMPARE(circle.radius, written);
}

QTEST_APPLESS_MAIN(tst_ZoneRules)
#include "tst_ZoneRules.moc"
