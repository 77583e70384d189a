#include "canvas/MainView.h"

#include "canvas/WidgetRuler.h"
#include "tests/support/CanvasFixture.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDockWidget>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QMetaMethod>
#include <QRubberBand>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTest>
#include <QTreeView>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int RulerThickness = 32;

WidgetRuler* Ruler(const MainView& view, bool isHorizontal)
{
    const QList<WidgetRuler*> rulers = view.findChildren<WidgetRuler*>();
    for (WidgetRuler* ruler : rulers) {
        if (ruler->IsHorizontal() == isHorizontal) {
            return ruler;
        }
    }
    return nullptr;
}

QRubberBand* Band(const MainView& view)
{
    return view.findChild<QRubberBand*>();
}

void Wheel(MainView& view, QPoint position, int delta, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent event(position, view.viewport()->mapToGlobal(position), {}, {0, delta},
                      Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void Zoom(MainView& view, int steps)
{
    for (int i = 0; i < std::abs(steps); ++i) {
        Wheel(view, view.viewport()->rect().center(), steps < 0 ? -120 : 120, Qt::ControlModifier);
    }
}

/// One round of the timer that repeats held keys.
void Tick(MainView& view)
{
    const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&view);
    for (const auto& timer : timers) {
        if (timer.interval == 60) {
            QTimerEvent event(timer.timerId);
            QCoreApplication::sendEvent(&view, &event);
        }
    }
}

void SendKey(MainView& view, QEvent::Type type, int key, quint32 scanCode,
             bool isAutoRepeat = false)
{
    QKeyEvent event(type, key, Qt::NoModifier, scanCode, 0, 0, QString(), isAutoRepeat);
    QCoreApplication::sendEvent(&view, &event);
}

constexpr SceneMode Modes[] = {SceneMode::None,   SceneMode::Pan,    SceneMode::Paint,
                               SceneMode::Insert, SceneMode::Select, SceneMode::Query};

} // namespace

Q_DECLARE_METATYPE(SceneMode)
Q_DECLARE_METATYPE(Qt::KeyboardModifiers)

class tst_MainView : public QObject
{
    Q_OBJECT

private slots:
    void HasItsSignalsInOrder();
    void HasItsInitialState();
    void LaysOutTheRulers_data();
    void LaysOutTheRulers();
    void ShowsWhatIsEditedInItsPlace();
    void TakesTheBrushOfTheDock();
    void TakesTheSceneSize();
    void StandsSceneSizesOfNothing_data();
    void StandsSceneSizesOfNothing();
    void ZoomsInSteps();
    void StaysInTheZoomRange();
    void ZeroDeltaZoomsIn();
    void ScrollsWithOtherModifiers_data();
    void ScrollsWithOtherModifiers();
    void CentersOnThePointUnderTheMouse();
    void ResetsTheZoomWithoutTheRulers();
    void PutsTheOriginsAtTheMapsEdges();
    void OriginsFollowAMapThatFits();
    void BracketsResizeTheBrush_data();
    void BracketsResizeTheBrush();
    void HeldBracketsRepeat();
    void TheTimerRepeatsByItself();
    void BothBracketsHeldCancelOut();
    void BracketsNeedThePaintMode();
    void AltGrBracketsAreReleasedByTheirPlace();
    void AutoRepeatIsIgnored();
    void LostFocusReleasesTheKeys();
    void ArrowsNudgeTheSelection_data();
    void ArrowsNudgeTheSelection();
    void HeldArrowsRepeatAndCombine();
    void ArrowsNeedTheSelectMode();
    void CopiesAndPastesZones();
    void PastesZonesIntoAnotherTerritory();
    void PastesFromTheFirstZoneThatWasMade();
    void SwallowsCopyAndPaste_data();
    void SwallowsCopyAndPaste();
    void ForgetsDestroyedZonesInTheClipboard();
    void SelectsAllZones();
    void AsksForModes_data();
    void AsksForModes();
    void DeletesTheSelection();
    void PansWithSpace_data();
    void PansWithSpace();
    void SpaceSavesTheModeOnce();
    void LostFocusEndsPanning();
    void PansOnADoubleClickToo();
    void SelectsWithTheBand();
    void BandKeepsItsOwnCorner();
    void BandFollowsTheMouse();
    void BandStartsOnADoubleClickToo();
    void NoBandWhileAZoneIsSelected();
    void NoBandInOtherModes();
    void TellsWhereTheMouseIs();
    void RulersFollowTheMouse();
    void TakesTheFocusWhenTheMouseEnters();
    void LeavesTheFocusToTextThatIsEdited();
};

void tst_MainView::HasItsSignalsInOrder()
{
    QStringList signatures;
    const QMetaObject& meta = MainView::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Signal);
        signatures.append(QString::fromLatin1(meta.method(i).methodSignature()));
    }
    QCOMPARE(signatures, QStringList({"ModeInsert(bool)", "ModeSelect(bool)", "ModeQuery(bool)",
                                      "MouseMoved(int,int)", "ZoomChanged(float)",
                                      "TerritorySelected(Territory*)"}));
}

void tst_MainView::HasItsInitialState()
{
    const MainView view;
    QCOMPARE(view.Zoom(), 1.0F);
    QCOMPARE(view.transform(), QTransform());
    QCOMPARE(view.focusPolicy(), Qt::WheelFocus);
    QVERIFY(view.hasMouseTracking());
    QVERIFY(view.viewport()->hasMouseTracking());
    QCOMPARE(view.dragMode(), QGraphicsView::NoDrag);
    QCOMPARE(view.scene(), view.Scene());
    QCOMPARE(view.Scene()->sceneRect(), QRectF(0, 0, 2048, 2048));
    QVERIFY(Band(view)->isHidden());
    const auto timers =
        QAbstractEventDispatcher::instance()->registeredTimers(const_cast<MainView*>(&view));
    const auto isOurs = [](const QAbstractEventDispatcher::TimerInfo& timer) {
        return timer.interval == 60 && timer.timerType == Qt::CoarseTimer;
    };
    QCOMPARE(std::count_if(timers.begin(), timers.end(), isOurs), 1);
}

