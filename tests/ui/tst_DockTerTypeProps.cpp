#include "ui/DockTerTypeProps.h"

#include "tests/support/ShownZoneFixture.h"
#include "ui/widgets/ButtonColor.h"
#include "ui/widgets/GroupBoxColor.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>

#include <memory>

class tst_DockTerTypeProps : public QObject
{
    Q_OBJECT

private slots:
    void ItsButtonsHaveTheIdsOfUsages();
    void ShowsNothingAtFirst();
    void ShowsATerritory();
    void ShowsAType();
    void ShowsZones_data();
    void ShowsZones();
    void ShowsNoZone();
    void FillingWritesNothingBack();
    void TotalsFollowWhateverChangesThem();
};

void tst_DockTerTypeProps::ItsButtonsHaveTheIdsOfUsages()
{
    const ShownZoneFixture fixture;

    const auto* group = fixture.Child<QButtonGroup>("btngAIUsage");
    int id = Zone::Rest;
    for (const char* name : {"rdoRest", "rdoGraze", "rdoWater", "rdoHunting", "rdoDynEvent"}) {
        QCOMPARE(group->id(fixture.Child<QRadioButton>(name)), id++);
    }
}

void tst_DockTerTypeProps::ShowsNothingAtFirst()
{
    TerritoryDocks docks;

    QVERIFY(!docks.props->isEnabled());
    QCOMPARE(docks.Child<QGroupBox>("gboTer")->title(), QStringLiteral("Territory"));
    QVERIFY(!docks.Child<QGroupBox>("gboZone")->isEnabledTo(docks.props));
}

void tst_DockTerTypeProps::ShowsATerritory()
{
    ShownZoneFixture fixture;
    fixture.territory->setText(QStringLiteral("Deer & Wolf"));
    fixture.territory->SetRgba(qRgba(10, 20, 30, 200));
    SetCounts(fixture.zone, 1, 20, 300, 4000);
    SetCounts(fixture.AddZone(fixture.territory), 5, 6, 7, 8);

    fixture.props->ShowTerritory(fixture.territory);

    QVERIFY(fixture.props->isEnabled());
    // The ampersand is doubled, because the box would treat a single one as the mark of a shortcut.
    QCOMPARE(fixture.Child<QGroupBox>("gboTer")->title(),
             QStringLiteral("Territory: Deer && Wolf"));
    QVERIFY(fixture.Child<GroupBoxColor>("gboTerClrOp")->isEnabled());
    QCOMPARE(fixture.Child<ButtonColor>("button")->Color().rgb(), qRgb(10, 20, 30));
    QCOMPARE(fixture.Child<QSlider>("slider")->value(), 200);
    QCOMPARE(fixture.Totals(), QStringList({"6", "26", "307", "4008", "313", "4034"}));

    fixture.props->ShowTerritory(nullptr);

    QVERIFY(!fixture.props->isEnabled());
    QCOMPARE(fixture.Child<QGroupBox>("gboTer")->title(), QStringLiteral("Territory"));
    QCOMPARE(fixture.Totals(), QStringList({"0", "0", "0", "0", "0", "0"}));
}

void tst_DockTerTypeProps::ShowsAType()
{
    ShownZoneFixture fixture;
    SetCounts(fixture.zone, 1, 2, 3, 4);
    Territory* south = fixture.AddTerritory(fixture.type, QStringLiteral("South"), 1);
    SetCounts(south->Zones().first(), 10, 20, 30, 40);

    fixture.props->ShowType(fixture.type);

    QVERIFY(fixture.props->isEnabled());
    QCOMPARE(fixture.Child<QGroupBox>("gboTer")->title(), QStringLiteral("Territory type: Deer"));
    QVERIFY(!fixture.Child<GroupBoxColor>("gboTerClrOp")->isEnabled());
    QCOMPARE(fixture.Totals(), QStringList({"11", "22", "33", "44", "44", "66"}));

    fixture.props->ShowType(nullptr);

    QVERIFY(!fixture.props->isEnabled());
}

void tst_DockTerTypeProps::ShowsZones_data()
{
    QTest::addColumn<int>("usage");
    QTest::addColumn<float>("radius");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("eventName");

    QTest::newRow("rest") << 1 << 300.0F << "300"
                          << "";
    QTest::newRow("graze, with a fraction") << 2 << 1234.5F << "1234.5"
                                            << "";
    QTest::newRow("water, six digits") << 3 << 12.34567F << "12.3457"
                                       << "";
    QTest::newRow("hunting ground, no size") << 4 << 0.0F << "0"
                                             << "";
    QTest::newRow("dynamic event, huge") << 5 << 1234567.0F << "1.23457e+06"
                                         << "Storm";
    QTest::newRow("unknown usage") << 77 << 300.0F << "300"
                                   << "";
}

