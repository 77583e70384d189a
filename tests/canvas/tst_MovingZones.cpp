#include "canvas/ShapeMark.h"
#include "canvas/tools/SelectTool.h"
#include "territories/TerritoryRecords.h"
#include "territories/ZonePlaces.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"
#include "tests/support/Random.h"

#include <QTest>

namespace {

/// A current territory without zones, in the Select mode, and another one.
class Moving : public CanvasFixture
{
public:
    Moving()
        : other(type->NewTerritory())
    {
        Scene().ChangeTerritory(territory);
        Scene().ChangeMode(SceneMode::Select);
        other->SetVisible(true);
    }

    Zone* AddOther(QPointF position, float radius)
    {
        auto* zone = new Zone(other, radius);
        zone->setPos(position);
        other->AddZone(zone);
        other->SetZonesEditable(false);
        Scene().addItem(zone);
        return zone;
    }
    void SetOptions(const MoveOptions& options) { Scene().GetSelectTool()->SetOptions(options); }
    void SnapToZones() { SetOptions({0, SnapTo::Zones, 1}); }
    void Tap(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&view, key, modifiers);
    }
    QVector<Zone*> Selected() { return Scene().SelectedZones(); }

    Territory* other;
};

/// The place as files hold it, before it becomes text.
WorldCircle InWorldNow(const Zone& zone)
{
    return InWorld(zone.Record(), WorldScale(ProjectSettings::Instance()));
}

} // namespace

/// How the Select mode moves zones: arrow keys in metres, snapping, what stands beside the mouse;
/// and the key W.
class tst_MovingZones : public QObject
{
    Q_OBJECT

private slots:
    void ArrowsMoveByMetres_data();
    void ArrowsMoveByMetres();
    void ArrowsMoveByPixelsAtFirst();
    void ManyStepsAreExactWithFractionsOfMetres();
    void ThereAndBackIsNoStep();
    void AMoveBetweenBeginsAnew();
    void WorldsWithoutASizeKeepTheirZones();
    void DragsSnapToTheGrid();
    void DragsSnapToZones();
    void CtrlSuspendsSnapping();
    void NothingSnapsAtFirst();
    void ClicksDoNotSnap();
    void OthersKeepTheirDistance();
    void HiddenZonesDoNotSnap();
    void TellsPlaceAndWay();
    void WWalksThroughTheStack();
    void WLeavesOthersAlone();
};

void tst_MovingZones::ArrowsMoveByMetres_data()
{
    QTest::addColumn<int>("metres");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QPointF>("way");
    const int none = Qt::NoModifier;
    QTest::newRow("1 m right") << 1 << int(Qt::Key_Right) << none << QPointF(1, 0);
    QTest::newRow("10 m left") << 10 << int(Qt::Key_Left) << none << QPointF(-10, 0);
    QTest::newRow("50 m up") << 50 << int(Qt::Key_Up) << none << QPointF(0, 50);
    QTest::newRow("50 m down") << 50 << int(Qt::Key_Down) << none << QPointF(0, -50);
    QTest::newRow("Shift") << 10 << int(Qt::Key_Right) << int(Qt::ShiftModifier) << QPointF(50, 0);
    QTest::newRow("Ctrl") << 10 << int(Qt::Key_Right) << int(Qt::ControlModifier)
                          << QPointF(100, 0);
    QTest::newRow("both") << 1 << int(Qt::Key_Down) << int(Qt::ShiftModifier | Qt::ControlModifier)
                          << QPointF(0, -50);
}

void tst_MovingZones::ArrowsMoveByMetres()
{
    QFETCH(int, metres);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QPointF, way);
    Moving canvas;
    // 7.5 and 12.5 metres a pixel.
    ProjectSettings::Instance().SetSizes(200, 160, 1500, 2000);
    Zone* zone = canvas.AddZone({60, 80});
    const WorldCircle before = InWorldNow(*zone);
    zone->setSelected(true);
    canvas.SetOptions({metres, SnapTo::Nothing, 1});

    canvas.Tap(static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));

    QCOMPARE(MetresText(InWorldNow(*zone).x), MetresText(before.x + way.x()));
    QCOMPARE(MetresText(InWorldNow(*zone).z), MetresText(before.z + way.y()));
    QCOMPARE(canvas.document.History().count(), 1);
    canvas.document.Undo();
    QCOMPARE(zone->pos(), QPointF(60, 80));
}

