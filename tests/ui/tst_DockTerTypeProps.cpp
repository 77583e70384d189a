#include "ui/DockTerTypeProps.h"

#include "tests/support/Forms.h"
#include "tests/support/TerritoryDocks.h"
#include "ui/widgets/ButtonColor.h"
#include "ui/widgets/GroupBoxColor.h"

#include <QApplication>
#include <QButtonGroup>
#include <QColorDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>

#include <memory>

namespace {

/// Both docks with a current territory of one zone, which is shown.
class Fixture : public TerritoryDocks
{
public:
    Fixture()
        : type(AddType(QStringLiteral("Deer")))
        , territory(AddTerritory(type, QStringLiteral("North"), 1))
        , zone(territory->Zones().first())
    {
        MakeCurrent(territory);
        SelectZone(zone);
        TakeModified();
    }

    QStringList Totals() const
    {
        QStringList texts;
        for (const char* label : {"lblTerStaticMinVal", "lblTerStaticMaxVal", "lblTerDynMinVal",
                                  "lblTerDynMaxVal", "lblTerTotalMinVal", "lblTerTotalMaxVal"}) {
            texts.append(Text(label));
        }
        return texts;
    }
    int CheckedUsage() const { return Child<QButtonGroup>("btngAIUsage")->checkedId(); }
    int Value(const char* box) const { return Child<QSpinBox>(box)->value(); }

    TerritoryType* type;
    Territory* territory;
    Zone* zone;
};

void SetCounts(Zone* zone, int staticMin, int staticMax, int dynamicMin, int dynamicMax)
{
    zone->SetStaticMin(staticMin);
    zone->SetStaticMax(staticMax);
    zone->SetDynamicMin(dynamicMin);
    zone->SetDynamicMax(dynamicMax);
}

QString Values(const SpawnCounts& counts)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(counts.staticMin)
        .arg(counts.staticMax)
        .arg(counts.dynamicMin)
        .arg(counts.dynamicMax);
}

} // namespace

class tst_DockTerTypeProps : public QObject
{
    Q_OBJECT

private slots:
    void HasItsForm_data();
    void HasItsForm();
    void HasIconsAndUsageIds();
    void ShowsNothingAtFirst();
    void ShowsATerritory();
    void ShowsAType();
    void ShowsZones_data();
    void ShowsZones();
    void ShowsNoZone();
    void FillingWritesNothingBack();
    void TakesRadiiInRange_data();
    void TakesRadiiInRange();
    void TakesTheRadiusOnEachKeystroke();
    void ShowsTheStoredRadiusWhenEditingIsFinished();
    void EditsCounts_data();
    void EditsCounts();
    void MaximumIsNotBelowTheMinimum_data();
    void MaximumIsNotBelowTheMinimum();
    void TotalsFollowWhateverChangesThem();
    void ClicksUsages_data();
    void ClicksUsages();
    void StepsThroughUsagesByKeyboard();
    void UsageZeroEnablesNothing();
    void NamesTheEvent();
    void PicksTheColor();
    void SlidesTheOpacity();
    void MovesZonesInDepth();
    void EditsNothingWithoutAZone();
};