void tst_MainView::LaysOutTheRulers_data()
{
    QTest::addColumn<int>("zoomSteps");
    QTest::newRow("the map fits") << 0;
    QTest::newRow("scroll bars") << 12;
}

void tst_MainView::LaysOutTheRulers()
{
    QFETCH(int, zoomSteps);
    CanvasFixture canvas;
    MainView& view = canvas.view;
    for (const QSize size : {QSize(420, 380), QSize(333, 277), QSize(800, 600)}) {
        view.resize(size);
        Zoom(view, zoomSteps);
        view.layout()->activate();
        QCoreApplication::processEvents();
        const WidgetRuler* horizontal = Ruler(view, true);
        const WidgetRuler* vertical = Ruler(view, false);
        const QRect viewport = view.viewport()->geometry();
        const QWidget* corner = view.layout()->itemAt(0)->widget();
        QCOMPARE(corner->size(), QSize(RulerThickness, RulerThickness));
        QCOMPARE(corner->backgroundRole(), QPalette::Window);
        QCOMPARE(horizontal->height(), RulerThickness);
        QCOMPARE(vertical->width(), RulerThickness);
        QCOMPARE(horizontal->geometry().bottomLeft() + QPoint(0, 1), viewport.topLeft());
        QCOMPARE(vertical->geometry().topRight() + QPoint(1, 0), viewport.topLeft());
        QCOMPARE(corner->geometry().bottomRight() + QPoint(1, 1), viewport.topLeft());
        QVERIFY(horizontal->geometry().right() >= viewport.right());
        QVERIFY(vertical->geometry().bottom() >= viewport.bottom());
        const bool hasBars = zoomSteps > 0;
        for (const QScrollBar* bar : {view.horizontalScrollBar(), view.verticalScrollBar()}) {
            QCOMPARE(bar->isVisible(), hasBars);
            const QRect place(bar->mapTo(&view, QPoint()), bar->size());
            QVERIFY(!hasBars || !place.intersects(viewport));
            QVERIFY(!hasBars || view.rect().contains(place));
        }
        Zoom(view, -zoomSteps);
    }
    const auto* layout = qobject_cast<QGridLayout*>(view.layout());
    QCOMPARE(layout->originCorner(), Qt::TopLeftCorner);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->spacing(), 0);
    QCOMPARE(layout->itemAtPosition(0, 1)->widget(), Ruler(view, true));
    QCOMPARE(layout->itemAtPosition(1, 0)->widget(), Ruler(view, false));
    QCOMPARE(layout->itemAtPosition(1, 1)->widget(), view.viewport());
}

/// The layer that is painted and those below it, beside zones and the scene's own coordinates.
void tst_MainView::ShowsWhatIsEditedInItsPlace()
{
    CanvasFixture canvas;
    Layer* below = canvas.AddLayer(Qt::blue, {100, 20, 40, 40});
    Layer* current = canvas.AddLayer(Qt::red, {20, 20, 40, 40});
    canvas.Scene().AddLayer(below);
    canvas.Scene().ChangeLayer(current);
    for (const int steps : {0, 3, -4, 8}) {
        Zoom(canvas.view, steps);
        canvas.view.centerOn(80, 40);
        QCoreApplication::processEvents();
        const QImage shown = canvas.view.screen()->grabWindow(canvas.view.winId()).toImage();
        const QPoint offset = canvas.view.viewport()->pos();
        for (const QPointF scene : {QPointF(22, 22), QPointF(58, 58), QPointF(102, 22),
                                    QPointF(138, 58), QPointF(17, 17), QPointF(80, 40)}) {
            const QPoint pixel = canvas.At(scene);
            if (canvas.view.viewport()->rect().contains(pixel)) {
                const bool isBlue = QRectF(100, 20, 40, 40).contains(scene);
                const bool isRed = QRectF(20, 20, 40, 40).contains(scene);
                QCOMPARE(shown.pixelColor(pixel + offset),
                         QColor(isRed ? Qt::red : (isBlue ? Qt::blue : Qt::white)));
            }
        }
    }
}

void tst_MainView::TakesTheBrushOfTheDock()
{
    MainView view;
    BrushDock dock;
    view.SetBrushDock(&dock);
    QCOMPARE(Ruler(view, true)->Unit(), 7.5F);
    QCOMPARE(Ruler(view, false)->Unit(), 7.5F);
    dock.SetSize(50);
    view.Scene()->RefreshBrush();
    const QList<QGraphicsItem*> items = view.Scene()->items(Qt::DescendingOrder);
    QCOMPARE(static_cast<QGraphicsEllipseItem*>(items.first())->rect(), QRectF(-25, -25, 50, 50));
}

void tst_MainView::TakesTheSceneSize()
{
    const ProjectFixture project({512, 256}, {15360, 12000});
    MainView view;
    view.SetSceneSize(512, 256);
    QCOMPARE(view.Scene()->sceneRect(), QRectF(0, 0, 512, 256));
    QCOMPARE(Ruler(view, true)->Unit(), 15360.0F / 512.0F);
    QCOMPARE(Ruler(view, false)->Unit(), 12000.0F / 256.0F);
}

void tst_MainView::StandsSceneSizesOfNothing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("0 x 0") << QSize(0, 0);
    QTest::newRow("-1 x -1") << QSize(-1, -1);
}

void tst_MainView::StandsSceneSizesOfNothing()
{
    QFETCH(QSize, size);
    CanvasFixture canvas;
    ProjectSettings::Instance().SetSizes(size.width(), size.height(), 0, -1);
    canvas.view.SetSceneSize(size.width(), size.height());
    for (const SceneMode mode : Modes) {
        canvas.Scene().ChangeMode(mode);
        Zoom(canvas.view, 3);
        Zoom(canvas.view, -5);
        canvas.Drag({1, 1}, {30, 40});
        for (const int key : {Qt::Key_BracketLeft, Qt::Key_Up, Qt::Key_0, Qt::Key_Space}) {
            QTest::keyClick(&canvas.view, Qt::Key(key), Qt::ControlModifier);
        }
        canvas.view.UpdateRulers();
        canvas.view.grab();
    }
}

