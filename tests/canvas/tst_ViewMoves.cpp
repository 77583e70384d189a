#include "canvas/ViewMoves.h"

#include "canvas/PlaceMark.h"
#include "canvas/WidgetRuler.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/CanvasFixture.h"

#include <QNativeGestureEvent>
#include <QRubberBand>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <cmath>
#include <functional>

namespace {

constexpr QPoint MousePixel(90, 210);

/// A view of a map that is larger than the view, with the mouse over it.
struct MovedCanvas : CanvasFixture
{
    MovedCanvas()
        : CanvasFixture({1000, 1000})
        , moved(&view, &MainView::MouseMoved)
    {
        // As in the window.
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        QCoreApplication::processEvents();
        view.centerOn(500, 500);
        MoveTo(MousePixel);
    }

    void MoveTo(QPoint pixel, Qt::MouseButtons buttons = Qt::NoButton)
    {
        Mouse(QEvent::MouseMove, pixel, Qt::NoButton, buttons);
    }

    QPoint Middle() const { return view.viewport()->rect().center(); }

    /// Rulers, label and markers tell what the transform says, with the mouse at this pixel.
    void VerifyAgreement(QPoint mouse = MousePixel)
    {
        const QPointF place = view.mapToScene(mouse);
        const auto zoom = static_cast<double>(view.Zoom());
        QCOMPARE(view.transform(), QTransform::fromScale(zoom, zoom));
        const QPoint onScreen = view.viewport()->mapToGlobal(mouse);
        for (const bool isHorizontal : {true, false}) {
            const WidgetRuler* ruler = Ruler(view, isHorizontal);
            QCOMPARE(ruler->Zoom(), view.Zoom());
            QCOMPARE(ruler->CursorPos(), ruler->mapFromGlobal(onScreen));
        }
        const QPoint corner = view.mapFromScene(0, view.sceneRect().height());
        QVERIFY(std::abs(static_cast<double>(Ruler(view, true)->Origin()) - corner.x()) <= 1);
        QVERIFY(std::abs(static_cast<double>(Ruler(view, false)->Origin()) - corner.y()) <= 1);
        VerifyLabel(place);
    }

    void VerifyLabel(QPointF place)
    {
        const auto zoom = static_cast<double>(view.Zoom());
        QVERIFY(!moved.isEmpty());
        const double x = moved.last().at(0).toInt() / zoom;
        const double z = moved.last().at(1).toInt() / zoom;
        QVERIFY2(std::abs(x - place.x()) <= 2 / zoom, qPrintable(QString::number(x)));
        QVERIFY2(std::abs(z - (view.sceneRect().height() - place.y())) <= 2 / zoom,
                 qPrintable(QString::number(z)));
    }

    void VerifyPlace(QPoint pixel, QPointF place) const
    {
        const QPointF now = view.PlaceAt(pixel);
        QVERIFY2(QLineF(now, place).length() * static_cast<double>(view.Zoom()) <= 1,
                 qPrintable(QStringLiteral("%1 %2").arg(now.x()).arg(now.y())));
    }

