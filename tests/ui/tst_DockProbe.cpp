#include "document/Document.h"
#include "document/edits/LayerEdits.h"
#include "layers/Layer.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockProbe.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

/// The dock that tells what is under the mouse.
class tst_DockProbe : public QObject
{
    Q_OBJECT

private slots:
    void ShowsFlagsLayersAndZones();
    void SaysWhenThePlaceIsOutside();
    void SaysWhereTheMapHoldsNothing();
    void MarksHiddenLayersAndGreys();
    void FollowsAStrokeAndItsUndo();
    void AHoldBeforeAnyPlaceWaitsForOne();
    void FollowsZonesAndNames();
    void HoldsThePlace();
    void AClickOnALayerMakesItCurrent();
    void AClickOnAZoneSelectsIt();
    void CopiesAsText();
    void LettersAreKeysOfTheMapOnly();
    void IsHiddenAtFirst();
    void ChoosesNothingInAProjectThatIsOnlyViewed();
    void AnotherProjectEndsTheHold();
    void IsIdleBehindAnotherTab();
};

namespace {

/// The small project: both layers are from (8, 8) to (23, 23), the zone's centre is at (10, 10) and
/// its radius 6 pixels. A pixel is 10 m wide.
struct Probed
{
    explicit Probed(const std::function<QByteArray(QByteArray)>& edit = {})
    {
        const QString path = fixture.WriteProject();
        if (edit) {
            WriteBytes(path, edit(ReadBytes(path)));
        }
        fixture.Load(path);
        fixture.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
        // A move to the place where the cursor is would be none.
        QTest::mouseMove(fixture.window.get(), {1, 1});
        fixture.Trigger("actionProbe");
    }

    void MoveTo(int x, int y) const
    {
        const MainView& view = fixture.View();
        QTest::mouseMove(view.viewport(), view.mapFromScene(QPointF(x, y)));
    }
    QTreeWidget& Tree() const { return *fixture.Child<QTreeWidget>("treeProbe"); }
    QString Place() const { return fixture.Child<QLabel>("lblProbePlace")->text(); }
    /// Each row of the tree, indented by its depth.
    QStringList Rows() const
    {
        QCoreApplication::processEvents();
        QStringList rows;
        for (QTreeWidgetItemIterator it(&Tree()); *it; ++it) {
            int depth = 0;
            for (const QTreeWidgetItem* above = (*it)->parent(); above; above = above->parent()) {
                ++depth;
            }
            rows.append(QString(depth, ' ') + (*it)->text(0));
        }
        return rows;
    }
    void Click(const QString& text) const
    {
        const QList<QTreeWidgetItem*> items =
            Tree().findItems(text, Qt::MatchStartsWith | Qt::MatchRecursive);
        QVERIFY(!items.isEmpty());
        Tree().scrollToItem(items.constFirst());
        QTest::mouseClick(Tree().viewport(), Qt::LeftButton, {},
                          Tree().visualItemRect(items.constFirst()).center());
    }

    WindowFixture fixture;
};

} // namespace

void tst_DockProbe::ShowsFlagsLayersAndZones()
{
    const Probed probed;
    probed.MoveTo(12, 10);
    QCOMPARE(probed.Place(), QString("X 120, Z 540 (pixel 12, 10)"));
    QCOMPARE(probed.Rows(),
             (QStringList{"Usage: 3", " Town", "  red", " Farm", "  blue", "Value: 1", " Rich",
                          "  blue", "Zones", " Zone 1, 20 m: Deer / North"}));
    probed.MoveTo(22, 22);
    QCOMPARE(probed.Rows(), (QStringList{"Usage: 3", " Town", "  red", " Farm", "  blue",
                                         "Value: 1", " Rich", "  blue"}));
    probed.MoveTo(40, 40);
    QCOMPARE(probed.Rows(), (QStringList{"Usage: 0", "Value: 0"}));
}

void tst_DockProbe::SaysWhenThePlaceIsOutside()
{
    const Probed probed;
    QCOMPARE(probed.Place(), QString("Move the mouse over the map."));
    // Beside a map that is smaller than the view.
    probed.MoveTo(70, 10);
    QCOMPARE(probed.Place(), QString("X 700, Z 540: outside of the world"));
    QCOMPARE(probed.Rows(), QStringList());
}