void tst_MainView::ZoomsInSteps()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    QSignalSpy spy(&view, &MainView::ZoomChanged);
    Zoom(view, 1);
    QCOMPARE(view.Zoom(), 1.25F);
    QCOMPARE(view.transform(), QTransform::fromScale(1.25, 1.25));
    QCOMPARE(Ruler(view, true)->Zoom(), 1.25F);
    QCOMPARE(Ruler(view, false)->Zoom(), 1.25F);
    Zoom(view, -2);
    QCOMPARE(view.Zoom(), 0.75F);
    QCOMPARE(spy.size(), 3);
    QCOMPARE(spy.at(0).first().toFloat(), 1.25F);
    QCOMPARE(spy.at(2).first().toFloat(), 0.75F);
    // Deltas of any size are one step.
    Wheel(view, {50, 50}, 1200, Qt::ControlModifier);
    QCOMPARE(view.Zoom(), 1.0F);
    Wheel(view, {50, 50}, -1, Qt::ControlModifier);
    QCOMPARE(view.Zoom(), 0.75F);
}

void tst_MainView::StaysInTheZoomRange()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    QSignalSpy spy(&view, &MainView::ZoomChanged);
    Zoom(view, 50);
    QCOMPARE(view.Zoom(), 12.5F);
    QCOMPARE(view.transform(), QTransform::fromScale(12.5, 12.5));
    QCOMPARE(spy.size(), 50);
    QCOMPARE(spy.last().first().toFloat(), 12.5F);
    Zoom(view, -60);
    QCOMPARE(view.Zoom(), 0.25F);
    QCOMPARE(Ruler(view, true)->Zoom(), 0.25F);
    Zoom(view, 1);
    QCOMPARE(view.Zoom(), 0.5F);
}

void tst_MainView::ZeroDeltaZoomsIn()
{
    CanvasFixture canvas;
    Wheel(canvas.view, {50, 50}, 0, Qt::ControlModifier);
    QCOMPARE(canvas.view.Zoom(), 1.25F);
}

void tst_MainView::ScrollsWithOtherModifiers_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("none") << Qt::KeyboardModifiers(Qt::NoModifier);
    QTest::newRow("Ctrl+Shift") << (Qt::ControlModifier | Qt::ShiftModifier);
    QTest::newRow("Ctrl+Meta") << (Qt::ControlModifier | Qt::MetaModifier);
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
}

void tst_MainView::ScrollsWithOtherModifiers()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    CanvasFixture canvas;
    Zoom(canvas.view, 12);
    canvas.view.centerOn(100, 80);
    const int before = canvas.view.verticalScrollBar()->value();
    QSignalSpy spy(&canvas.view, &MainView::ZoomChanged);
    Wheel(canvas.view, {50, 50}, -120, modifiers);
    QVERIFY(canvas.view.verticalScrollBar()->value() > before);
    QCOMPARE(canvas.view.Zoom(), 4.0F);
    QVERIFY(spy.isEmpty());
}

void tst_MainView::CentersOnThePointUnderTheMouse()
{
    CanvasFixture canvas({1000, 1000});
    MainView& view = canvas.view;
    Zoom(view, 4);
    view.centerOn(500, 500);
    for (const int delta : {120, 120, -120}) {
        const QPoint mouse(90, 210);
        const QPointF scene = view.mapToScene(mouse);
        Wheel(view, mouse, delta, Qt::ControlModifier);
        const QPointF center = view.mapToScene(view.viewport()->rect().center());
        QVERIFY(QLineF(scene, center).length() <= 2.0);
    }
}

void tst_MainView::ResetsTheZoomWithoutTheRulers()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    Zoom(view, 12);
    view.centerOn(0, 0);
    QSignalSpy spy(&view, &MainView::ZoomChanged);
    QTest::keyClick(&view, Qt::Key_0);
    QCOMPARE(view.Zoom(), 4.0F);
    QTest::keyClick(&view, Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(view.Zoom(), 1.0F);
    QCOMPARE(view.transform(), QTransform());
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().toFloat(), 1.0F);
    QCOMPARE(Ruler(view, true)->Zoom(), 4.0F);
    QCOMPARE(Ruler(view, false)->Zoom(), 4.0F);
    Zoom(view, 1);
    QCOMPARE(view.Zoom(), 1.25F);
    QCOMPARE(Ruler(view, true)->Zoom(), 1.25F);
}

void tst_MainView::PutsTheOriginsAtTheMapsEdges()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    const WidgetRuler* horizontal = Ruler(view, true);
    const WidgetRuler* vertical = Ruler(view, false);
    const auto near = [](float a, double b) { return std::abs(static_cast<double>(a) - b) <= 1.0; };
    for (const int steps : {1, 1, -4, 10, 20}) {
        Zoom(view, steps);
        const QScrollBar* across = view.horizontalScrollBar();
        const QScrollBar* along = view.verticalScrollBar();
        for (const double part : {0.0, 0.4, 1.0}) {
            view.horizontalScrollBar()->setValue(int(across->maximum() * part));
            view.verticalScrollBar()->setValue(int(along->maximum() * part));
            const QPoint center = view.viewport()->rect().center();
            const auto zoom = static_cast<double>(view.Zoom());
            const double x = across->minimum() == across->maximum() ? center.x() - 200 * zoom * 0.5
                                                                    : -across->value();
            const double y = along->minimum() == along->maximum()
                                 ? center.y() + 160 * zoom * 0.5
                                 : along->maximum() - along->value() + along->pageStep();
            QCOMPARE(horizontal->Origin(), static_cast<float>(x));
            QCOMPARE(vertical->Origin(), static_cast<float>(y));
            // That is where the map's lower left corner is.
            QVERIFY(near(horizontal->Origin(), view.mapFromScene(0, 160).x()));
            QVERIFY(near(vertical->Origin(), view.mapFromScene(0, 160).y()));
        }
    }
}

void tst_MainView::OriginsFollowAMapThatFits()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    const auto checkOrigins = [&view] {
        QCoreApplication::processEvents();
        const QPoint corner = view.mapFromScene(view.sceneRect().bottomLeft());
        QVERIFY(std::abs(static_cast<double>(Ruler(view, true)->Origin()) - corner.x()) <= 1.0);
        QVERIFY(std::abs(static_cast<double>(Ruler(view, false)->Origin()) - corner.y()) <= 1.0);
    };
    checkOrigins();
    for (const QSize size : {QSize(700, 380), QSize(700, 600), QSize(420, 380)}) {
        view.resize(size);
        checkOrigins();
    }
    view.SetSceneSize(300, 100);
    checkOrigins();
}

