#include "ui/DockProblems.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/ViewMoves.h"
#include "document/Document.h"
#include "document/Problems.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/raster/Mask.h"
#include "tests/support/BrokenFixture.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"
#include "ui/ProblemBadge.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QImage>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QToolBar>
#include <QTreeView>

/// The dock that lists what is wrong with the open project, and its badge.
class tst_DockProblems : public QObject
{
    Q_OBJECT

private slots:
    void IsHiddenAtFirst();
    void TheExampleHasNoProblem();
    void TheBadgeCountsAndOpensTheDock();
    void NothingFoundCountsAfterTheCheck();
    void TheToolBarFitsASmallScreen();
    void ListsErrorsFirst();
    void ADoubleClickShowsTheThing_data();
    void ADoubleClickShowsTheThing();
    void FixIsOneStepOfUndo_data();
    void FixIsOneStepOfUndo();
    void FixGoesOnWithTheNextFinding();
    void FixShowsTheZoneAnew();
    void NoFixWhereTheUserMustJudge();
    void AZoneMayGoWhileItIsListed();
    void OnlyViewsInAProjectThatIsOnlyViewed();
    void FollowsTheFiles();
    void TellsOfLayersThatLieOutside();
    void TellsThatTheProjectHasNoPlace();
    void FollowsBitmapsThatEndTooEarly();
    void KeepsTheSelectionWhenFindingsCome();
    void LogsNothing();
};

void tst_DockProblems::IsHiddenAtFirst()
{
    const WindowFixture fixture;
    QVERIFY(fixture.Child<QDockWidget>("DockProblems")->isHidden());
    QCOMPARE(fixture.Child<QDockWidget>("DockProblems")->windowTitle(), "Problems");
    QTRY_COMPARE(fixture.Child<QLabel>("lblProblems")->text(), "No problems");
    QAction* action = fixture.Action("actionProblems");
    for (const bool isShown : {true, false}) {
        action->trigger();
        QCOMPARE(action->isChecked(), isShown);
        QCOMPARE(fixture.Child<QDockWidget>("DockProblems")->isVisible(), isShown);
    }
}

void tst_DockProblems::TheExampleHasNoProblem()
{
    WindowFixture fixture;
    fixture.Load(QStringLiteral(QUILLMAP_EXAMPLE_FOLDER "/highlands.xml"));
    QTRY_VERIFY_WITH_TIMEOUT(fixture.window->ProjectProblems().IsUpToDate(), Longest);
    QCOMPARE(fixture.Child<QLabel>("lblProblems")->text(), "No problems");
}

void tst_DockProblems::TheBadgeCountsAndOpensTheDock()
{
    BrokenFixture broken;
    QCOMPARE(broken.Badge(), "3 problems");
    auto* dock = broken.fixture.Child<QDockWidget>("DockProblems");
    dock->hide();
    QTest::mouseClick(broken.fixture.Child<QLabel>("lblProblems"), Qt::LeftButton);
    QVERIFY(dock->isVisible());
    QVERIFY(broken.fixture.Action("actionProblems")->isChecked());
    QCOMPARE(ProblemBadge::TextFor(1), "1 problem");
}

void tst_DockProblems::NothingFoundCountsAfterTheCheck()
{
    WindowFixture fixture;
    fixture.Load(QStringLiteral(QUILLMAP_EXAMPLE_FOLDER "/highlands.xml"));
    fixture.Trigger("actionProblems");
    auto* badge = fixture.Child<QLabel>("lblProblems");
    const auto* state = fixture.Child<QLabel>("lblProblemsState");
    const auto picture = [badge] { return badge->grab().toImage().copy(0, 0, 24, 16); };
    QCOMPARE(badge->text(), "Checking…");
    QCOMPARE(state->text(), "Checking…");
    const QImage before = picture();
    QTRY_COMPARE_WITH_TIMEOUT(badge->text(), QStringLiteral("No problems"), Longest);
    QCOMPARE(state->text(), "Nothing found");
    // The tick has come.
    QVERIFY(picture() != before);

    Document& document = fixture.window->GetDocument();
    Layer* layer = document.Layers().LayerAt(0);
    document.Do(Edits::SetLayerFlags(*layer, 0, 0));
    QCOMPARE(badge->text(), "Checking…");
    QTRY_COMPARE(badge->text(), "1 problem");
    QCOMPARE(state->text(), "");
    // What was found stays in sight.
    document.Do(Edits::Rename(*layer, "Other"));
    QCOMPARE(badge->text(), "1 problem");
    QCOMPARE(state->text(), "Checking…");
}

