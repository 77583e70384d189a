#include "ui/AcceptedFindings.h"

#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"
#include "tests/support/BrokenFixture.h"

#include <QCheckBox>
#include <QTest>

namespace {

/// Adds two zones whose radius is too small to the territory of the zone with faults.
void AddSmallZones(const BrokenFixture& broken)
{
    Document& document = broken.fixture.window->GetDocument();
    Territory& north = *broken.TheZone().Holder();
    ZoneValues values = broken.TheZone().Values();
    values.counts = {};
    values.radius = 45;
    document.Do(Edits::InsertZone(north, {100, 100}, values));
    document.Do(Edits::InsertZone(north, {500, 500}, values));
}

/// The row of the finding about the radius of the zone with this number; -1 for none.
int RowOfSmallZone(const BrokenFixture& broken, int zone)
{
    return broken.RowOf(QStringLiteral("45 m is outside 50 to 32768 m. | zone %1 ").arg(zone));
}

} // namespace

/// Findings that the user has accepted.
class tst_AcceptedFindings : public QObject
{
    Q_OBJECT

private slots:
    void AreHiddenAndRemembered();
    void MayHaveLineBreaks();
    void FollowTheirThings();
    void FollowZonesWhoseNumberChanges();
    void LeaveOthersOfTheirThingOpen();
    void FitTheFileWhenEditsAreDiscarded();
    void OutliveAnEarlierVersion();
};

void tst_AcceptedFindings::AreHiddenAndRemembered()
{
    BrokenFixture broken;
    WindowFixture& fixture = broken.fixture;
    broken.Click(broken.RowOf("It is hidden"));
    broken.Press("btnFindingAccept");
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Radius}));
    QCOMPARE(broken.Badge(), "2 problems");
    // It is in no file of the project, and no change of it.
    QVERIFY(!fixture.IsModified());

    fixture.Load(broken.path);
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Radius}));

    QTest::mouseClick(fixture.Child<QCheckBox>("chkFindingsAccepted"), Qt::LeftButton);
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Hidden, Radius}));
    QCOMPARE(broken.Badge(), "2 problems");
    broken.Click(1);
    QCOMPARE(fixture.Child<QPushButton>("btnFindingAccept")->text(), "Take back");
    broken.Press("btnFindingAccept");
    QCOMPARE(broken.Badge(), "3 problems");
    QTest::mouseClick(fixture.Child<QCheckBox>("chkFindingsAccepted"), Qt::LeftButton);
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Hidden, Radius}));
}

void tst_AcceptedFindings::MayHaveLineBreaks()
{
    BrokenFixture broken(
        [](QByteArray text) { return text.replace("\"North\"", "\"100 %&#10;North\""); });
    const QStringList rows = broken.Rows();
    QCOMPARE(rows.size(), 3);
    broken.Click(broken.RowOf("It is hidden"));
    broken.Press("btnFindingAccept");
    broken.fixture.Load(broken.path);
    QCOMPARE(broken.Rows(), (QStringList{rows[0], rows[2]}));
}

void tst_AcceptedFindings::FollowTheirThings()
{
    BrokenFixture broken;
    WindowFixture& fixture = broken.fixture;
    Document& document = fixture.window->GetDocument();
    broken.Click(broken.RowOf("Its radius"));
    broken.Press("btnFindingAccept");
    Territory& north = *broken.TheZone().Holder();
    document.Do(Edits::Rename(north, QStringLiteral("South")));
    QCOMPARE(broken.Rows().size(), 2);
    QCOMPARE(broken.RowOf("Its radius"), -1);
    ZoneValues values = broken.TheZone().Values();
    values.radius = 45;
    document.Do(Edits::ChangeZone(broken.TheZone(), values, Property::ZoneRadius));
    QCOMPARE(broken.RowOf("Its radius"), -1);
    fixture.Trigger("actionUndo");
    fixture.Trigger("actionUndo");
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Hidden}));
}

void tst_AcceptedFindings::FollowZonesWhoseNumberChanges()
{
    BrokenFixture broken;
    Document& document = broken.fixture.window->GetDocument();
    Territory& north = *broken.TheZone().Holder();
    AddSmallZones(broken);
    const int number = north.Zones().size();
    broken.Click(RowOfSmallZone(broken, number - 1));
    broken.Press("btnFindingAccept");
    QCOMPARE(RowOfSmallZone(broken, number - 1), -1);

    document.Do(Edits::RemoveZones({&broken.TheZone()}));

    QCOMPARE(RowOfSmallZone(broken, number - 2), -1);
    QVERIFY(RowOfSmallZone(broken, number - 1) >= 0);
}

void tst_AcceptedFindings::LeaveOthersOfTheirThingOpen()
{
    BrokenFixture broken([](QByteArray text) { return text.replace("dmin=\"3\"", "dmin=\"9\""); });
    Document& document = broken.fixture.window->GetDocument();
    broken.Click(broken.RowOf("static minimum"));
    broken.Press("btnFindingAccept");
    QVERIFY(broken.RowOf("dynamic minimum") >= 0);
    ZoneValues values = broken.TheZone().Values();
    values.counts.staticMax = 9;
    document.Do(Edits::ChangeZone(broken.TheZone(), values, Property::ZoneStaticMax));
    QVERIFY(broken.RowOf("dynamic minimum") >= 0);
}

void tst_AcceptedFindings::FitTheFileWhenEditsAreDiscarded()
{
    BrokenFixture broken;
    Document& document = broken.fixture.window->GetDocument();
    Territory& north = *broken.TheZone().Holder();
    AddSmallZones(broken);
    broken.fixture.Trigger("actionQuickSave");
    const QStringList before = broken.Rows();
    const int last = north.Zones().size();
    broken.Click(RowOfSmallZone(broken, last));
    broken.Press("btnFindingAccept");
    document.Do(Edits::RemoveZones({&broken.TheZone()}));
    document.Do(Edits::Rename(north, QStringLiteral("South")));
    QCOMPARE(RowOfSmallZone(broken, last - 1), -1);

    broken.fixture.answers.AddButton(QStringLiteral("Yes"));
    broken.fixture.Load(broken.path);

    QCOMPARE(RowOfSmallZone(broken, last), -1);
    QCOMPARE(broken.Rows().size(), before.size() - 1);
    QVERIFY(RowOfSmallZone(broken, last - 1) >= 0);
}

void tst_AcceptedFindings::OutliveAnEarlierVersion()
{
    BrokenFixture broken;
    WindowFixture& fixture = broken.fixture;
    broken.Click(broken.RowOf("It is hidden"));
    broken.Press("btnFindingAccept");
    fixture.SetModified(true);
    fixture.Trigger("actionQuickSave");
    fixture.answers.Add([](QWidget& dialog) {
        auto* view = dialog.findChild<QTreeView*>("viewVersions");
        view->setCurrentIndex(view->model()->index(0, 0));
        QTest::mouseClick(dialog.findChild<QPushButton*>("btnOpenCopy"), Qt::LeftButton);
    });
    fixture.Trigger("actionVersions");
    fixture.SaveOver("actionSave", broken.path);
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Radius}));
}

QTEST_MAIN(tst_AcceptedFindings)
#include "tst_AcceptedFindings.moc"