void tst_DockTerTypeProps::HasItsForm_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("className");
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char* object, const char* className, const char* property = "",
                        const QVariant& value = {}) {
        QTest::addRow("%s %s", object, property)
            << object << className << QByteArray(property) << value;
    };
    row("DockTerTypeProps", "QDockWidget", "windowTitle", "Properties");
    row("gboTer", "QGroupBox", "title", "Territory");
    row("gboTerClrOp", "GroupBoxColor", "title", "color and opacity");
    row("lblTerStatic", "QLabel", "text", "Static:");
    row("lblTerDyn", "QLabel", "text", "Dynamic:");
    row("lblTerTotal", "QLabel", "text", "Total:");
    row("lblTerMin", "QLabel", "text", "min");
    row("lblTerMax", "QLabel", "text", "max");
    for (const char* label : {"lblTerStaticMinVal", "lblTerStaticMaxVal", "lblTerDynMinVal",
                              "lblTerDynMaxVal", "lblTerTotalMinVal", "lblTerTotalMaxVal"}) {
        row(label, "QLabel", "text", "0");
    }
    row("gboZone", "QGroupBox", "title", "Zone");
    row("gboZone", "QGroupBox", "enabled", false);
    row("lblSize", "QLabel", "text", "Radius (in meters)");
    row("txtSize", "QLineEdit", "text", "");
    row("gboStatic", "QGroupBox", "title", "Static");
    row("gboDynamic", "QGroupBox", "title", "Dynamic");
    for (const char* box : {"spbStaticMin", "spbStaticMax", "spbDynMin", "spbDynMax"}) {
        row(box, "QSpinBox", "minimum", 0);
        row(box, "QSpinBox", "maximum", 999);
    }
    row("gboAIUsage", "QGroupBox", "title", "AI Usage");
    row("btngAIUsage", "QButtonGroup", "exclusive", true);
    row("rdoRest", "QRadioButton", "text", "Rest");
    row("rdoGraze", "QRadioButton", "text", "Graze");
    row("rdoWater", "QRadioButton", "text", "Water");
    row("rdoHunting", "QRadioButton", "text", "HuntingGround");
    row("rdoDynEvent", "QRadioButton", "text", "Dynamic event");
    row("txtDynEvent", "QLineEdit", "enabled", false);
    row("btnToFront", "QToolButton", "toolTip", "Bring to front");
    row("btnToFront", "QToolButton", "text", "Bring to front");
    row("lblToFront", "QLabel", "text", "to front");
    row("btnToBack", "QToolButton", "toolTip", "Send to back");
    row("btnToBack", "QToolButton", "text", "Send to back");
    row("lblToBack", "QLabel", "text", "to back");
}

void tst_DockTerTypeProps::HasItsForm()
{
    QFETCH(QString, object);
    QFETCH(QString, className);
    QFETCH(QByteArray, property);
    QFETCH(QVariant, value);
    DockTerTypeProps dock;

    CheckForm(dock, object, className, property, value);
}

void tst_DockTerTypeProps::HasIconsAndUsageIds()
{
    const Fixture fixture;

    QVERIFY(ShowsIcon(fixture.Child<QToolButton>("btnToFront")->icon(),
                      QStringLiteral(":/bringtofront")));
    QVERIFY(
        ShowsIcon(fixture.Child<QToolButton>("btnToBack")->icon(), QStringLiteral(":/sendtoback")));
    const auto* group = fixture.Child<QButtonGroup>("btngAIUsage");
    int id = Zone::Rest;
    for (const char* name : {"rdoRest", "rdoGraze", "rdoWater", "rdoHunting", "rdoDynEvent"}) {
        QCOMPARE(group->id(fixture.Child<QRadioButton>(name)), id++);
    }
    QCOMPARE(group->buttons().size(), 5);
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
    Fixture fixture;
    fixture.territory->setText(QStringLiteral("Deer & Wolf"));
    fixture.territory->SetRgba(qRgba(10, 20, 30, 200));
    SetCounts(fixture.zone, 1, 20, 300, 4000);
    SetCounts(fixture.AddZone(fixture.territory), 5, 6, 7, 8);

    fixture.props->ShowTerritory(fixture.territory);

    QVERIFY(fixture.props->isEnabled());
    // The ampersand is doubled where a box would take it for the mark of a key.
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
    Fixture fixture;
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
    Fixture fixture;
    // What was shown before does not show through.
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
    Fixture fixture;

    fixture.props->ShowZone(nullptr);

    QVERIFY(!fixture.Child<QGroupBox>("gboZone")->isEnabled());
    QCOMPARE(fixture.CheckedUsage(), -1);
    QCOMPARE(fixture.Child<QLineEdit>("txtSize")->text(), QString());
    QVERIFY(fixture.Child<QButtonGroup>("btngAIUsage")->exclusive());
    QVERIFY(fixture.props->isEnabled());
}