void tst_MainView::BracketsResizeTheBrush_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("change");
    const Qt::KeyboardModifiers none = Qt::NoModifier;
    const Qt::KeyboardModifiers shift = Qt::ShiftModifier;
    const Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
    QTest::newRow("]") << int(Qt::Key_BracketRight) << none << 5;
    QTest::newRow("[") << int(Qt::Key_BracketLeft) << none << -5;
    QTest::newRow("Shift+]") << int(Qt::Key_BracketRight) << shift << 15;
    QTest::newRow("}") << int(Qt::Key_BraceRight) << shift << 15;
    QTest::newRow("} without Shift") << int(Qt::Key_BraceRight) << none << 15;
    QTest::newRow("{") << int(Qt::Key_BraceLeft) << shift << -15;
    QTest::newRow("Ctrl+]") << int(Qt::Key_BracketRight) << ctrl << 25;
    QTest::newRow("Ctrl+[") << int(Qt::Key_BracketLeft) << ctrl << -25;
    QTest::newRow("Ctrl+Shift+]") << int(Qt::Key_BracketRight) << (ctrl | shift) << 60;
    QTest::newRow("Ctrl+Shift+}") << int(Qt::Key_BraceRight) << (ctrl | shift) << 60;
    QTest::newRow("Ctrl+Shift+{") << int(Qt::Key_BraceLeft) << (ctrl | shift) << -60;
}

void tst_MainView::BracketsResizeTheBrush()
{
    QFETCH(int, key);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, change);
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    const Brush* brush = canvas.dock.GetBrush();
    QTest::keyPress(&canvas.view, Qt::Key(key), modifiers);
    QCOMPARE(brush->Size(), 100 + change);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), qBound(1, 100 + 2 * change, 256));
    QTest::keyRelease(&canvas.view, Qt::Key(key), modifiers);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), qBound(1, 100 + 2 * change, 256));
}

void tst_MainView::HeldBracketsRepeat()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    const Brush* brush = canvas.dock.GetBrush();
    QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
    for (int i = 0; i < 60; ++i) {
        Tick(canvas.view);
    }
    QCOMPARE(brush->Size(), 256);
    QTest::keyRelease(&canvas.view, Qt::Key_BracketRight);
    QTest::keyPress(&canvas.view, Qt::Key_BracketLeft);
    for (int i = 0; i < 60; ++i) {
        Tick(canvas.view);
    }
    QCOMPARE(brush->Size(), 1);
    // Other modes let the key rest, and it goes on afterwards.
    QTest::keyRelease(&canvas.view, Qt::Key_BracketLeft);
    QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
    canvas.Scene().ChangeMode(SceneMode::Insert);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 6);
    canvas.Scene().ChangeMode(SceneMode::Paint);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 11);
}

void tst_MainView::TheTimerRepeatsByItself()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    const Brush* brush = canvas.dock.GetBrush();
    canvas.dock.SetSize(1);
    QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
    QTRY_VERIFY(brush->Size() >= 11);
    QTest::keyRelease(&canvas.view, Qt::Key_BracketRight);
}

void tst_MainView::BothBracketsHeldCancelOut()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
    QTest::keyPress(&canvas.view, Qt::Key_BracketLeft);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 105);
    Tick(canvas.view);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 105);
}

void tst_MainView::BracketsNeedThePaintMode()
{
    for (const SceneMode mode : Modes) {
        if (mode != SceneMode::Paint) {
            CanvasFixture canvas;
            canvas.Scene().ChangeMode(mode);
            QTest::keyPress(&canvas.view, Qt::Key_BracketRight);
            Tick(canvas.view);
            canvas.Scene().ChangeMode(SceneMode::Paint);
            Tick(canvas.view);
            QCOMPARE(canvas.dock.GetBrush()->Size(), 32);
        }
    }
    // Without a dock there is nothing to resize.
    MainView view;
    view.Scene()->ChangeMode(SceneMode::Paint);
    QTest::keyClick(&view, Qt::Key_BracketRight);
}

void tst_MainView::AltGrBracketsAreReleasedByTheirPlace()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    const Brush* brush = canvas.dock.GetBrush();
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 18);
    QCOMPARE(brush->Size(), 105);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_8, 17);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 110);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_9, 18);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 110);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketLeft, 17);
    QCOMPARE(brush->Size(), 105);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_8, 17);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 105);
    // Events that know no place do not release each other.
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 0);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_8, 0);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 115);
}

void tst_MainView::AutoRepeatIsIgnored()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    const Brush* brush = canvas.dock.GetBrush();
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 0, true);
    QCOMPARE(brush->Size(), 100);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 0);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_BracketRight, 0, true);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_BracketRight, 0, true);
    QCOMPARE(brush->Size(), 105);
    Tick(canvas.view);
    QCOMPARE(brush->Size(), 110);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_Space, 0, true);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Paint);
    SendKey(canvas.view, QEvent::KeyPress, Qt::Key_Space, 0);
    SendKey(canvas.view, QEvent::KeyRelease, Qt::Key_Space, 0, true);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Pan);
}

void tst_MainView::LostFocusReleasesTheKeys()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    canvas.dock.SetSize(100);
    QTest::keyPress(&canvas.view, Qt::Key_BraceRight, Qt::ShiftModifier);
    canvas.view.clearFocus();
    Tick(canvas.view);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 115);
    const HeldKeys& keys = HeldKeys::Instance();
    QVERIFY(!keys.grow && !keys.shift && !keys.ctrl);
    canvas.view.setFocus();
    Tick(canvas.view);
    QCOMPARE(canvas.dock.GetBrush()->Size(), 115);
    canvas.Scene().ChangeMode(SceneMode::Select);
    Zone* zone = canvas.AddZone({50, 50});
    zone->setSelected(true);
    QTest::keyPress(&canvas.view, Qt::Key_Right);
    canvas.view.clearFocus();
    Tick(canvas.view);
    QCOMPARE(zone->pos(), QPointF(51, 50));
}