    QSignalSpy moved;
};

void Pinch(MainView& view, QPointF pixel, double value,
           Qt::NativeGestureType type = Qt::ZoomNativeGesture)
{
    QNativeGestureEvent event(type, nullptr, pixel, pixel, pixel, value, 0, 0);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

/// Two fingers that go apart on a touch screen, one after the other put down.
void PinchByTouch(MainView& view, QPoint middle)
{
    static QTouchDevice* const screen = QTest::createTouchDevice();
    QWidget* viewport = view.viewport();
    QTest::touchEvent(viewport, screen).press(0, middle - QPoint(20, 0), viewport);
    QTest::touchEvent(viewport, screen).stationary(0).press(1, middle + QPoint(20, 0), viewport);
    for (const int reach : {30, 40, 60, 80}) {
        QTest::touchEvent(viewport, screen)
            .move(0, middle - QPoint(reach, 0), viewport)
            .move(1, middle + QPoint(reach, 0), viewport);
    }
    QTest::touchEvent(viewport, screen)
        .release(0, middle - QPoint(80, 0), viewport)
        .release(1, middle + QPoint(80, 0), viewport);
}

void TurnBoth(MainView& view, QPoint pixels, QPoint angle, Qt::ScrollPhase phase)
{
    const QPointF position(50, 50);
    QWheelEvent event(position, view.viewport()->mapToGlobal(QPoint(50, 50)), pixels, angle,
                      Qt::NoButton, Qt::NoModifier, phase, false);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

} // namespace

Q_DECLARE_METATYPE(std::function<void(MovedCanvas&)>)

/// After each way of moving, the right place is where it should be, and everything that tells of
/// places agrees with it.
class tst_ViewMoves : public QObject
{
    Q_OBJECT

private slots:
    void KeepsAPlaceWhileZooming_data();
    void KeepsAPlaceWhileZooming();
    void WheelKeepsThePlaceOnRequest();
    void WheelGoesOnBelowItsSteps();
    void ShowsAPlaceAgain();
    void FitsAnArea();
    void TellsTheRulersAfterCtrl0();
    void FollowsTheMouseWhereverTheMapMoves_data();
    void FollowsTheMouseWhereverTheMapMoves();
    void TellsNothingOfAMouseThatIsElsewhere();
    void PansInEveryMode_data();
    void PansInEveryMode();
    void PansFromAQuickSecondPress();
    void EndsPanning_data();
    void EndsPanning();
    void LeavesAStrokeAlone();
    void LeavesADragOfZonesAlone();
    void LeavesABandAlone();
    void ScrollsBothWays_data();
    void ScrollsBothWays();
    void PinchesAroundTheFingers();
    void PinchStaysInItsRange();
    void PinchesOnATouchScreen();
    void FirstFingerOfAPinchPaintsNothing();
    void StrokesGoOnThroughEveryMove();
    void MarksAPlaceForAWhile();
};

void tst_ViewMoves::KeepsAPlaceWhileZooming_data()
{
    QTest::addColumn<bool>("isMouseOver");
    QTest::newRow("of the mouse") << true;
    QTest::newRow("in the middle") << false;
}

void tst_ViewMoves::KeepsAPlaceWhileZooming()
{
    QFETCH(bool, isMouseOver);
    MovedCanvas canvas;
    canvas.view.Moves().Show({{500, 500}, 2});
    if (!isMouseOver) {
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(canvas.view.viewport(), &leave);
    }
    const QPoint pixel = isMouseOver ? MousePixel : canvas.Middle();
    const QPointF place = canvas.view.PlaceAt(pixel);
    for (const bool isIn : {true, true, true, false, false, true, false}) {
        const float before = canvas.view.Zoom();
        canvas.view.Moves().Zoom(isIn);
        QCOMPARE(canvas.view.Zoom(), before + (isIn ? 0.25F : -0.25F));
        canvas.VerifyPlace(pixel, place);
        if (isMouseOver) {
            canvas.VerifyAgreement();
        }
    }
}

void tst_ViewMoves::WheelKeepsThePlaceOnRequest()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    view.Moves().Show({{500, 500}, 2});
    view.Moves().SetKeepsPlace(true);
    const QPointF place = view.PlaceAt(MousePixel);
    for (const int delta : {120, 120, -120, 120}) {
        Wheel(view, MousePixel, delta, Qt::ControlModifier);
        canvas.VerifyPlace(MousePixel, place);
        canvas.VerifyAgreement();
    }
    QCOMPARE(view.Zoom(), 2.5F);
    view.Moves().SetKeepsPlace(false);
    Wheel(view, MousePixel, 120, Qt::ControlModifier);
    QVERIFY(QLineF(view.PlaceAt(canvas.Middle()), place).length() <= 2);
    canvas.VerifyAgreement();
}

void tst_ViewMoves::WheelGoesOnBelowItsSteps()
{
    for (const int delta : {120, -120}) {
        CanvasFixture canvas({4096, 4096});
        canvas.view.Moves().Show({{2000, 2000}, 0.0625F});
        QCOMPARE(canvas.view.Zoom(), 0.0625F);
        Wheel(canvas.view, {50, 50}, delta, Qt::ControlModifier);
        QCOMPARE(canvas.view.Zoom(), delta > 0 ? 0.5F : 0.25F);
        QCOMPARE(Ruler(canvas.view, true)->Zoom(), canvas.view.Zoom());
    }
}

void tst_ViewMoves::ShowsAPlaceAgain()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    for (const float zoom : {1.0F, 3.25F, 12.5F, 0.75F}) {
        view.Moves().Show({{400.5, 620.25}, zoom});
        const ViewPlace place = view.Moves().Place();
        const QTransform shown = view.viewportTransform();
        QVERIFY(QLineF(place.center, {400.5, 620.25}).length() <= 1 / static_cast<double>(zoom));
        view.Moves().Show({{10, 10}, 5});
        view.Moves().Show(place);
        QCOMPARE(view.viewportTransform(), shown);
        canvas.VerifyAgreement();
    }
}