void tst_DockTerTypeProps::FillingWritesNothingBack()
{
    Fixture fixture;
    const QSignalSpy changed(fixture.props, &DockTerTypeProps::Changed);
    Zone* zone = fixture.AddZone(fixture.territory, {500, 500}, 33.333333F);
    // The boxes cannot show these.
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

    QCOMPARE(Values(zone->Counts()), QStringLiteral("5000 -7 1000 999"));
    QCOMPARE(zone->Radius(), 33.333333F);
    QCOMPARE(zone->GetUsage(), 9);
    QCOMPARE(fixture.territory->Color().rgba(), color);
    QCOMPARE(other->Color().rgba(), qRgba(1, 2, 3, 4));
    QCOMPARE(changed.size(), 0);
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypeProps::TakesRadiiInRange_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("radius");

    QTest::newRow("the smallest") << "50" << 50.0F;
    QTest::newRow("the largest") << "32768" << 32768.0F;
    QTest::newRow("a fraction") << "1234.5" << 1234.5F;
    QTest::newRow("with an exponent") << "1e3" << 1000.0F;
    QTest::newRow("just below") << "49.9" << 60.0F;
    QTest::newRow("just above") << "32768.1" << 60.0F;
    QTest::newRow("above") << "40000" << 60.0F;
    QTest::newRow("negative") << "-300" << 60.0F;
    QTest::newRow("no number") << "300 m" << 60.0F;
    QTest::newRow("not a number") << "nan" << 60.0F;
    QTest::newRow("infinite") << "inf" << 60.0F;
    QTest::newRow("empty") << "" << 60.0F;
}

void tst_DockTerTypeProps::TakesRadiiInRange()
{
    QFETCH(QString, text);
    QFETCH(float, radius);
    Fixture fixture;

    fixture.props->UpdateSize(text);

    QCOMPARE(fixture.zone->Radius(), radius);
    QCOMPARE(fixture.TakeModified(), radius != 60.0F);
}

void tst_DockTerTypeProps::TakesTheRadiusOnEachKeystroke()
{
    Fixture fixture;
    fixture.window.activateWindow();

    fixture.Type("txtSize", QStringLiteral("49"));
    QCOMPARE(fixture.zone->Radius(), 60.0F);
    QVERIFY(!fixture.TakeModified());
    fixture.Type("txtSize", QStringLiteral("499"));
    QCOMPARE(fixture.zone->Radius(), 499.0F);
    QTest::keyClicks(fixture.Child<QLineEdit>("txtSize"), QStringLiteral("99"));
    QCOMPARE(fixture.zone->Radius(), 4999.0F);
    QVERIFY(fixture.TakeModified());
    QCOMPARE(fixture.Child<QLineEdit>("txtSize")->text(), QStringLiteral("49999"));
}

void tst_DockTerTypeProps::ShowsTheStoredRadiusWhenEditingIsFinished()
{
    Fixture fixture;
    fixture.Type("txtSize", QStringLiteral("40000"));
    QCOMPARE(fixture.zone->Radius(), 4000.0F);

    QTest::keyClick(fixture.Child<QLineEdit>("txtSize"), Qt::Key_Return);

    QCOMPARE(fixture.Child<QLineEdit>("txtSize")->text(), QStringLiteral("4000"));
}

void tst_DockTerTypeProps::EditsCounts_data()
{
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QString>("counts");
    QTest::addColumn<QStringList>("totals");

    QTest::newRow("static min") << QByteArray("spbStaticMin") << "77 2 3 4"
                                << QStringList({"78", "3", "4", "5", "82", "8"});
    QTest::newRow("static max") << QByteArray("spbStaticMax") << "1 77 3 4"
                                << QStringList({"2", "78", "4", "5", "6", "83"});
    QTest::newRow("dynamic min") << QByteArray("spbDynMin") << "1 2 77 4"
                                 << QStringList({"2", "3", "78", "5", "80", "8"});
    QTest::newRow("dynamic max") << QByteArray("spbDynMax") << "1 2 3 77"
                                 << QStringList({"2", "3", "4", "78", "6", "81"});
}