void tst_MovingZones::ArrowsMoveByPixelsAtFirst()
{
    Moving canvas;
    ProjectSettings::Instance().SetSizes(200, 160, 1500, 2000);
    Zone* zone = canvas.AddZone({60, 80});
    zone->setSelected(true);
    canvas.Tap(Qt::Key_Right, Qt::ShiftModifier);
    canvas.Tap(Qt::Key_Up);
    QCOMPARE(zone->pos(), QPointF(65, 79));
}

void tst_MovingZones::ManyStepsAreExactWithFractionsOfMetres()
{
    constexpr int steps = 200;
    Random random;
    Moving canvas;
    ProjectSettings::Instance().SetSizes(2048, 2048, 15361, 15367);
    canvas.SetOptions({1, SnapTo::Nothing, 1});
    Zone* zone = canvas.AddZone({1000 + random.Below(1000) / 7.0, 900 + random.Below(1000) / 7.0});
    const QPointF start = zone->pos();
    zone->setSelected(true);
    for (int i = 0; i < steps; ++i) {
        canvas.Tap(Qt::Key_Right);
        canvas.Tap(Qt::Key_Up);
    }
    QCOMPARE(zone->pos(), MovedPlace(start, steps, steps, WorldScale(ProjectSettings::Instance())));
}

void tst_MovingZones::ThereAndBackIsNoStep()
{
    Moving canvas;
    ProjectSettings::Instance().SetSizes(2048, 2048, 15361, 15367);
    canvas.SetOptions({10, SnapTo::Nothing, 1});
    Zone* zone = canvas.AddZone({1000.7, 900.3});
    const QPointF before = zone->pos();
    zone->setSelected(true);
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Down, Qt::Key_Left, Qt::Key_Up}) {
        canvas.Tap(key);
    }
    QCOMPARE(zone->pos(), before);
    QVERIFY(!canvas.document.CanUndo());
}

void tst_MovingZones::AMoveBetweenBeginsAnew()
{
    Moving canvas;
    canvas.SetOptions({10, SnapTo::Nothing, 1});
    Zone* zone = canvas.AddZone({60, 80});
    zone->setSelected(true);
    canvas.Tap(Qt::Key_Right);
    canvas.document.Undo();
    QCOMPARE(zone->pos(), QPointF(60, 80));
    canvas.Tap(Qt::Key_Right);
    QCOMPARE(zone->pos(), QPointF(70, 80));
    canvas.Drag({70, 80}, {50, 90});
    canvas.Tap(Qt::Key_Down);
    QCOMPARE(zone->pos(), QPointF(50, 100));
    // So does another selection.
    Zone* second = canvas.AddZone({150, 20});
    canvas.Scene().SelectZones({zone, second});
    canvas.Tap(Qt::Key_Right);
    QCOMPARE(zone->pos(), QPointF(60, 100));
    QCOMPARE(second->pos(), QPointF(160, 20));
}

void tst_MovingZones::WorldsWithoutASizeKeepTheirZones()
{
    Moving canvas;
    Zone* zone = canvas.AddZone({60, 80});
    ProjectSettings::Instance().SetSizes(200, 160, 0, 0);
    canvas.SetOptions({10, SnapTo::Grid, 50});
    zone->setSelected(true);
    canvas.Tap(Qt::Key_Right);
    QCOMPARE(zone->pos(), QPointF(60, 80));
    canvas.Drag({60, 80}, {80, 90});
    QCOMPARE(zone->pos(), QPointF(80, 90));
}