void tst_DockProblems::TheToolBarFitsASmallScreen()
{
    BrokenFixture broken;
    // Less the borders that window systems draw.
    broken.fixture.window->resize(1366 - 4, 768 - 30);
    // The tools for painting come with the brush.
    broken.fixture.Trigger("actionTogglePaintMode");
    QCoreApplication::processEvents();
    const auto* bar = broken.fixture.Child<QToolBar>("toolBarEdit");
    QVERIFY(bar->width() >= bar->sizeHint().width());
    const auto* badge = broken.fixture.Child<QLabel>("lblProblems");
    QVERIFY(badge->isVisible());
    QVERIFY(bar->rect().contains(badge->geometry()));
}

void tst_DockProblems::ListsErrorsFirst()
{
    BrokenFixture broken;
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Hidden, Radius}));
    const QModelIndex icon = broken.View().model()->index(0, 0);
    QCOMPARE(icon.data(Qt::AccessibleTextRole).toString(), "Error");
    QVERIFY(!icon.data(Qt::DecorationRole).value<QIcon>().isNull());
    QCOMPARE(icon.sibling(1, 0).data(Qt::AccessibleTextRole).toString(), "Warning");
}

void tst_DockProblems::ADoubleClickShowsTheThing_data()
{
    QTest::addColumn<QString>("finding");
    QTest::addColumn<QString>("focus");
    QTest::newRow("zone, minimum") << "static minimum"
                                   << "spbStaticMax";
    QTest::newRow("zone, radius") << "Its radius"
                                  << "txtSize";
    QTest::newRow("territory") << "It is hidden"
                               << "treeTerTypes";
    QTest::newRow("zone, place") << "It reaches"
                                 << "txtZonesX";
    QTest::newRow("zone, event") << "Its dynamic event"
                                 << "rdoDynEvent";
    QTest::newRow("layer") << "It has no flags"
                           << "Town";
    QTest::newRow("value bit") << "No flag type names value bit"
                               << "Rich";
    QTest::newRow("layer without pixels") << "Nothing is painted"
                                          << "treeLayers";
}

void tst_DockProblems::ADoubleClickShowsTheThing()
{
    QFETCH(QString, finding);
    QFETCH(QString, focus);
    BrokenFixture broken([](QByteArray text) {
        return text.replace("x=\"300\" z=\"300\"", "x=\"30\" z=\"300\"")
            .replace("\"Rest\"", "\"rest\"");
    });
    WindowFixture& fixture = broken.fixture;
    Document& document = fixture.window->GetDocument();
    Layer* red = document.Layers().LayerAt(0);
    document.Do(Edits::SetLayerFlags(*red, 0, finding.contains("bit") ? 1U << 31 : 0));
    document.Do(Edits::FillLayer(QStringLiteral("Clear"), *red, 0));
    fixture.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
    // Somewhere else.
    fixture.View().Moves().Show({{1, 1}, 32});

    const int row = broken.RowOf(finding);
    QVERIFY(row >= 0);
    broken.DoubleClick(row);

    if (finding.startsWith("It has no") || finding.startsWith("No")) {
        QCOMPARE(document.CurrentLayer(), red);
    } else {
        QVERIFY(fixture.View()
                    .mapToScene(fixture.View().viewport()->rect())
                    .boundingRect()
                    .contains(broken.TheZone().pos()));
    }
    if (focus.startsWith("spb") || focus.startsWith("txt") || focus.startsWith("rdo")) {
        QCOMPARE(fixture.Scene().SelectedZones(), QVector<Zone*>{&broken.TheZone()});
        // A jump can be taken back.
        fixture.Trigger("actionGoBack");
        QVERIFY(fixture.View().Moves().Place().center.x() < 25);
    }
    QVERIFY(QApplication::focusWidget());
    const auto* flag = qobject_cast<QCheckBox*>(QApplication::focusWidget());
    QCOMPARE(flag ? flag->text() : QApplication::focusWidget()->objectName(), focus);
}

void tst_DockProblems::FixIsOneStepOfUndo_data()
{
    QTest::addColumn<QString>("finding");
    QTest::newRow("minimum") << "static minimum";
    QTest::newRow("radius") << "Its radius";
    QTest::newRow("hidden") << "It is hidden";
}

void tst_DockProblems::FixIsOneStepOfUndo()
{
    QFETCH(QString, finding);
    BrokenFixture broken;
    const WindowFixture::SavedFiles before = broken.fixture.SavedBytes();
    const int row = broken.RowOf(finding);
    broken.Click(row);
    QVERIFY(broken.fixture.Child<QPushButton>("btnFindingFix")->isEnabled());

    broken.Press("btnFindingFix");

    QCOMPARE(broken.Rows().size(), 2);
    QCOMPARE(broken.RowOf(finding), -1);
    QCOMPARE(broken.Badge(), "2 problems");
    broken.fixture.Trigger("actionUndo");
    QCOMPARE(broken.fixture.SavedBytes(), before);
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Hidden, Radius}));
    QVERIFY(!broken.fixture.Action("actionUndo")->isEnabled());
}