void tst_DockTerTypeProps::ShowsZones()
{
    QFETCH(int, usage);
    QFETCH(float, radius);
    QFETCH(QString, size);
    QFETCH(QString, eventName);
    ShownZoneFixture fixture;
    // No values of the former zone are left.
    fixture.zone->SetUsage(Zone::DynamicEvent);
    fixture.zone->SetEventName(QStringLiteral("Fire"));
    fixture.props->ShowZone(fixture.zone);
    QCOMPARE(fixture.CheckedUsage(), 5);
    Zone* zone = fixture.AddZone(fixture.territory, {500, 500}, radius);
    SetCounts(zone, 1, 2, 3, 4);
    zone->SetUsage(usage);
    zone->SetEventName(QStringLiteral("Storm"));

    fixture.SelectZone(zone);

    QVERIFY(fixture.Child<QGroupBox>("gboZone")->isEnabled());
    QCOMPARE(fixture.Child<QLineEdit>("txtSize")->text(), size);
    QCOMPARE(fixture.Value("spbStaticMin"), 1);
    QCOMPARE(fixture.Value("spbStaticMax"), 2);
    QCOMPARE(fixture.Value("spbDynMin"), 3);
    QCOMPARE(fixture.Value("spbDynMax"), 4);
    QCOMPARE(fixture.CheckedUsage(), usage > 5 ? -1 : usage);
    QCOMPARE(fixture.Child<QLineEdit>("txtDynEvent")->text(), eventName);
    QCOMPARE(fixture.Child<QLineEdit>("txtDynEvent")->isEnabled(), usage == 5);
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypeProps::ShowsNoZone()
{
    ShownZoneFixture fixture;

    fixture.props->ShowZone(nullptr);

    QVERIFY(!fixture.Child<QGroupBox>("gboZone")->isEnabled());
    QCOMPARE(fixture.CheckedUsage(), -1);
    QCOMPARE(fixture.Child<QLineEdit>("txtSize")->text(), QString());
    QVERIFY(fixture.Child<QButtonGroup>("btngAIUsage")->exclusive());
    QVERIFY(fixture.props->isEnabled());
}

void tst_DockTerTypeProps::FillingWritesNothingBack()
{
    ShownZoneFixture fixture;
    const QSignalSpy changed(fixture.props, &DockTerTypeProps::Changed);
    Zone* zone = fixture.AddZone(fixture.territory, {500, 500}, 33.333333F);
    // The boxes cannot show these values.
    SetCounts(zone, 5000, -7, 1000, 999);
    zone->SetUsage(9);
    Territory* other = fixture.AddTerritory(fixture.type, QStringLiteral("South"));
    other->SetRgba(qRgba(1, 2, 3, 4));
    const QRgb color = fixture.territory->Color().rgba();

    fixture.SelectZone(zone);
    fixture.props->ShowTerritory(other);
    fixture.props->ShowTerritory(fixture.territory);
    fixture.props->ShowType(fixture.type);
    fixture.props->ShowZone(nullptr);

    QCOMPARE(CountsText(zone->Counts()), QStringLiteral("5000 -7 1000 999"));
    QCOMPARE(zone->Radius(), 33.333333F);
    QCOMPARE(zone->GetUsage(), 9);
    QCOMPARE(fixture.territory->Color().rgba(), color);
    QCOMPARE(other->Color().rgba(), qRgba(1, 2, 3, 4));
    QCOMPARE(changed.size(), 0);
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypeProps::TotalsFollowWhateverChangesThem()
{
    ShownZoneFixture fixture;
    const QStringList none({"0", "0", "0", "0", "0", "0"});
    const QStringList some({"1", "2", "3", "4", "4", "6"});

    SetCounts(fixture.zone, 1, 2, 3, 4);
    QTRY_COMPARE(fixture.Totals(), some);
    std::unique_ptr<Zone> copy(fixture.zone->Copy());
    fixture.territory->AddZone(copy.get());
    QTRY_COMPARE(fixture.Totals(), QStringList({"2", "4", "6", "8", "8", "12"}));
    copy.reset();
    QTRY_COMPARE(fixture.Totals(), some);

    fixture.props->ShowType(fixture.type);
    fixture.type->RemoveTerritory(fixture.territory->Id());
    QTRY_COMPARE(fixture.Totals(), none);
}

QTEST_MAIN(tst_DockTerTypeProps)
#include "tst_DockTerTypeProps.moc"