void tst_MainView::ArrowsNudgeTheSelection_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("step");
    QTest::newRow("alone") << Qt::KeyboardModifiers(Qt::NoModifier) << 1;
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier) << 5;
    QTest::newRow("Ctrl") << Qt::KeyboardModifiers(Qt::ControlModifier) << 10;
    QTest::newRow("Ctrl+Shift") << (Qt::ControlModifier | Qt::ShiftModifier) << 50;
}

void tst_MainView::ArrowsNudgeTheSelection()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, step);
    const std::pair<Qt::Key, QPointF> arrows[] = {{Qt::Key_Up, {0, -1}},
                                                  {Qt::Key_Down, {0, 1}},
                                                  {Qt::Key_Left, {-1, 0}},
                                                  {Qt::Key_Right, {1, 0}}};
    for (const auto& [key, direction] : arrows) {
        CanvasFixture canvas;
        Zone* first = canvas.AddZone({50.5, 50});
        Zone* second = canvas.AddZone({100, 80});
        const Zone* other = canvas.AddZone({150, 90});
        first->setSelected(true);
        second->setSelected(true);
        canvas.Scene().ChangeMode(SceneMode::Select);
        canvas.Modified() = false;
        QTest::keyPress(&canvas.view, key, modifiers);
        QCOMPARE(first->pos(), QPointF(50.5, 50) + direction * step);
        Tick(canvas.view);
        QCOMPARE(first->pos(), QPointF(50.5, 50) + direction * step * 2);
        QCOMPARE(second->pos(), QPointF(100, 80) + direction * step * 2);
        QCOMPARE(other->pos(), QPointF(150, 90));
        QTest::keyRelease(&canvas.view, key, modifiers);
        Tick(canvas.view);
        QCOMPARE(first->pos(), QPointF(50.5, 50) + direction * step * 2);
        QVERIFY(!canvas.TakeModified());
    }
}

void tst_MainView::HeldArrowsRepeatAndCombine()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    zone->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyPress(&canvas.view, Qt::Key_Right);
    QTest::keyPress(&canvas.view, Qt::Key_Down);
    QCOMPARE(zone->pos(), QPointF(52, 51));
    Tick(canvas.view);
    QCOMPARE(zone->pos(), QPointF(53, 52));
    QTest::keyPress(&canvas.view, Qt::Key_Left);
    QCOMPARE(zone->pos(), QPointF(53, 53));
    QTest::keyRelease(&canvas.view, Qt::Key_Right);
    QTest::keyRelease(&canvas.view, Qt::Key_Down);
    Tick(canvas.view);
    QCOMPARE(zone->pos(), QPointF(52, 53));
}

void tst_MainView::ArrowsNeedTheSelectMode()
{
    for (const SceneMode mode : Modes) {
        if (mode != SceneMode::Select) {
            CanvasFixture canvas;
            Zone* zone = canvas.AddZone({50, 50});
            zone->setSelected(true);
            canvas.Scene().ChangeMode(mode);
            QTest::keyPress(&canvas.view, Qt::Key_Right);
            Tick(canvas.view);
            QCOMPARE(zone->pos(), QPointF(50, 50));
        }
    }
}

void tst_MainView::CopiesAndPastesZones()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritory(canvas.territory);
    Zone* first = canvas.AddZone({50, 50}, 7);
    Zone* second = canvas.AddZone({60, 40});
    first->SetStaticMax(5);
    first->SetUsage(Zone::DynamicEvent);
    first->SetEventName("Caravan");
    first->BringToFront();
    first->setSelected(true);
    second->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(canvas.territory->Zones().size(), 2);
    canvas.Move({120, 100}, Qt::NoButton);
    canvas.Modified() = false;
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QVERIFY(canvas.TakeModified());
    const QList<Zone*> zones = canvas.territory->Zones().values();
    QCOMPARE(zones.size(), 4);
    const Zone* copy = zones.at(2);
    QCOMPARE(copy->pos(), QPointF(120, 100));
    QCOMPARE(zones.at(3)->pos(), QPointF(130, 90));
    QCOMPARE(copy->Radius(), 7.0F);
    QCOMPARE(copy->EventName(), QString("Caravan"));
    QCOMPARE(copy->zValue(), first->zValue());
    QCOMPARE(copy->scene(), &canvas.Scene());
    QCOMPARE(copy->Holder(), canvas.territory);
    QVERIFY(!copy->isSelected());
    QCOMPARE(canvas.type->Totals().staticMax, 10);
    // The clipboard can be pasted again, also after its zones have moved.
    first->setPos(20, 20);
    canvas.Move({100, 60}, Qt::NoButton);
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(canvas.territory->Zones().size(), 6);
    QCOMPARE(canvas.territory->Zones().values().at(4)->pos(), QPointF(100, 60));
    QCOMPARE(canvas.territory->Zones().values().at(5)->pos(), QPointF(140, 80));
}

void tst_MainView::PastesZonesIntoAnotherTerritory()
{
    CanvasFixture canvas;
    canvas.territory->SetRgba(0xFF112233);
    canvas.Scene().ChangeTerritory(canvas.territory);
    Zone* zone = canvas.AddZone({50, 50});
    zone->SetDynamicMin(3);
    zone->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
    auto* otherType = new TerritoryType("Wolf");
    canvas.types.AddType(otherType);
    Territory* other = otherType->NewTerritory();
    other->SetRgba(0x40998877);
    canvas.Scene().ChangeTerritory(other);
    canvas.Move({120, 100}, Qt::NoButton);
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(other->Zones().size(), 1);
    const Zone* copy = other->Zones().first();
    QCOMPARE(copy->GetTerritory(), other);
    QCOMPARE(copy->Holder(), other);
    QCOMPARE(copy->Color().rgba(), 0x40998877U);
    QCOMPARE(otherType->Totals().dynamicMin, 3);
    QCOMPARE(canvas.type->Totals().dynamicMin, 3);
    QCOMPARE(zone->Color().rgba(), 0xFF112233U);
}