void tst_ViewMoves::FitsAnArea()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    const QSize room = view.maximumViewportSize();
    const QRectF areas[] = {view.sceneRect(),
                            {300, 400, 50, 40},
                            {0, 0, 120, 30},
                            {900, 990, 100, 10},
                            {{500, 500}, QSizeF(room) / 2}};
    for (const QRectF& area : areas) {
        view.Moves().Show(view.Moves().PlaceToFit(area));
        const QRectF shown = view.mapFromScene(area).boundingRect();
        QVERIFY(QRectF(view.viewport()->rect()).adjusted(-1, -1, 1, 1).contains(shown));
        const auto next = static_cast<double>(view.Zoom()) * (view.Zoom() < 0.25F ? 2 : 1) +
                          (view.Zoom() < 0.25F ? 0 : 0.25);
        QVERIFY(view.Zoom() >= 12.5F || area.width() * next > room.width() ||
                area.height() * next > room.height());
        canvas.VerifyAgreement();
    }
    QVERIFY(view.Zoom() >= 2.0F);
}

/// Ctrl+0 leaves the rulers as they are; every move after it corrects them.
void tst_ViewMoves::TellsTheRulersAfterCtrl0()
{
    MovedCanvas canvas;
    canvas.view.Moves().Show({{500, 500}, 3});
    QTest::keyClick(&canvas.view, Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(Ruler(canvas.view, true)->Zoom(), 3.0F);
    canvas.view.Moves().Show(canvas.view.Moves().Place());
    canvas.VerifyAgreement();
}

void tst_ViewMoves::FollowsTheMouseWhereverTheMapMoves_data()
{
    using Move = std::function<void(MovedCanvas&)>;
    QTest::addColumn<Move>("move");
    QTest::newRow("scroll bars") << Move([](MovedCanvas& canvas) {
        canvas.view.horizontalScrollBar()->setValue(33);
        canvas.view.verticalScrollBar()->setValue(44);
    });
    QTest::newRow("wheel") << Move(
        [](MovedCanvas& canvas) { Wheel(canvas.view, MousePixel, -120, Qt::NoModifier); });
    QTest::newRow("Ctrl and wheel") << Move(
        [](MovedCanvas& canvas) { Wheel(canvas.view, MousePixel, 120, Qt::ControlModifier); });
    QTest::newRow("Ctrl+0") << Move([](MovedCanvas& canvas) {
        canvas.view.Moves().Show({{300, 700}, 4});
        QTest::keyClick(&canvas.view, Qt::Key_0, Qt::ControlModifier);
    });
    QTest::newRow("Ctrl+0 on a map that fits") << Move([](MovedCanvas& canvas) {
        canvas.view.SetSceneSize(200, 200);
        canvas.view.Moves().Show({{100, 100}, 0.5F});
        QTest::keyClick(&canvas.view, Qt::Key_0, Qt::ControlModifier);
    });
    QTest::newRow("another size of the view") << Move([](MovedCanvas& canvas) {
        canvas.view.SetSceneSize(200, 200);
        canvas.view.resize(700, 600);
        QCoreApplication::processEvents();
    });
    QTest::newRow("zoom action") << Move(
        [](MovedCanvas& canvas) { canvas.view.Moves().Zoom(true); });
    QTest::newRow("place") << Move([](MovedCanvas& canvas) {
        canvas.view.Moves().Show({{200, 800}, 2.5F});
    });
}

/// The label tells the place under the mouse without a move of the mouse.
void tst_ViewMoves::FollowsTheMouseWhereverTheMapMoves()
{
    QFETCH(std::function<void(MovedCanvas&)>, move);
    MovedCanvas canvas;
    canvas.moved.clear();
    move(canvas);
    canvas.VerifyLabel(canvas.view.mapToScene(MousePixel));
    const QList<QVariant> told = canvas.moved.last();
    canvas.MoveTo(MousePixel);
    QCOMPARE(canvas.moved.last(), told);
    const QPoint onScreen = canvas.view.viewport()->mapToGlobal(MousePixel);
    const WidgetRuler* ruler = Ruler(canvas.view, true);
    QCOMPARE(ruler->CursorPos(), ruler->mapFromGlobal(onScreen));
}

void tst_ViewMoves::TellsNothingOfAMouseThatIsElsewhere()
{
    MovedCanvas canvas;
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(canvas.view.viewport(), &leave);
    canvas.moved.clear();
    canvas.view.Moves().Zoom(true);
    canvas.view.verticalScrollBar()->setValue(3);
    QVERIFY(canvas.moved.isEmpty());
}

void tst_ViewMoves::PansInEveryMode_data()
{
    QTest::addColumn<int>("mode");
    for (const SceneMode mode : Modes) {
        QTest::addRow("%d", int(mode)) << int(mode);
    }
}

void tst_ViewMoves::PansInEveryMode()
{
    QFETCH(int, mode);
    MovedCanvas canvas;
    MainView& view = canvas.view;
    Layer* layer = canvas.AddLayer(Qt::red, {400, 400, 200, 200});
    canvas.Edit(layer);
    Zone* zone = canvas.AddZone({500, 500}, 40);
    zone->setFlag(QGraphicsItem::ItemIsSelectable);
    zone->setSelected(true);
    canvas.document.SetCurrentTerritory(canvas.territory);
    canvas.Scene().ChangeMode(SceneMode(mode));
    view.Moves().Show({{500, 500}, 2});
    const QImage mask = layer->Image().copy();
    canvas.TakeModified();
    const QPoint from = canvas.At({500, 500});
    canvas.MoveTo(from);
    const QCursor cursor = view.viewport()->cursor();

    canvas.Mouse(QEvent::MouseButtonPress, from, Qt::MiddleButton, Qt::MiddleButton);
    QVERIFY(Band(view)->isHidden());
    for (const QPoint way : {QPoint(7, 3), QPoint(-60, 45), QPoint(31, -80)}) {
        canvas.MoveTo(from + way, Qt::MiddleButton);
        QCOMPARE(canvas.At({500, 500}), from + way);
        canvas.VerifyAgreement(from + way);
    }
    QCOMPARE(view.viewport()->cursor().shape(), Qt::ClosedHandCursor);
    canvas.Mouse(QEvent::MouseButtonRelease, from + QPoint(31, -80), Qt::MiddleButton,
                 Qt::NoButton);
    canvas.MoveTo(from);
    QCOMPARE(canvas.At({500, 500}), from + QPoint(31, -80));

    QCOMPARE(view.viewport()->cursor().shape(), cursor.shape());
    QCOMPARE(canvas.Scene().Mode(), SceneMode(mode));
    QCOMPARE(canvas.Scene().SelectedZones(), QVector<Zone*>{zone});
    QCOMPARE(zone->pos(), QPointF(500, 500));
    QCOMPARE(canvas.territory->Zones().size(), 1);
    QCOMPARE(layer->Image(), mask);
    QVERIFY(!canvas.IsModified());
}

void tst_ViewMoves::PansFromAQuickSecondPress()
{
    MovedCanvas canvas;
    const QPointF place = canvas.view.PlaceAt(MousePixel);
    canvas.Mouse(QEvent::MouseButtonDblClick, MousePixel, Qt::MiddleButton, Qt::MiddleButton);
    canvas.MoveTo(MousePixel + QPoint(20, 30), Qt::MiddleButton);
    canvas.VerifyPlace(MousePixel + QPoint(20, 30), place);
}

void tst_ViewMoves::EndsPanning_data()
{
    using Move = std::function<void(MovedCanvas&)>;
    QTest::addColumn<Move>("move");
    QTest::newRow("release that was lost")
        << Move([](MovedCanvas& canvas) { canvas.MoveTo(MousePixel); });
    QTest::newRow("focus that was lost") << Move([](MovedCanvas& canvas) {
        QFocusEvent event(QEvent::FocusOut);
        QCoreApplication::sendEvent(&canvas.view, &event);
    });
    QTest::newRow("another button") << Move([](MovedCanvas& canvas) {
        canvas.Mouse(QEvent::MouseButtonPress, MousePixel, Qt::LeftButton,
                     Qt::LeftButton | Qt::MiddleButton);
    });
}

void tst_ViewMoves::EndsPanning()
{
    QFETCH(std::function<void(MovedCanvas&)>, move);
    MovedCanvas canvas;
    canvas.Mouse(QEvent::MouseButtonPress, MousePixel, Qt::MiddleButton, Qt::MiddleButton);
    move(canvas);
    const QTransform shown = canvas.view.viewportTransform();
    canvas.MoveTo(MousePixel + QPoint(20, 30), Qt::MiddleButton);
    QCOMPARE(canvas.view.viewportTransform(), shown);
}

void tst_ViewMoves::LeavesAStrokeAlone()
{
    const auto paint = [](bool isMiddlePressed) {
        MovedCanvas canvas;
        Layer* layer = canvas.AddLayer(Qt::red);
        canvas.Edit(layer);
        const QTransform shown = canvas.view.viewportTransform();
        const QPoint middle(100, 90);
        canvas.Mouse(QEvent::MouseButtonPress, {60, 60}, Qt::LeftButton, Qt::LeftButton);
        if (isMiddlePressed) {
            const auto both = Qt::LeftButton | Qt::MiddleButton;
            canvas.Mouse(QEvent::MouseButtonPress, {60, 60}, Qt::MiddleButton, both);
            canvas.MoveTo(middle, both);
            canvas.Mouse(QEvent::MouseButtonRelease, middle, Qt::MiddleButton, Qt::LeftButton);
        } else {
            canvas.MoveTo(middle, Qt::LeftButton);
        }
        canvas.MoveTo({200, 120}, Qt::LeftButton);
        canvas.Mouse(QEvent::MouseButtonRelease, {200, 120}, Qt::LeftButton, Qt::NoButton);
        if (canvas.view.viewportTransform() != shown || canvas.document.History().count() != 1) {
            return QImage();
        }
        return layer->Image().copy();
    };
    const QImage alone = paint(false);
    QVERIFY(!alone.isNull());
    QCOMPARE(paint(true), alone);
}

/// A drag stays one step of the history.
void tst_ViewMoves::LeavesADragOfZonesAlone()
{
    MovedCanvas canvas;
    Zone* zone = canvas.AddZone({500, 500}, 40);
    canvas.document.SetCurrentTerritory(canvas.territory);
    canvas.territory->SetZonesEditable(true);
    canvas.Scene().ChangeMode(SceneMode::Select);
    const QPoint from = canvas.At({500, 500});
    const auto both = Qt::LeftButton | Qt::MiddleButton;
    const QPoint way(30, 20);
    canvas.Mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    canvas.MoveTo(from + way / 2, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseButtonPress, from + way / 2, Qt::MiddleButton, both);
    canvas.Mouse(QEvent::MouseButtonRelease, from + way / 2, Qt::MiddleButton, Qt::LeftButton);
    canvas.MoveTo(from + way, Qt::LeftButton);
    canvas.Mouse(QEvent::MouseButtonRelease, from + way, Qt::LeftButton, Qt::NoButton);
    QCOMPARE(zone->pos(), QPointF(530, 520));
    QCOMPARE(canvas.document.History().count(), 1);
}

void tst_ViewMoves::LeavesABandAlone()
{
    MovedCanvas canvas;
    canvas.Scene().ChangeMode(SceneMode::Select);
    const auto both = Qt::LeftButton | Qt::MiddleButton;
    canvas.Mouse(QEvent::MouseButtonPress, {50, 50}, Qt::LeftButton, Qt::LeftButton);
    canvas.MoveTo({80, 90}, Qt::LeftButton);
    const QRect band = Band(canvas.view)->geometry();
    const QTransform shown = canvas.view.viewportTransform();
    canvas.Mouse(QEvent::MouseButtonPress, {80, 90}, Qt::MiddleButton, both);
    canvas.Mouse(QEvent::MouseButtonRelease, {80, 90}, Qt::MiddleButton, Qt::LeftButton);
    QVERIFY(Band(canvas.view)->isVisible());
    QCOMPARE(Band(canvas.view)->geometry(), band);
    QCOMPARE(canvas.view.viewportTransform(), shown);
}

void tst_ViewMoves::ScrollsBothWays_data()
{
    QTest::addColumn<QPoint>("pixels");
    QTest::addColumn<QPoint>("angle");
    QTest::addColumn<Qt::ScrollPhase>("phase");
    QTest::newRow("touch pad") << QPoint(13, -21) << QPoint(26, -42) << Qt::ScrollUpdate;
    QTest::newRow("touch pad without angles") << QPoint(13, -21) << QPoint() << Qt::NoScrollPhase;
    QTest::newRow("wheel with two axes") << QPoint() << QPoint(120, -120) << Qt::NoScrollPhase;
    QTest::newRow("to the side") << QPoint() << QPoint(120, 0) << Qt::NoScrollPhase;
}

void tst_ViewMoves::ScrollsBothWays()
{
    QFETCH(QPoint, pixels);
    QFETCH(QPoint, angle);
    QFETCH(Qt::ScrollPhase, phase);
    MovedCanvas canvas;
    const int x = canvas.view.horizontalScrollBar()->value();
    const int y = canvas.view.verticalScrollBar()->value();
    TurnBoth(canvas.view, pixels, angle, phase);
    const int right = canvas.view.horizontalScrollBar()->value() - x;
    const int down = canvas.view.verticalScrollBar()->value() - y;
    QVERIFY(right < 0);
    QVERIFY(angle == QPoint(120, 0) ? down == 0 : down > 0);
    if (!pixels.isNull()) {
        QCOMPARE(QPoint(right, down), -pixels);
    }
    canvas.VerifyAgreement({50, 50});
}

void tst_ViewMoves::PinchesAroundTheFingers()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    view.Moves().Show({{500, 500}, 2});
    QSignalSpy zoomed(&view, &MainView::ZoomChanged);
    const QPointF place = view.PlaceAt({200, 60});
    for (const double value : {0.1, 0.25, -0.2, 0.5}) {
        const auto before = static_cast<double>(view.Zoom());
        Pinch(view, {200, 60}, value);
        QVERIFY(qAbs(static_cast<double>(view.Zoom()) - before * (1 + value)) < 1e-3);
        canvas.VerifyPlace({200, 60}, place);
        canvas.VerifyAgreement();
    }
    QCOMPARE(zoomed.size(), 4);
    Pinch(view, {200, 60}, 45, Qt::RotateNativeGesture);
    QCOMPARE(zoomed.size(), 4);
    // The wheel goes on in its steps.
    Wheel(view, MousePixel, 120, Qt::ControlModifier);
    QCOMPARE(view.Zoom() * 4, std::round(view.Zoom() * 4));
}

