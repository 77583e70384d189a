#include "ui/DockTerTypeProps.h"

#include "tests/support/ShownZoneFixture.h"

#include <QApplication>
#include <QColorDialog>
#include <QLineEdit>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QTimer>

class tst_DockTerTypePropsEditing : public QObject
{
    Q_OBJECT

private slots:
    void TakesRadiiInRange_data();
    void TakesRadiiInRange();
    void TakesTheRadiusOnEachKeystroke();
    void ShowsTheStoredRadiusWhenEditingIsFinished();
    void EditsCounts_data();
    void EditsCounts();
    void MaximumIsNotBelowTheMinimum_data();
    void MaximumIsNotBelowTheMinimum();
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

void tst_DockTerTypePropsEditing::TakesRadiiInRange_data()
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

void tst_DockTerTypePropsEditing::TakesRadiiInRange()
{
    QFETCH(QString, text);
    QFETCH(float, radius);
    ShownZoneFixture fixture;

    fixture.props->UpdateSize(text);

    QCOMPARE(fixture.zone->Radius(), radius);
    QCOMPARE(fixture.TakeModified(), radius != 60.0F);
}

void tst_DockTerTypePropsEditing::TakesTheRadiusOnEachKeystroke()
{
    ShownZoneFixture fixture;
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

void tst_DockTerTypePropsEditing::ShowsTheStoredRadiusWhenEditingIsFinished()
{
    ShownZoneFixture fixture;
    fixture.Type("txtSize", QStringLiteral("40000"));
    QCOMPARE(fixture.zone->Radius(), 4000.0F);

    QTest::keyClick(fixture.Child<QLineEdit>("txtSize"), Qt::Key_Return);

    QCOMPARE(fixture.Child<QLineEdit>("txtSize")->text(), QStringLiteral("4000"));
}

void tst_DockTerTypePropsEditing::EditsCounts_data()
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

void tst_DockTerTypePropsEditing::EditsCounts()
{
    QFETCH(QByteArray, box);
    QFETCH(QString, counts);
    QFETCH(QStringList, totals);
    ShownZoneFixture fixture;
    SetCounts(fixture.zone, 1, 2, 3, 4);
    SetCounts(fixture.AddZone(fixture.territory), 1, 1, 1, 1);
    fixture.SelectZone(fixture.zone);
    fixture.TakeModified();

    fixture.Type(box.constData(), QStringLiteral("77"));

    QCOMPARE(CountsText(fixture.zone->Counts()), counts);
    QCOMPARE(fixture.Totals(), totals);
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypePropsEditing::MaximumIsNotBelowTheMinimum_data()
{
    QTest::addColumn<QByteArray>("box");
    QTest::addColumn<QString>("below");
    QTest::addColumn<QString>("after");

    QTest::newRow("static") << QByteArray("spbStaticMax") << "20 20 5 6"
                            << "20 25 5 6";
    QTest::newRow("dynamic") << QByteArray("spbDynMax") << "20 30 5 5"
                             << "20 30 5 25";
}

void tst_DockTerTypePropsEditing::MaximumIsNotBelowTheMinimum()
{
    QFETCH(QByteArray, box);
    QFETCH(QString, below);
    QFETCH(QString, after);
    ShownZoneFixture fixture;
    SetCounts(fixture.zone, 20, 30, 5, 6);
    fixture.SelectZone(fixture.zone);

    // The first digit of 25 is below the minimum, but must stay while the user types.
    fixture.Type(box.constData(), QStringLiteral("2"));
    QCOMPARE(CountsText(fixture.zone->Counts()), below);
    QCOMPARE(fixture.Value(box), 2);
    QTest::keyClicks(fixture.Child<QSpinBox>(box), QStringLiteral("5"));
    QCOMPARE(CountsText(fixture.zone->Counts()), after);
    QCOMPARE(fixture.Value(box), 25);

    fixture.Type(box.constData(), QStringLiteral("2"));
    QTest::keyClick(fixture.Child<QSpinBox>(box), Qt::Key_Tab);

    QCOMPARE(CountsText(fixture.zone->Counts()), below);
    QCOMPARE(fixture.Value(box), box == "spbStaticMax" ? 20 : 5);
}

void tst_DockTerTypePropsEditing::ClicksUsages_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("usage");

    QTest::newRow("rest") << QByteArray("rdoRest") << 1;
    QTest::newRow("graze") << QByteArray("rdoGraze") << 2;
    QTest::newRow("water") << QByteArray("rdoWater") << 3;
    QTest::newRow("hunting ground") << QByteArray("rdoHunting") << 4;
    QTest::newRow("dynamic event") << QByteArray("rdoDynEvent") << 5;
}

void tst_DockTerTypePropsEditing::ClicksUsages()
{
    QFETCH(QByteArray, button);
    QFETCH(int, usage);
    ShownZoneFixture fixture;
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

void tst_DockTerTypePropsEditing::StepsThroughUsagesByKeyboard()
{
    ShownZoneFixture fixture;
    auto* rest = fixture.Child<QRadioButton>("rdoRest");
    rest->setFocus();

    QTest::keyClick(rest, Qt::Key_Down);

    QVERIFY(fixture.zone->GetUsage() != Zone::Rest);
    QCOMPARE(fixture.CheckedUsage(), fixture.zone->GetUsage());
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypePropsEditing::UsageZeroEnablesNothing()
{
    ShownZoneFixture fixture;
    const QSignalSpy changed(fixture.props, &DockTerTypeProps::Changed);

    fixture.props->UpdateUsage(0);

    QCOMPARE(fixture.zone->GetUsage(), 0);
    QCOMPARE(changed.size(), 0);
    QVERIFY(!fixture.Child<QLineEdit>("txtDynEvent")->isEnabled());
}

void tst_DockTerTypePropsEditing::NamesTheEvent()
{
    ShownZoneFixture fixture;
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

void tst_DockTerTypePropsEditing::PicksTheColor()
{
    ShownZoneFixture fixture;
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

void tst_DockTerTypePropsEditing::SlidesTheOpacity()
{
    ShownZoneFixture fixture;
    const QSignalSpy changed(fixture.props, &DockTerTypeProps::Changed);

    fixture.Child<QSlider>("slider")->setValue(77);

    QCOMPARE(fixture.territory->Color().rgba(), qRgba(0, 0, 0, 77));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toRectF(), QRectF());
    QVERIFY(fixture.TakeModified());
}

void tst_DockTerTypePropsEditing::MovesZonesInDepth()
{
    ShownZoneFixture fixture;

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

void tst_DockTerTypePropsEditing::EditsNothingWithoutAZone()
{
    ShownZoneFixture fixture;
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
    // A type is shown, which has no colour.
    fixture.props->UpdateColor(Qt::red);
    fixture.props->UpdateOpacity(3);

    QCOMPARE(CountsText(fixture.zone->Counts()), QStringLiteral("0 0 0 0"));
    QCOMPARE(fixture.zone->Radius(), 60.0F);
    QCOMPARE(fixture.territory->Color().rgba(), color);
    QCOMPARE(changed.size(), 0);
    QVERIFY(!fixture.TakeModified());
}

QTEST_MAIN(tst_DockTerTypePropsEditing)
#include "tst_DockTerTypePropsEditing.moc"
