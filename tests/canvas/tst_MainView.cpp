#include "canvas/MainView.h"

#include "canvas/WidgetRuler.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDockWidget>
#include <QGridLayout>
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

#include <algorithm>
#include <cmath>
#include <limits>

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
    void StandsSceneSizesOfNoUse_data();
    void StandsSceneSizesOfNoUse();
    void ZoomsInSteps();
    void StaysInTheZoomRange();
    void ZeroDeltaZoomsIn_data();
    void ZeroDeltaZoomsIn();
    void KeepsWheelAndKeyThatZoom();
    void ScrollsWithOtherModifiers_data();
    void ScrollsWithOtherModifiers();
    void CentersOnThePointUnderTheMouse();
    void ResetsTheZoomWithoutTheRulers();
    void PutsTheOriginsAtTheMapsEdges();
    void OriginsFollowTheScrollBars();
    void OriginsFollowAMapThatFits();
    void TellsWhereTheMouseIs();
    void TellsWhereTheMouseIsOnVastMaps();
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
    QCOMPARE(Band(view)->shape(), QRubberBand::Rectangle);
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
        QCOMPARE(corner->contentsMargins(), QMargins());
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

/// The current layer and those below it are drawn in place, also with zones and in the scene's
/// coordinates.
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
    Brush brush;
    BrushDock dock(brush);
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

void tst_MainView::StandsSceneSizesOfNoUse_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("0 x 0") << QSize(0, 0);
    QTest::newRow("-1 x -1") << QSize(-1, -1);
    QTest::newRow("longer than a scroll bar")
        << QSize(std::numeric_limits<int>::max(), std::numeric_limits<int>::max());
}

void tst_MainView::StandsSceneSizesOfNoUse()
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
    const QSignalSpy ofTheScene(view.Scene(), &MainScene::ZoomChanged);
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
    // A delta of any size is one step.
    Wheel(view, {50, 50}, 1200, Qt::ControlModifier);
    QCOMPARE(view.Zoom(), 1.0F);
    Wheel(view, {50, 50}, -1, Qt::ControlModifier);
    QCOMPARE(view.Zoom(), 0.75F);
    QVERIFY(ofTheScene.isEmpty());
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

void tst_MainView::ZeroDeltaZoomsIn_data()
{
    QTest::addColumn<int>("horizontal");
    QTest::newRow("no turn") << 0;
    QTest::newRow("to the left") << 120;
    QTest::newRow("to the right") << -120;
}

void tst_MainView::ZeroDeltaZoomsIn()
{
    QFETCH(int, horizontal);
    CanvasFixture canvas;
    QWheelEvent wheel(QPointF(50, 50), canvas.view.viewport()->mapToGlobal(QPoint(50, 50)), {},
                      {horizontal, 0}, Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(canvas.view.viewport(), &wheel);
    QCOMPARE(canvas.view.Zoom(), 1.25F);
}

/// The events are accepted, so they do not go to any parent.
void tst_MainView::KeepsWheelAndKeyThatZoom()
{
    CanvasFixture canvas;
    QWheelEvent wheel(QPointF(50, 50), canvas.view.viewport()->mapToGlobal(QPoint(50, 50)), {},
                      {0, 120}, Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    wheel.ignore();
    QCoreApplication::sendEvent(canvas.view.viewport(), &wheel);
    QVERIFY(wheel.isAccepted());
    QTest::keyClick(&canvas.view, Qt::Key_F5, Qt::ControlModifier); // Sets the modifiers.
    QKeyEvent key(QEvent::KeyPress, Qt::Key_0, Qt::ControlModifier);
    key.ignore();
    QCoreApplication::sendEvent(&canvas.view, &key);
    QVERIFY(key.isAccepted());
    QCOMPARE(canvas.view.Zoom(), 1.0F);
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
    const QSignalSpy ofTheScene(view.Scene(), &MainScene::ZoomChanged);
    QTest::keyClick(&view, Qt::Key_0);
    QCOMPARE(view.Zoom(), 4.0F);
    QTest::keyClick(&view, Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(view.Zoom(), 1.0F);
    QCOMPARE(view.transform(), QTransform());
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy.first().first().toFloat(), 1.0F);
    QVERIFY(ofTheScene.isEmpty());
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
            // The map's lower left corner is there.
            QVERIFY(near(horizontal->Origin(), view.mapFromScene(0, 160).x()));
            QVERIFY(near(vertical->Origin(), view.mapFromScene(0, 160).y()));
        }
    }
}

void tst_MainView::OriginsFollowTheScrollBars()
{
    CanvasFixture canvas;
    QScrollBar* across = canvas.view.horizontalScrollBar();
    QScrollBar* along = canvas.view.verticalScrollBar();
    const WidgetRuler* horizontal = Ruler(canvas.view, true);
    const WidgetRuler* vertical = Ruler(canvas.view, false);
    QCOMPARE(across->value(), 0);
    QCOMPARE(along->value(), 0);
    const float centeredX = horizontal->Origin();
    const float centeredY = vertical->Origin();
    across->setRange(0, 500);
    QCOMPARE(horizontal->Origin(), 0.0F);
    QCOMPARE(vertical->Origin(), centeredY);
    along->setRange(0, 300);
    QCOMPARE(vertical->Origin(), static_cast<float>(300 + along->pageStep()));
    across->setValue(7);
    QCOMPARE(horizontal->Origin(), -7.0F);
    along->setValue(9);
    QCOMPARE(vertical->Origin(), static_cast<float>(300 - 9 + along->pageStep()));
    across->setRange(0, 0);
    along->setRange(0, 0);
    QCOMPARE(horizontal->Origin(), centeredX);
    QCOMPARE(vertical->Origin(), centeredY);
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

void tst_MainView::TellsWhereTheMouseIsOnVastMaps()
{
    CanvasFixture canvas;
    MainView& view = canvas.view;
    constexpr int vast = std::numeric_limits<int>::max();
    constexpr int nearlyVast = vast - 1000;
    view.SetSceneSize(vast, vast);
    QSignalSpy spy(&view, &MainView::MouseMoved);
    view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->maximum());
    view.verticalScrollBar()->setValue(0);
    canvas.Mouse(QEvent::MouseMove, {0, 0}, Qt::NoButton, Qt::NoButton);
    QVERIFY(spy.last().at(0).toInt() > nearlyVast);
    QVERIFY(spy.last().at(1).toInt() > nearlyVast);
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
    // The editor of the item keeps the focus.
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