void tst_ViewMoves::PinchStaysInItsRange()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    Pinch(view, {50, 50}, 1000);
    QCOMPARE(view.Zoom(), 12.5F);
    Pinch(view, {50, 50}, -0.999);
    QCOMPARE(view.Zoom(), 0.25F);
    for (const double value : {-1.0, -3.0, std::nan(""), HUGE_VAL}) {
        Pinch(view, {50, 50}, value);
        QCOMPARE(view.Zoom(), 0.25F);
    }
    view.Moves().Show({{500, 500}, 0.0625F});
    Pinch(view, {50, 50}, -0.5);
    QCOMPARE(view.Zoom(), 0.0625F);
    Pinch(view, {50, 50}, 1);
    QCOMPARE(view.Zoom(), 0.125F);
}

void tst_ViewMoves::PinchesOnATouchScreen()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    view.Moves().Show({{500, 500}, 2});
    const QPoint middle(180, 150);
    const QPointF place = view.PlaceAt(middle);
    PinchByTouch(view, middle);
    QVERIFY(view.Zoom() > 3.0F);
    canvas.VerifyPlace(middle, place);
}

/// Qt makes the first finger a press of the left button.
void tst_ViewMoves::FirstFingerOfAPinchPaintsNothing()
{
    MovedCanvas canvas;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    PinchByTouch(canvas.view, {180, 150});
    QVERIFY(canvas.view.Zoom() > 1.0F);
    QVERIFY(!canvas.Scene().Tool()->IsBusy());
    QCOMPARE(Area(*layer), 0);
    QCOMPARE(canvas.document.History().count(), 0);
}