void tst_DockProbe::SaysWhereTheMapHoldsNothing()
{
    // Three types take 4 bits each, so 8 pixels make a word; the width is no multiple of 8.
    const Probed probed([](QByteArray text) {
        text.replace(R"(<usage name="Farm"/>)", R"(<usage name="Farm"/><usage name="Mine"/>)");
        text.replace(R"(<values><value name="Rich"/></values>)", "<values/>");
        return text.replace(R"(layer size="64")", R"(layer size="60")");
    });
    probed.MoveTo(57, 10);
    QCOMPARE(probed.Rows(), (QStringList{"Usage: the map holds nothing here",
                                         "Value: the project has no flags of this kind"}));
    probed.MoveTo(55, 10);
    QCOMPARE(probed.Rows().value(0), QString("Usage: 0"));
}

void tst_DockProbe::MarksHiddenLayersAndGreys()
{
    const Probed probed(
        [](QByteArray text) { return text.replace(R"(usage_flags="1")", R"(usage_flags="0")"); });
    Layer& red = *probed.fixture.window->GetDocument().Layers().LayerAt(0);
    QImage mask = red.Image();
    mask.setPixel(20, 20, 128);
    red.SetImage(mask, red.Color());
    red.SetVisible(false);
    probed.MoveTo(20, 20);
    QCOMPARE(probed.Rows(), (QStringList{"Usage: 2", " Farm", "  blue", "Value: 1", " Rich",
                                         "  blue", "Layers without a flag in the map",
                                         " red (hidden) (grey 128, not drawn)"}));
}

void tst_DockProbe::FollowsAStrokeAndItsUndo()
{
    const Probed probed;
    const WindowFixture& fixture = probed.fixture;
    fixture.Trigger("actionTogglePaintMode");
    probed.MoveTo(40, 40);
    QCOMPARE(probed.Rows(), (QStringList{"Usage: 0", "Value: 0"}));
    const QStringList painted{"Usage: 2", " Farm", "  blue", "Value: 1", " Rich", "  blue"};
    const QPoint place = fixture.View().mapFromScene(QPointF(40, 40));
    QTest::mousePress(fixture.View().viewport(), Qt::LeftButton, {}, place);
    QCOMPARE(probed.Rows(), painted);
    QTest::mouseRelease(fixture.View().viewport(), Qt::LeftButton, {}, place);
    QCOMPARE(probed.Rows(), painted);
    fixture.Trigger("actionUndo");
    QCOMPARE(probed.Rows(), (QStringList{"Usage: 0", "Value: 0"}));
    fixture.Trigger("actionRedo");
    QCOMPARE(probed.Rows(), painted);
}

void tst_DockProbe::AHoldBeforeAnyPlaceWaitsForOne()
{
    const Probed probed;
    probed.fixture.Trigger("actionProbeHold");
    probed.MoveTo(12, 10);
    const QString held = probed.Place();
    QCOMPARE(held, QString("X 120, Z 540 (pixel 12, 10)"));
    probed.MoveTo(40, 40);
    QCOMPARE(probed.Place(), held);
}

/// The place is held, so the mouse changes nothing.
void tst_DockProbe::FollowsZonesAndNames()
{
    const Probed probed;
    const WindowFixture& fixture = probed.fixture;
    probed.MoveTo(12, 10);
    fixture.Trigger("actionProbeHold");
    probed.Click("Zone 1");
    const auto zones = [&probed] {
        const QStringList rows = probed.Rows();
        return rows.filter("Deer / ");
    };
    fixture.View().setFocus();
    QTest::keyClick(&fixture.View(), Qt::Key_Right);
    QCOMPARE(zones(), QStringList{" Zone 1, 10 m: Deer / North"});
    QTest::keyClick(&fixture.View(), Qt::Key_Delete);
    QCOMPARE(zones(), QStringList());
    fixture.Trigger("actionUndo");
    QCOMPARE(zones(), QStringList{" Zone 1, 10 m: Deer / North"});
    fixture.Trigger("actionUndo");
    QCOMPARE(zones(), QStringList{" Zone 1, 20 m: Deer / North"});
    Document& document = fixture.window->GetDocument();
    document.Do(Edits::Rename(*document.Layers().LayerAt(0), "crimson"));
    QVERIFY(probed.Rows().contains("  crimson"));
}

void tst_DockProbe::HoldsThePlace()
{
    const Probed probed;
    const WindowFixture& fixture = probed.fixture;
    probed.MoveTo(12, 10);
    const QString held = probed.Place();
    fixture.View().setFocus();
    QTest::keyClick(&fixture.View(), Qt::Key_H);
    QVERIFY(fixture.Action("actionProbeHold")->isChecked());
    probed.MoveTo(40, 40);
    QCOMPARE(probed.Place(), held);
    QTest::keyClick(&fixture.View(), Qt::Key_H);
    QCOMPARE(probed.Place(), QString("X 400, Z 240 (pixel 40, 40)"));
}