void tst_DockTerTypeProps::EditsCounts()
{
    QFETCH(QByteArray, box);
    QFETCH(QString, counts);
    QFETCH(QStringList, totals);
    Fixture fixture;
    SetCounts(fixture.zone, 1, 2, 3, 4);
    SetCounts(fixture.AddZone(fixture.territory), 1, 1, 1, 1);
    fixture.SelectZone(fixture.zone);
    fixture.TakeModified();

    fixture.Type(box.constData(), QStringLiteral("77"));

    QCOMPARE(Values(fixture.zone->Counts()), counts);
    QCOMPARE(fixture.Totals(), totals);
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypeProps::MaximumIsNotBelowTheMinimum_data()
{
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QString>("below");
    QTest::addColumn<QString>("after");

    QTest::newRow("static") << QByteArray("spbStaticMax") << "20 20 5 6"
                            << "20 25 5 6";
    QTest::newRow("dynamic") << QByteArray("spbDynMax") << "20 30 5 5"
                             << "20 30 5 25";
}

void tst_DockTerTypeProps::MaximumIsNotBelowTheMinimum()
{
    QFETCH(QByteArray, box);
    QFETCH(QString, below);
    QFETCH(QString, after);
    Fixture fixture;
    SetCounts(fixture.zone, 20, 30, 5, 6);
    fixture.SelectZone(fixture.zone);

    // The first digit of 25 is below the minimum, and must not be taken away from the typist.
    fixture.Type(box.constData(), QStringLiteral("2"));
    QCOMPARE(Values(fixture.zone->Counts()), below);
    QCOMPARE(fixture.Value(box), 2);
    QTest::keyClicks(fixture.Child<QSpinBox>(box), QStringLiteral("5"));
    QCOMPARE(Values(fixture.zone->Counts()), after);
    QCOMPARE(fixture.Value(box), 25);

    fixture.Type(box.constData(), QStringLiteral("2"));
    QTest::keyClick(fixture.Child<QSpinBox>(box), Qt::Key_Tab);

    QCOMPARE(Values(fixture.zone->Counts()), below);
    QCOMPARE(fixture.Value(box), box == "spbStaticMax" ? 20 : 5);
}

void tst_DockTerTypeProps::TotalsFollowWhateverChangesThem()
{
    Fixture fixture;
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

void tst_DockTerTypeProps::ClicksUsages_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("usage");

    QTest::newRow("rest") << QByteArray("rdoRest") << 1;
    QTest::newRow("graze") << QByteArray("rdoGraze") << 2;
    QTest::newRow("water") << QByteArray("rdoWater") << 3;
    QTest::newRow("hunting ground") << QByteArray("rdoHunting") << 4;
    QTest::newRow("dynamic event") << QByteArray("rdoDynEvent") << 5;
}

void tst_DockTerTypeProps::ClicksUsages()
{
    QFETCH(QByteArray, button);
    QFETCH(int, usage);
    Fixture fixture;
    fixture.zone->SetUsage(usage == 1 ? 2 : 1);
    fixture.zone->SetEventName(QStringLiteral("Storm"));
    fixture.props->ShowZone(fixture.zone);
    const QSignalSpy changed(fixture.props, &DockTerTypeProps::Changed);

    fixture.Click(button.constData());

    QCOMPARE(fixture.zone->GetUsage(), usage);
    QCOMPARE(fixture.CheckedUsage(), usage);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toRectF(), fixture.zone->sceneBoundingRect());
    QCOMPARE(fixture.Child<QLineEdit>("txtDynEvent")->isEnabled(), usage == 5);
    QCOMPARE(fixture.Child<QLineEdit>("txtDynEvent")->text(),
             usage == 5 ? QStringLiteral("Storm") : QString());
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypeProps::StepsThroughUsagesByKeyboard()
{
    Fixture fixture;
    auto* rest = fixture.Child<QRadioButton>("rdoRest");
    rest->setFocus();

    QTest::keyClick(rest, Qt::Key_Down);

    QVERIFY(fixture.zone->GetUsage() != Zone::Rest);
    QCOMPARE(fixture.CheckedUsage(), fixture.zone->GetUsage());
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypeProps::UsageZeroEnablesNothing()
{
    Fixture fixture;
    const QSignalSpy changed(fixture.props, &DockTerTypeProps::Changed);

    fixture.props->UpdateUsage(0);

    QCOMPARE(fixture.zone->GetUsage(), 0);
    QCOMPARE(changed.size(), 0);
    QVERIFY(!fixture.Child<QLineEdit>("txtDynEvent")->isEnabled());
}

void tst_DockTerTypeProps::NamesTheEvent()
{
    Fixture fixture;
    fixture.props->UpdateEvent(QStringLiteral("Storm"));
    QCOMPARE(fixture.zone->EventName(), QString());
    QVERIFY(!fixture.TakeModified());

    fixture.Click("rdoDynEvent");
    fixture.Type("txtDynEvent", QStringLiteral("Storm"));
    QCOMPARE(fixture.zone->EventName(), QStringLiteral("Storm"));
    QVERIFY(fixture.TakeModified());

    fixture.props->UpdateEvent(QStringLiteral("Storm"));
    QVERIFY(!fixture.TakeModified());
}

void tst_DockTerTypeProps::PicksTheColor()
{
    Fixture fixture;
    fixture.territory->SetAlpha(100);
    const QSignalSpy changed(fixture.props, &DockTerTypeProps::Changed);

    QTimer::singleShot(0, fixture.props, [] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        dialog->setCurrentColor(QColor(9, 8, 7));
        dialog->accept();
    });
    fixture.Click("button");

    QCOMPARE(fixture.territory->Color().rgba(), qRgba(9, 8, 7, 100));
    QCOMPARE(fixture.zone->Color().rgba(), qRgba(9, 8, 7, 100));
    QCOMPARE(changed.size(), 0);
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypeProps::SlidesTheOpacity()
{
    Fixture fixture;
    const QSignalSpy changed(fixture.props, &DockTerTypeProps::Changed);

    fixture.Child<QSlider>("slider")->setValue(77);

    QCOMPARE(fixture.territory->Color().rgba(), qRgba(0, 0, 0, 77));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toRectF(), QRectF());
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypeProps::MovesZonesInDepth()
{
    Fixture fixture;

    fixture.Click("btnToFront");
    QCOMPARE(fixture.zone->zValue(), 25.0);
    QVERIFY(fixture.TakeModified());
    fixture.Click("btnToFront");
    fixture.Click("btnToBack");
    QCOMPARE(fixture.zone->zValue(), 25.0);
    QVERIFY(fixture.TakeModified());
    for (int i = 0; i < 20; ++i) {
        fixture.Click("btnToFront");
    }
    QCOMPARE(fixture.zone->zValue(), 255.0);
}

void tst_DockTerTypeProps::EditsNothingWithoutAZone()
{
    Fixture fixture;
    fixture.props->ShowZone(nullptr);
    fixture.props->ShowType(fixture.type);
    const QSignalSpy changed(fixture.props, &DockTerTypeProps::Changed);
    const QRgb color = fixture.territory->Color().rgba();

    fixture.props->UpdateSize(QStringLiteral("100"));
    fixture.props->UpdateStaticMin(1);
    fixture.props->UpdateStaticMax(1);
    fixture.props->UpdateDynMin(1);
    fixture.props->UpdateDynMax(1);
    fixture.props->ToFront();
    fixture.props->ToBack();
    fixture.props->UpdateUsage(3);
    fixture.props->UpdateEvent(QStringLiteral("Storm"));
    // The colour belongs to a territory, and a type is shown.
    fixture.props->UpdateColor(Qt::red);
    fixture.props->UpdateOpacity(3);

    QCOMPARE(Values(fixture.zone->Counts()), QStringLiteral("0 0 0 0"));
    QCOMPARE(fixture.zone->Radius(), 60.0F);
    QCOMPARE(fixture.territory->Color().rgba(), color);
    QCOMPARE(changed.size(), 0);
    QVERIFY(!fixture.TakeModified());
}

QTEST_MAIN(tst_DockTerTypeProps)
#include "tst_DockTerTypeProps.moc"