/// A stroke under way neither ends nor paints where the map moves, and goes on from the mouse.
void tst_ViewMoves::StrokesGoOnThroughEveryMove()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    canvas.dock.SetSize(4);
    view.Moves().Show({{500, 500}, 2});
    canvas.Mouse(QEvent::MouseButtonPress, MousePixel, Qt::LeftButton, Qt::LeftButton);
    const int area = Area(*layer);
    QVERIFY(area > 0);
    view.Moves().Zoom(true);
    view.Moves().Show({{300, 600}, 1});
    Pinch(view, MousePixel, 0.5);
    view.Moves().Show({{600, 300}, 1});
    TurnBoth(view, {5, 9}, {10, 18}, Qt::ScrollUpdate);
    QCOMPARE(Area(*layer), area);
    QVERIFY(canvas.Scene().Tool()->IsBusy());
    canvas.MoveTo(MousePixel + QPoint(10, 0), Qt::LeftButton);
    const QPointF end = view.mapToScene(MousePixel + QPoint(10, 0));
    QVERIFY(IsSet(*layer, int(end.x()) - 1, int(end.y())));
    // A short piece, not a line from where the stroke began.
    QVERIFY(Area(*layer) <= area + 4 * 16);
    canvas.Mouse(QEvent::MouseButtonRelease, MousePixel, Qt::LeftButton, Qt::NoButton);
    QCOMPARE(canvas.document.History().count(), 1);
}