void tst_DockProbe::AClickOnALayerMakesItCurrent()
{
    const Probed probed;
    probed.MoveTo(12, 10);
    const Document& document = probed.fixture.window->GetDocument();
    QCOMPARE(document.CurrentLayer()->text(), QString("blue"));
    probed.Click("red");
    QCOMPARE(document.CurrentLayer()->text(), QString("red"));
    QCOMPARE(probed.fixture.Scene().CurrentLayer(), document.CurrentLayer());
}

void tst_DockProbe::AClickOnAZoneSelectsIt()
{
    const Probed probed;
    probed.MoveTo(12, 10);
    probed.Click("Zone 1");
    const QVector<Zone*> selected = probed.fixture.Scene().SelectedZones();
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.constFirst()->Holder()->text(), QString("North"));
    QCOMPARE(probed.fixture.Scene().CurrentTerritory(), selected.constFirst()->Holder());
}

void tst_DockProbe::CopiesAsText()
{
    const Probed probed;
    probed.MoveTo(22, 22);
    QTest::mouseClick(probed.fixture.Child<QPushButton>("btnProbeCopy"), Qt::LeftButton);
    QCOMPARE(QApplication::clipboard()->text(),
             QString("X 220, Z 420 (pixel 22, 22)\nUsage: 3\n  Town\n    red\n  Farm\n    blue\n"
                     "Value: 1\n  Rich\n    blue"));
}

void tst_DockProbe::LettersAreKeysOfTheMapOnly()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    const QWidget* dock = fixture.Child<QWidget>("DockProbe");
    fixture.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
    fixture.View().setFocus();
    QTest::keyClick(&fixture.View(), Qt::Key_I);
    QVERIFY(dock->isVisible());
    QVERIFY(fixture.Action("actionProbe")->isChecked());
    auto* tree = fixture.Child<QTreeWidget>("treeProbe");
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_I);
    QTest::keyClick(tree, Qt::Key_H);
    QVERIFY(dock->isVisible());
    QVERIFY(!fixture.Action("actionProbeHold")->isChecked());
}

void tst_DockProbe::IsHiddenAtFirst()
{
    const WindowFixture fixture;
    QVERIFY(fixture.Child<QWidget>("DockProbe")->isHidden());
    QVERIFY(!fixture.Action("actionProbe")->isChecked());
}

void tst_DockProbe::ChoosesNothingInAProjectThatIsOnlyViewed()
{
    Probed probed;
    probed.fixture.Restart(probed.fixture.Path("small/small.xml"));
    probed.fixture.Trigger("actionProbe");
    probed.fixture.Child<DockProbe>("DockProbe")->Follow({12, 10});
    probed.Click("red");
    probed.Click("Zone 1");
    QVERIFY(!probed.fixture.IsModified());
    QVERIFY(probed.fixture.Scene().SelectedZones().isEmpty());
}

void tst_DockProbe::AnotherProjectEndsTheHold()
{
    Probed probed;
    probed.MoveTo(12, 10);
    probed.fixture.Trigger("actionProbeHold");
    probed.fixture.Load(probed.fixture.Path("small/small.xml"));
    QVERIFY(!probed.fixture.Action("actionProbeHold")->isChecked());
    QCOMPARE(probed.Rows(), QStringList());
}

void tst_DockProbe::IsIdleBehindAnotherTab()
{
    const Probed probed;
    probed.MoveTo(12, 10);
    const QString before = probed.Place();
    auto* dock = probed.fixture.Child<DockProbe>("DockProbe");
    auto* overview = probed.fixture.Child<QDockWidget>("DockOverview");
    overview->show();
    probed.fixture.window->tabifyDockWidget(dock, overview);
    overview->raise();
    QCoreApplication::processEvents();
    probed.MoveTo(40, 40);
    QCOMPARE(probed.Place(), before);
    QVERIFY(!probed.fixture.Action("actionProbeHold")->isEnabled());
    dock->raise();
    QCoreApplication::processEvents();
    QCOMPARE(probed.Place(), QString("X 400, Z 240 (pixel 40, 40)"));
}

QTEST_MAIN(tst_DockProbe)
#include "tst_DockProbe.moc"