void tst_MainView::PastesFromTheFirstZoneThatWasMade()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritory(canvas.territory);
    QVector<Zone*> zones;
    for (int i = 0; i < 30; ++i) {
        zones.append(canvas.AddZone({10.0 + i * 5, 20}));
    }
    for (int i = zones.size() - 1; i >= 0; --i) {
        zones.at(i)->setSelected(true);
    }
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
    canvas.Move({20, 100}, Qt::NoButton);
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    const QList<Zone*> all = canvas.territory->Zones().values();
    QCOMPARE(all.size(), 60);
    for (int i = 0; i < 30; ++i) {
        QCOMPARE(all.at(30 + i)->pos(), QPointF(20 + i * 5, 100));
    }
}

void tst_MainView::SwallowsCopyAndPaste_data()
{
    QTest::addColumn<bool>("hasTerritory");
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::newRow("no territory") << false << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("no Ctrl") << true << Qt::KeyboardModifiers(Qt::NoModifier);
    QTest::newRow("Shift") << true << Qt::KeyboardModifiers(Qt::ShiftModifier);
}

void tst_MainView::SwallowsCopyAndPaste()
{
    QFETCH(bool, hasTerritory);
    QFETCH(Qt::KeyboardModifiers, modifiers);
    CanvasFixture canvas;
    canvas.AddZone({50, 50})->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    for (const bool isCopied : {false, true}) {
        if (isCopied) {
            canvas.Scene().ChangeTerritory(canvas.territory);
            QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
        }
        canvas.Scene().ChangeTerritory(hasTerritory ? canvas.territory : nullptr);
        canvas.Modified() = false;
        for (const Qt::Key key : {Qt::Key_C, Qt::Key_V}) {
            QKeyEvent event(QEvent::KeyPress, key, modifiers);
            QTest::keyClick(&canvas.view, Qt::Key_F5, modifiers); // Sets the modifiers.
            QCoreApplication::sendEvent(&canvas.view, &event);
            QVERIFY(event.isAccepted());
        }
        QCOMPARE(canvas.territory->Zones().size(), 1);
        QVERIFY(!canvas.TakeModified());
    }
}

void tst_MainView::ForgetsDestroyedZonesInTheClipboard()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeTerritory(canvas.territory);
    Zone* first = canvas.AddZone({50, 50});
    Zone* second = canvas.AddZone({60, 60});
    first->setSelected(true);
    second->setSelected(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_C, Qt::ControlModifier);
    delete first;
    canvas.Move({100, 100}, Qt::NoButton);
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(canvas.territory->Zones().size(), 2);
    QCOMPARE(canvas.territory->Zones().last()->pos(), QPointF(100, 100));
    canvas.type->RemoveTerritory(canvas.territory->Id());
    Territory* next = canvas.type->NewTerritory();
    canvas.Scene().ChangeTerritory(next);
    canvas.Modified() = false;
    QTest::keyClick(&canvas.view, Qt::Key_V, Qt::ControlModifier);
    QVERIFY(next->Zones().isEmpty());
    QVERIFY(!canvas.TakeModified());
}

void tst_MainView::SelectsAllZones()
{
    CanvasFixture canvas;
    for (int i = 0; i < 5; ++i) {
        canvas.AddZone({30.0 * i + 10, 10.0 + i * 30});
    }
    Zone* atTheBorder = canvas.AddZone({-5, -5});
    Zone* outside = canvas.AddZone({300, 300});
    canvas.Scene().ChangeMode(SceneMode::Select);
    QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ControlModifier);
    QVERIFY(canvas.Scene().selectedItems().isEmpty());
    canvas.Scene().ChangeTerritory(canvas.territory);
    QSignalSpy insert(&canvas.view, &MainView::ModeInsert);
    QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(canvas.Scene().selectedItems().size(), 6);
    QVERIFY(atTheBorder->isSelected());
    QVERIFY(!outside->isSelected());
    QVERIFY(insert.isEmpty());
}

void tst_MainView::AsksForModes_data()
{
    QTest::addColumn<SceneMode>("mode");
    QTest::addColumn<bool>("hasTerritory");
    for (const SceneMode mode : Modes) {
        QTest::addRow("mode %d", int(mode)) << mode << false;
        QTest::addRow("mode %d, with a territory", int(mode)) << mode << true;
    }
}

void tst_MainView::AsksForModes()
{
    QFETCH(SceneMode, mode);
    QFETCH(bool, hasTerritory);
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(mode);
    canvas.Scene().ChangeTerritory(hasTerritory ? canvas.territory : nullptr);
    QSignalSpy insert(&canvas.view, &MainView::ModeInsert);
    QSignalSpy select(&canvas.view, &MainView::ModeSelect);
    QSignalSpy query(&canvas.view, &MainView::ModeQuery);
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_S, Qt::Key_Q, Qt::Key_D}) {
        QTest::keyClick(&canvas.view, key);
        QTest::keyClick(&canvas.view, key, Qt::ControlModifier);
    }
    QVERIFY(insert.isEmpty() && select.isEmpty() && query.isEmpty());

    using Signals = QList<QList<QVariant>>;
    const Signals none;
    const Signals on = {{true}};
    const Signals off = {{false}};
    QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ShiftModifier);
    QCOMPARE(Signals(insert), hasTerritory ? (mode == SceneMode::Insert ? off : on) : none);
    QTest::keyClick(&canvas.view, Qt::Key_S, Qt::ShiftModifier);
    QCOMPARE(Signals(select), mode == SceneMode::Select ? off : (hasTerritory ? on : none));
    QTest::keyClick(&canvas.view, Qt::Key_Q, Qt::ShiftModifier);
    QCOMPARE(Signals(query), mode == SceneMode::Query ? off : on);
    QCOMPARE(canvas.Scene().Mode(), mode);
    // Ctrl+Shift+A selects in the selection mode.
    insert.clear();
    QTest::keyClick(&canvas.view, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(insert.size(), hasTerritory && mode != SceneMode::Select ? 1 : 0);
}

void tst_MainView::DeletesTheSelection()
{
    for (const SceneMode mode : Modes) {
        for (const bool hasTerritory : {false, true}) {
            for (const Qt::KeyboardModifier modifier : {Qt::NoModifier, Qt::ShiftModifier}) {
                CanvasFixture canvas;
                canvas.AddZone({50, 50})->setSelected(true);
                canvas.Scene().ChangeMode(mode);
                canvas.Scene().ChangeTerritory(hasTerritory ? canvas.territory : nullptr);
                canvas.Modified() = false;
                QTest::keyClick(&canvas.view, Qt::Key_D, modifier);
                const bool isDeleted =
                    mode == SceneMode::Select && hasTerritory && modifier == Qt::ShiftModifier;
                QCOMPARE(canvas.territory->Zones().size(), isDeleted ? 0 : 1);
                QCOMPARE(canvas.TakeModified(), isDeleted);
            }
        }
    }
}