void tst_ViewMoves::MarksAPlaceForAWhile()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    const QImage before = view.viewport()->grab().toImage();
    view.Mark().Show({500, 500});
    const QImage marked = view.viewport()->grab().toImage();
    const QPoint middle = canvas.At({500, 500});
    const QRect around(middle - QPoint(30, 30), QSize(61, 61));
    QVERIFY(marked.copy(around) != before.copy(around));
    QCOMPARE(marked.copy(0, 0, middle.x() - 30, before.height()),
             before.copy(0, 0, middle.x() - 30, before.height()));
    // Of one size at every zoom, and where the place is.
    const QImage ring = marked.copy(around);
    view.Moves().Show({{450, 520}, 3});
    const QRect later(canvas.At({500, 500}) - QPoint(30, 30), QSize(61, 61));
    QCOMPARE(view.viewport()->grab().toImage().copy(later), ring);
    // Clicks go through it.
    QVERIFY(!canvas.Scene().itemAt({500, 500}, QTransform()) ||
            canvas.Scene().itemAt({500, 500}, QTransform())->zValue() < 1);
    view.Moves().Show({{500, 500}, 1});
    QTRY_VERIFY(!view.Mark().IsShown());
    QCOMPARE(view.viewport()->grab().toImage(), before);
}

QTEST_MAIN(tst_ViewMoves)
#include "tst_ViewMoves.moc"