void tst_DockProblems::FixGoesOnWithTheNextFinding()
{
    BrokenFixture broken;
    broken.Click(0);
    for (int left = 2; left >= 0; --left) {
        broken.Press("btnFindingFix");
        QCOMPARE(broken.Rows().size(), left);
    }
    QCOMPARE(broken.Badge(), "No problems");
    QCOMPARE(broken.fixture.Child<QLabel>("lblProblemsState")->text(), "Nothing found");
    QVERIFY(!broken.fixture.Child<QPushButton>("btnFindingFix")->isEnabled());
}

void tst_DockProblems::FixShowsTheZoneAnew()
{
    BrokenFixture broken;
    broken.DoubleClick(broken.RowOf("static minimum"));
    auto* maximum = broken.fixture.Child<QSpinBox>("spbStaticMax");
    QCOMPARE(maximum->value(), 2);
    broken.Press("btnFindingFix");
    QCOMPARE(maximum->value(), 9);
}

void tst_DockProblems::NoFixWhereTheUserMustJudge()
{
    BrokenFixture broken([](QByteArray text) {
        return text.replace("x=\"300\" z=\"300\"", "x=\"-300\" z=\"300\"");
    });
    broken.Click(broken.RowOf("lies outside the world"));
    QVERIFY(!broken.fixture.Child<QPushButton>("btnFindingFix")->isEnabled());
    QVERIFY(broken.fixture.Child<QPushButton>("btnFindingAccept")->isEnabled());
}

void tst_DockProblems::AZoneMayGoWhileItIsListed()
{
    BrokenFixture broken;
    WindowFixture& fixture = broken.fixture;
    const int row = broken.RowOf("static minimum");
    broken.Click(row);
    fixture.window->GetDocument().Do(Edits::RemoveZones({&broken.TheZone()}));
    // It is still in the list.
    QVERIFY(!fixture.Child<QPushButton>("btnFindingFix")->isEnabled());
    const QPoint at = broken.View().visualRect(broken.View().model()->index(row, 1)).center();
    QTest::mouseDClick(broken.View().viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(fixture.Scene().SelectedZones(), QVector<Zone*>());
    QCOMPARE(broken.Rows(), QStringList{Hidden});
    fixture.SetModified(false);
    fixture.Load(broken.path);
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Hidden, Radius}));
}

void tst_DockProblems::OnlyViewsInAProjectThatIsOnlyViewed()
{
    BrokenFixture broken(
        [](QByteArray text) { return text.replace("file=\"\"", "file=\"world.png\""); });
    WindowFixture& fixture = broken.fixture;
    QVERIFY(raster::BlankMask({8, 8}).save(QFileInfo(broken.path).path() + "/world.png"));
    // File dialogs start elsewhere; the files of the project are found beside its document.
    ProjectSettings::Instance().SetDir(QDir::temp());
    fixture.Restart(broken.path);
    if (!fixture.Child<QDockWidget>("DockProblems")->isVisible()) {
        fixture.Trigger("actionProblems");
    }
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Hidden, Radius}));
    broken.DoubleClick(0);
    QVERIFY(!fixture.Child<QPushButton>("btnFindingFix")->isEnabled());
    QVERIFY(!fixture.Child<QPushButton>("btnFindingAccept")->isEnabled());
    QCOMPARE(fixture.Scene().SelectedZones(), QVector<Zone*>());
}

void tst_DockProblems::FollowsTheFiles()
{
    BrokenFixture broken;
    WindowFixture& fixture = broken.fixture;
    const QString folder = QFileInfo(broken.path).path();
    QFile::remove(folder + "/layers/red.tga");
    WriteBytes(folder + "/layers/old.tga", "any");
    fixture.Load(broken.path);
    QVERIFY(broken.RowOf("Its bitmap does not exist. | layer 'red'") >= 0);
    QVERIFY(broken.RowOf("No layer has it. | bitmap 'old.tga'") >= 0);
    const auto* state = fixture.Child<QLabel>("lblProblemsState");
    broken.DoubleClick(broken.RowOf("Its bitmap does not exist."));
    QCOMPARE(state->text(), "The layer is only in the project's file: it was left out.");
    broken.DoubleClick(broken.RowOf("No layer has it."));
    QCOMPARE(state->text(), "It is a file in the folder 'layers' beside the project.");

    // A save leaves the layer out for good.
    fixture.SaveOver("actionSave", broken.path);
    QCOMPARE(broken.RowOf("Its bitmap does not exist."), -1);
    QVERIFY(broken.RowOf("No layer has it. | bitmap 'old.tga'") >= 0);
    QVERIFY(QFile::remove(folder + "/layers/old.tga"));
    QTRY_COMPARE_WITH_TIMEOUT(broken.RowOf("No layer has it."), -1, Longest);
}