void tst_MainView::PansWithSpace_data()
{
    QTest::addColumn<SceneMode>("mode");
    for (const SceneMode mode : Modes) {
        QTest::addRow("mode %d", int(mode)) << mode;
    }
}

void tst_MainView::PansWithSpace()
{
    QFETCH(SceneMode, mode);
    CanvasFixture canvas;
    MainView& view = canvas.view;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    canvas.Scene().ChangeTerritory(canvas.territory);
    canvas.Scene().ChangeMode(mode);
    Zoom(view, 12);
    view.centerOn(100, 80);
    const int x = view.horizontalScrollBar()->value();
    const int y = view.verticalScrollBar()->value();
    QTest::keyPress(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Pan);
    QCOMPARE(view.dragMode(), QGraphicsView::ScrollHandDrag);
    QVERIFY(!canvas.ItemAt(999)->isVisible());
    canvas.Mouse(QEvent::MouseButtonPress, {150, 150}, Qt::LeftButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseMove, {140, 155}, Qt::NoButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseButtonRelease, {140, 155}, Qt::LeftButton, Qt::NoButton);
    QCOMPARE(view.horizontalScrollBar()->value(), x + 10);
    QCOMPARE(view.verticalScrollBar()->value(), y - 5);
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), mode);
    QCOMPARE(view.dragMode(), QGraphicsView::NoDrag);
    QCOMPARE(canvas.ItemAt(999)->isVisible(), mode == SceneMode::Paint);
    QVERIFY(canvas.territory->Zones().isEmpty());
}

void tst_MainView::SpaceSavesTheModeOnce()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    canvas.Scene().ChangeMode(SceneMode::Select);
    // A release without a press, as after a change of windows.
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Select);
    QTest::keyPress(&view, Qt::Key_Space);
    QTest::keyPress(&view, Qt::Key_Space);
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Select);
    // What the window sets meanwhile is overwritten.
    QTest::keyPress(&view, Qt::Key_Space);
    canvas.Scene().ChangeMode(SceneMode::None);
    canvas.Scene().ChangeMode(SceneMode::Paint);
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Select);
}

void tst_MainView::LostFocusEndsPanning()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Paint);
    QTest::keyPress(&canvas.view, Qt::Key_Space);
    canvas.view.clearFocus();
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Paint);
    QCOMPARE(canvas.view.dragMode(), QGraphicsView::NoDrag);
    canvas.Scene().ChangeMode(SceneMode::Insert);
    QTest::keyRelease(&canvas.view, Qt::Key_Space);
    QCOMPARE(canvas.Scene().Mode(), SceneMode::Insert);
}

void tst_MainView::PansOnADoubleClickToo()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    Zoom(view, 12);
    view.centerOn(100, 80);
    const int x = view.horizontalScrollBar()->value();
    QTest::keyPress(&view, Qt::Key_Space);
    canvas.Mouse(QEvent::MouseButtonDblClick, {150, 150}, Qt::LeftButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseMove, {140, 150}, Qt::NoButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseButtonRelease, {140, 150}, Qt::LeftButton, Qt::NoButton);
    QTest::keyRelease(&view, Qt::Key_Space);
    QCOMPARE(view.horizontalScrollBar()->value(), x + 10);
}

void tst_MainView::SelectsWithTheBand()
{
    CanvasFixture canvas;
    Zone* inside = canvas.AddZone({80, 80}, 3);
    Zone* outside = canvas.AddZone({150, 30}, 3);
    canvas.Scene().ChangeMode(SceneMode::Select);
    const QPoint from = canvas.At({10, 10}) - QPoint(RulerThickness, RulerThickness);
    const QPoint to = canvas.At({110, 110});
    canvas.Mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    QVERIFY(Band(canvas.view)->isVisible());
    canvas.Mouse(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    QVERIFY(Band(canvas.view)->isHidden());
    QVERIFY(inside->isSelected());
    QVERIFY(!outside->isSelected());
}

/// The band's place, which counts from the view's corner, is taken for one in the viewport, and its
/// size is shortened by the rulers.
void tst_MainView::BandKeepsItsOwnCorner()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Select);
    const QPoint from(100, 110);
    const QPoint to(190, 180);
    const QPointF left = canvas.view.mapToScene(from + QPoint(32, 32));
    const QPointF right = canvas.view.mapToScene(to + QPoint(1, 1));
    Zone* caught[] = {canvas.AddZone(left + QPointF(2, 2), 1),
                      canvas.AddZone(right - QPointF(2, 2), 1)};
    Zone* missed[] = {canvas.AddZone(left - QPointF(5, 5), 1),
                      canvas.AddZone(right + QPointF(5, 5), 1)};
    canvas.Mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    QCOMPARE(Band(canvas.view)->geometry(), QRect(from + QPoint(32, 32), to + QPoint(32, 32)));
    canvas.Mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    for (const Zone* zone : caught) {
        QVERIFY(zone->isSelected());
    }
    for (const Zone* zone : missed) {
        QVERIFY(!zone->isSelected());
    }
}

void tst_MainView::BandFollowsTheMouse()
{
    CanvasFixture canvas;
    const QRubberBand* band = Band(canvas.view);
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Mouse(QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton, Qt::LeftButton);
    QCOMPARE(band->pos(), QPoint(132, 132));
    QVERIFY(band->size().isEmpty());
    canvas.Mouse(QEvent::MouseMove, {120, 150}, Qt::NoButton, Qt::LeftButton);
    QCOMPARE(band->geometry(), QRect(QPoint(132, 132), QPoint(152, 182)));
    canvas.Mouse(QEvent::MouseMove, {50, 30}, Qt::NoButton, Qt::LeftButton);
    QCOMPARE(band->geometry(), QRect(QPoint(132, 132), QPoint(82, 62)).normalized());
    canvas.Scene().ChangeMode(SceneMode::None);
    canvas.Mouse(QEvent::MouseMove, {40, 30}, Qt::NoButton, Qt::LeftButton);
    QVERIFY(band->size().isEmpty());
    canvas.Mouse(QEvent::MouseButtonRelease, {40, 30}, Qt::LeftButton, Qt::NoButton);
    QVERIFY(band->isHidden());
}