void tst_MovingZones::DragsSnapToTheGrid()
{
    Moving canvas;
    ProjectSettings::Instance().SetSizes(200, 160, 2000, 1600);
    Zone* zone = canvas.AddZone({61.5, 81.5}, 100);
    canvas.SetOptions({0, SnapTo::Grid, 50});
    canvas.Press({62, 82});
    canvas.Move({82, 97});
    QCOMPARE(zone->pos(), QPointF(80, 95));
    canvas.Move({86, 101});
    QCOMPARE(InWorldNow(*zone).x, 850.0);
    QCOMPARE(InWorldNow(*zone).z, 600.0);
    canvas.Release({86, 101});
    QCOMPARE(InWorldNow(*zone).x, 850.0);
    QCOMPARE(canvas.document.History().count(), 1);
    canvas.document.Undo();
    QCOMPARE(zone->pos(), QPointF(61.5, 81.5));
}

void tst_MovingZones::DragsSnapToZones()
{
    Moving canvas;
    canvas.SnapToZones();
    Zone* zone = canvas.AddZone({40, 40}, 10);
    canvas.AddOther({120, 100}, 20);
    canvas.Press({40, 40});
    canvas.Move({118, 103});
    QCOMPARE(zone->pos(), QPointF(120, 100));
    // Rim on rim.
    canvas.Move({94, 100});
    QCOMPARE(zone->pos(), QPointF(90, 100));
    canvas.Move({70, 100});
    QCOMPARE(zone->pos(), QPointF(70, 100));
    canvas.Move({118, 103});
    canvas.Release({118, 103});
    QCOMPARE(zone->pos(), QPointF(120, 100));
}