void tst_DockProblems::TellsOfLayersThatLieOutside()
{
    BrokenFixture broken(
        [](QByteArray text) { return text.replace("name=\"red\"", "name=\"../red\""); });
    QVERIFY(broken.RowOf("The name leads out of the project. | layer '../red'") >= 0);
}

void tst_DockProblems::TellsThatTheProjectHasNoPlace()
{
    BrokenFixture broken(
        [](QByteArray text) { return text.replace("<layer size=\"64\"", "<layer size=\"61\""); });
    const int row = broken.RowOf("| project");
    QVERIFY(row >= 0);
    broken.DoubleClick(row);
    const QString where = broken.fixture.Child<QLabel>("lblProblemsState")->text();
    QCOMPARE(where, "It is about the whole project: there is no place to show.");
    const QModelIndex index = broken.View().model()->index(row, 1);
    QVERIFY(index.data(Qt::ToolTipRole).toString().contains(where));
}

void tst_DockProblems::FollowsBitmapsThatEndTooEarly()
{
    BrokenFixture broken;
    WindowFixture& fixture = broken.fixture;
    Document& document = fixture.window->GetDocument();
    const QString bitmap = QFileInfo(broken.path).path() + "/layers/red.tga";
    const QString finding = "Its bitmap ends before its last pixel. | layer 'red'";
    const auto cutOff = [&bitmap] {
        QByteArray bytes = ReadBytes(bitmap);
        bytes.chop(1);
        WriteBytes(bitmap, bytes);
    };
    cutOff();
    fixture.Load(broken.path);
    QVERIFY(broken.RowOf(finding) >= 0);

    document.Do(Edits::RemoveLayer(*document.Layers().LayerAt(0)));
    QCOMPARE(broken.RowOf("bitmap"), -1);
    document.Undo();
    QVERIFY(broken.RowOf(finding) >= 0);
    // A save writes the layer's own bitmap.
    document.Do(Edits::Rename(*document.Layers().LayerAt(0), "other"));
    QCOMPARE(broken.RowOf("bitmap"), -1);
    document.Undo();

    fixture.SaveOver("actionSave", broken.path);
    QCOMPARE(broken.RowOf("bitmap"), -1);
    QCOMPARE(broken.Badge(), "3 problems");
    cutOff();
    QTRY_COMPARE_WITH_TIMEOUT(broken.Badge(), QStringLiteral("4 problems"), Longest);
    QVERIFY(broken.RowOf(finding) >= 0);
}

void tst_DockProblems::KeepsTheSelectionWhenFindingsCome()
{
    BrokenFixture broken;
    QCOMPARE(broken.Rows(), (QStringList{Minimum, Hidden, Radius}));
    broken.Click(1);
    QTest::keyClick(&broken.View(), Qt::Key_Down, Qt::ShiftModifier);
    const auto selected = [&broken] {
        QStringList rows;
        const QModelIndexList indexes = broken.View().selectionModel()->selectedRows(1);
        for (const QModelIndex& index : indexes) {
            rows.append(index.data().toString());
        }
        return rows;
    };
    const QStringList before = selected();
    QCOMPARE(before.size(), 2);

    ZoneValues values = broken.TheZone().Values();
    values.counts.dynamicMin = 9;
    broken.fixture.window->GetDocument().Do(
        Edits::ChangeZone(broken.TheZone(), values, Property::ZoneDynamicMin));

    QCOMPARE(broken.Rows().size(), 4);
    QCOMPARE(selected(), before);
    QVERIFY(broken.fixture.Child<QPushButton>("btnFindingAccept")->isEnabled());
}

void tst_DockProblems::LogsNothing()
{
    BrokenFixture broken;
    broken.fixture.log.Take();
    broken.DoubleClick(0);
    broken.Press("btnFindingFix");
    QCOMPARE(broken.Rows().size(), 2);
    broken.Click(0);
    broken.Press("btnFindingAccept");
    QCOMPARE(broken.Rows().size(), 1);
    QCOMPARE(broken.fixture.log.Messages(), QStringList());
}

QTEST_MAIN(tst_DockProblems)
#include "tst_DockProblems.moc"