void tst_MainView::BandStartsOnADoubleClickToo()
{
    CanvasFixture canvas;
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Mouse(QEvent::MouseButtonDblClick, {20, 20}, Qt::LeftButton, Qt::LeftButton);
    QVERIFY(Band(canvas.view)->isVisible());
    canvas.Mouse(QEvent::MouseButtonRelease, {20, 20}, Qt::LeftButton, Qt::NoButton);
    QVERIFY(Band(canvas.view)->isHidden());
}

void tst_MainView::NoBandWhileAZoneIsSelected()
{
    CanvasFixture canvas;
    Zone* zone = canvas.AddZone({50, 50});
    Zone* other = canvas.AddZone({120, 100});
    canvas.Scene().ChangeMode(SceneMode::Select);
    canvas.Press({50, 50});
    QVERIFY(Band(canvas.view)->isHidden());
    canvas.Move({60, 60});
    QVERIFY(Band(canvas.view)->isHidden());
    canvas.Release({60, 60});
    QCOMPARE(zone->pos(), QPointF(60, 60));
    QCOMPARE(canvas.Scene().selectedItems(), QList<QGraphicsItem*>({zone}));
    // The right button leaves the selection, and so draws no band.
    canvas.Press({150, 20}, Qt::RightButton);
    QVERIFY(Band(canvas.view)->isHidden());
    canvas.Release({150, 20}, Qt::RightButton);
    QVERIFY(zone->isSelected());
    QVERIFY(!other->isSelected());
    // Beside all zones the press clears the selection, and the band starts.
    canvas.Press({150, 20});
    QVERIFY(Band(canvas.view)->isVisible());
    canvas.Release({150, 20});
}

void tst_MainView::NoBandInOtherModes()
{
    for (const SceneMode mode : Modes) {
        if (mode != SceneMode::Select) {
            CanvasFixture canvas;
            Zone* zone = canvas.AddZone({100, 80}, 50);
            canvas.Scene().ChangeMode(mode);
            canvas.Press({10, 10});
            QVERIFY(Band(canvas.view)->isHidden());
            canvas.Move({150, 150});
            canvas.Release({150, 150});
            QVERIFY(!zone->isSelected());
        }
    }
}

void tst_MainView::TellsWhereTheMouseIs()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    QSignalSpy spy(&view, &MainView::MouseMoved);
    for (const int steps : {1, 1, 12, -13}) {
        Zoom(view, steps);
        for (const QPoint position : {QPoint(10, 20), QPoint(200, 150), QPoint(0, 0)}) {
            spy.clear();
            canvas.Mouse(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton);
            QCOMPARE(spy.size(), 1);
            const float x = static_cast<float>(position.x()) - Ruler(view, true)->Origin();
            const float y = Ruler(view, false)->Origin() - static_cast<float>(position.y());
            QCOMPARE(spy.last().at(0).toInt(), static_cast<int>(x));
            QCOMPARE(spy.last().at(1).toInt(), static_cast<int>(y));
        }
    }
    // One metre is one layer pixel here, and y counts from the map's lower edge.
    spy.clear();
    canvas.Move({30, 40}, Qt::NoButton);
    const auto zoom = static_cast<double>(view.Zoom());
    QVERIFY(std::abs(spy.last().at(0).toInt() / zoom - 30) <= 2);
    QVERIFY(std::abs(spy.last().at(1).toInt() / zoom - 120) <= 2);
}

void tst_MainView::RulersFollowTheMouse()
{
    CanvasFixture canvas;
    canvas.Mouse(QEvent::MouseMove, {50, 70}, Qt::NoButton, Qt::NoButton);
    for (const bool isHorizontal : {true, false}) {
        const WidgetRuler* ruler = Ruler(canvas.view, isHorizontal);
        const QPoint global = canvas.view.viewport()->mapToGlobal(QPoint(50, 70));
        QCOMPARE(ruler->CursorPos(), ruler->mapFromGlobal(global));
    }
}

void tst_MainView::TakesTheFocusWhenTheMouseEnters()
{
    QMainWindow window;
    auto* view = new MainView;
    window.setCentralWidget(view);
    QTreeView tree;
    QStandardItemModel model;
    model.appendRow(new QStandardItem("layer"));
    tree.setModel(&model);
    auto* panel = new QDockWidget;
    panel->setWidget(&tree);
    window.addDockWidget(Qt::LeftDockWidgetArea, panel);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QApplication::setActiveWindow(&window);
    tree.setFocus();
    tree.setCurrentIndex(model.index(0, 0));
    QCOMPARE(QApplication::focusWidget(), &tree);
    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(view, &enter);
    QCOMPARE(QApplication::focusWidget(), view);
    // While the item is renamed, it keeps the focus.
    tree.setFocus();
    tree.edit(model.index(0, 0));
    const QWidget* editor = QApplication::focusWidget();
    QVERIFY(qobject_cast<const QLineEdit*>(editor));
    QCoreApplication::sendEvent(view, &enter);
    QCOMPARE(QApplication::focusWidget(), editor);
    panel->setWidget(nullptr);
    tree.setParent(nullptr);
}

void tst_MainView::LeavesTheFocusToTextThatIsEdited()
{
    QWidget window;
    MainView view(&window);
    QLineEdit line(&window);
    QLineEdit readOnly(&window);
    QSpinBox spin(&window);
    readOnly.setReadOnly(true);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QApplication::setActiveWindow(&window);
    const std::pair<QWidget*, bool> others[] = {{&line, true}, {&readOnly, false}, {&spin, true}};
    for (const auto& [widget, isEdited] : others) {
        widget->setFocus();
        QEvent enter(QEvent::Enter);
        QCoreApplication::sendEvent(&view, &enter);
        QCOMPARE(view.hasFocus(), !isEdited);
    }
}

QTEST_MAIN(tst_MainView)
#include "tst_MainView.moc"