void tst_MovingZones::CtrlSuspendsSnapping()
{
    Moving canvas;
    canvas.SnapToZones();
    Zone* zone = canvas.AddZone({40, 40}, 10);
    canvas.AddOther({120, 100}, 20);
    canvas.Press({40, 40});
    canvas.Move({118, 103}, Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(zone->pos(), QPointF(118, 103));
    canvas.Move({119, 103});
    QCOMPARE(zone->pos(), QPointF(120, 100));
    canvas.Release({119, 103});
}

void tst_MovingZones::NothingSnapsAtFirst()
{
    Moving canvas;
    Zone* zone = canvas.AddZone({40, 40}, 10);
    canvas.AddOther({120, 100}, 20);
    canvas.Drag({40, 40}, {118, 103});
    QCOMPARE(zone->pos(), QPointF(118, 103));
}

void tst_MovingZones::ClicksDoNotSnap()
{
    Moving canvas;
    canvas.SetOptions({0, SnapTo::Grid, 50});
    Zone* zone = canvas.AddZone({61, 81}, 10);
    canvas.Press({60, 80});
    canvas.Move({61, 81});
    canvas.Release({61, 81});
    QCOMPARE(zone->pos(), QPointF(61, 81));
    QVERIFY(zone->isSelected());
    QCOMPARE(canvas.document.History().count(), 0);
}

void tst_MovingZones::OthersKeepTheirDistance()
{
    Moving canvas;
    canvas.SnapToZones();
    Zone* grabbed = canvas.AddZone({40, 40}, 10);
    Zone* along = canvas.AddZone({70, 45}, 10);
    canvas.AddOther({120, 100}, 20);
    canvas.Scene().SelectZones({grabbed, along});
    // Zones that move along are nothing to snap to.
    canvas.Drag({40, 40}, {118, 103});
    QCOMPARE(grabbed->pos(), QPointF(120, 100));
    QCOMPARE(along->pos(), QPointF(150, 105));
    QVERIFY(!canvas.view.Shape().IsShown());
}

void tst_MovingZones::HiddenZonesDoNotSnap()
{
    Moving canvas;
    canvas.SnapToZones();
    Zone* zone = canvas.AddZone({40, 40}, 10);
    Zone* other = canvas.AddOther({120, 100}, 20);
    other->setOpacity(0);
    canvas.Drag({40, 40}, {118, 103});
    QCOMPARE(zone->pos(), QPointF(118, 103));
    other->setOpacity(1);
    canvas.other->SetVisible(false);
    canvas.Drag({118, 103}, {125, 104});
    QCOMPARE(zone->pos(), QPointF(125, 104));
}

void tst_MovingZones::TellsPlaceAndWay()
{
    Moving canvas;
    // 30 metres a pixel and 40 metres a pixel.
    ProjectSettings::Instance().SetSizes(200, 160, 6000, 6400);
    canvas.AddZone({40, 40}, 300);
    const ShapeMark& mark = canvas.view.Shape();
    canvas.Press({40, 40});
    QVERIFY(!mark.IsShown());
    canvas.Move({50, 40});
    QCOMPARE(mark.Text(), QString("X 1500 m, Z 4800 m, moved 300 m"));
    canvas.Move({41, 41});
    QCOMPARE(mark.Text(), QString("X 1230 m, Z 4760 m, moved 50 m"));
    QVERIFY(mark.Outline().isEmpty());
    canvas.Move({40, 40});
    QVERIFY(!mark.IsShown());
    canvas.Move({50, 40});
    QTest::keyClick(&canvas.view, Qt::Key_Escape);
    QVERIFY(!mark.IsShown());
    canvas.Release({50, 40});
    canvas.Drag({40, 40}, {60, 60});
    QVERIFY(!mark.IsShown());
}

void tst_MovingZones::WWalksThroughTheStack()
{
    Moving canvas;
    Zone* lowest = canvas.AddZone({60, 60}, 20);
    Zone* middle = canvas.AddZone({62, 60}, 20);
    Zone* top = canvas.AddZone({64, 60}, 20);
    lowest->SetDepth(10);
    middle->SetDepth(20);
    top->SetDepth(30);
    Zone* elsewhere = canvas.AddZone({150, 60}, 10);
    canvas.Move({61, 60}, Qt::NoButton);
    for (Zone* zone : {top, middle, lowest, top, middle}) {
        canvas.Tap(Qt::Key_W);
        QCOMPARE(canvas.Selected(), QVector<Zone*>{zone});
    }
    canvas.Move({150, 60}, Qt::NoButton);
    canvas.Tap(Qt::Key_W);
    QCOMPARE(canvas.Selected(), QVector<Zone*>{elsewhere});
    // Where there is no zone the selection stays.
    canvas.Move({110, 140}, Qt::NoButton);
    canvas.Tap(Qt::Key_W);
    QCOMPARE(canvas.Selected(), QVector<Zone*>{elsewhere});
    // The zone below can be dragged although another one lies on it.
    canvas.Move({61, 60}, Qt::NoButton);
    canvas.Tap(Qt::Key_W);
    canvas.Tap(Qt::Key_W);
    canvas.Tap(Qt::Key_Right);
    QCOMPARE(middle->pos(), QPointF(63, 60));
    QCOMPARE(top->pos(), QPointF(64, 60));
}

void tst_MovingZones::WLeavesOthersAlone()
{
    Moving canvas;
    Zone* own = canvas.AddZone({60, 60}, 20);
    canvas.AddOther({60, 60}, 20)->SetDepth(200);
    canvas.Move({60, 60}, Qt::NoButton);
    canvas.Tap(Qt::Key_W);
    QCOMPARE(canvas.Selected(), QVector<Zone*>{own});
    canvas.Scene().clearSelection();
    canvas.Tap(Qt::Key_W, Qt::ControlModifier);
    QVERIFY(canvas.Selected().isEmpty());
    // During a drag the mouse has hold of the selection.
    canvas.Press({60, 60});
    canvas.Tap(Qt::Key_W);
    QCOMPARE(canvas.Selected(), QVector<Zone*>{own});
    canvas.Release({60, 60});
    canvas.Scene().clearSelection();
    canvas.Scene().ChangeMode(SceneMode::Query);
    canvas.Tap(Qt::Key_W);
    QVERIFY(canvas.Selected().isEmpty());
}

QTEST_MAIN(tst_MovingZones)
#include "tst_MovingZones.moc"
