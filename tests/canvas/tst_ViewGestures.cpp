#include "canvas/ViewMoves.h"

#include "canvas/tools/PaintTools.h"
#include "layers/raster/Shapes.h"
#include "tests/support/CanvasActions.h"
#include "tests/support/MovedCanvas.h"

#include <QRubberBand>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <functional>

Q_DECLARE_METATYPE(std::function<void(MovedCanvas&)>)

namespace {

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

} // namespace

/// Moving the map with the middle button, two fingers and pinches.
class tst_ViewGestures : public QObject
{
    Q_OBJECT

private slots:
    void PansInEveryMode_data();
    void PansInEveryMode();
    void PansFromAQuickSecondPress();
    void EndsPanning_data();
    void EndsPanning();
    void SpaceTakesOverFromTheMiddleButton();
    void LeavesAStrokeAlone();
    void LeavesADragOfZonesAlone();
    void LeavesABandAlone();
    void ScrollsBothWays_data();
    void ScrollsBothWays();
    void PinchesAroundTheFingers();
    void PinchStaysInItsRange();
    void PinchesOnATouchScreen();
    void FirstFingerOfAPinchPaintsNothing();
    void PinchLeavesAPolygonAlone();
};

void tst_ViewGestures::PansInEveryMode_data()
{
    QTest::addColumn<int>("mode");
    for (const SceneMode mode : Modes) {
        QTest::addRow("%d", int(mode)) << int(mode);
    }
}

void tst_ViewGestures::PansInEveryMode()
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

void tst_ViewGestures::PansFromAQuickSecondPress()
{
    MovedCanvas canvas;
    const QPointF place = canvas.view.PlaceAt(MovedCanvas::MousePixel);
    canvas.Mouse(QEvent::MouseButtonDblClick, MovedCanvas::MousePixel, Qt::MiddleButton,
                 Qt::MiddleButton);
    canvas.MoveTo(MovedCanvas::MousePixel + QPoint(20, 30), Qt::MiddleButton);
    canvas.VerifyPlace(MovedCanvas::MousePixel + QPoint(20, 30), place);
}

void tst_ViewGestures::EndsPanning_data()
{
    using Move = std::function<void(MovedCanvas&)>;
    QTest::addColumn<Move>("move");
    QTest::newRow("release that was lost")
        << Move([](MovedCanvas& canvas) { canvas.MoveTo(MovedCanvas::MousePixel); });
    QTest::newRow("focus that was lost") << Move([](MovedCanvas& canvas) {
        QFocusEvent event(QEvent::FocusOut);
        QCoreApplication::sendEvent(&canvas.view, &event);
    });
    QTest::newRow("another button") << Move([](MovedCanvas& canvas) {
        canvas.Mouse(QEvent::MouseButtonPress, MovedCanvas::MousePixel, Qt::LeftButton,
                     Qt::LeftButton | Qt::MiddleButton);
    });
}

void tst_ViewGestures::EndsPanning()
{
    QFETCH(std::function<void(MovedCanvas&)>, move);
    MovedCanvas canvas;
    canvas.Mouse(QEvent::MouseButtonPress, MovedCanvas::MousePixel, Qt::MiddleButton,
                 Qt::MiddleButton);
    move(canvas);
    const QTransform shown = canvas.view.viewportTransform();
    canvas.MoveTo(MovedCanvas::MousePixel + QPoint(20, 30), Qt::MiddleButton);
    QCOMPARE(canvas.view.viewportTransform(), shown);
}

void tst_ViewGestures::SpaceTakesOverFromTheMiddleButton()
{
    MovedCanvas canvas;
    QWidget* viewport = canvas.view.viewport();
    const Qt::CursorShape before = viewport->cursor().shape();
    canvas.Mouse(QEvent::MouseButtonPress, MovedCanvas::MousePixel, Qt::MiddleButton,
                 Qt::MiddleButton);
    QTest::keyPress(&canvas.view, Qt::Key_Space);
    QCOMPARE(viewport->cursor().shape(), Qt::OpenHandCursor);
    canvas.Mouse(QEvent::MouseButtonRelease, MovedCanvas::MousePixel, Qt::MiddleButton,
                 Qt::NoButton);
    QCOMPARE(viewport->cursor().shape(), Qt::OpenHandCursor);
    canvas.Mouse(QEvent::MouseButtonPress, MovedCanvas::MousePixel, Qt::MiddleButton,
                 Qt::MiddleButton);
    QTest::keyRelease(&canvas.view, Qt::Key_Space);
    canvas.Mouse(QEvent::MouseButtonRelease, MovedCanvas::MousePixel, Qt::MiddleButton,
                 Qt::NoButton);
    QCOMPARE(viewport->cursor().shape(), before);
}

void tst_ViewGestures::LeavesAStrokeAlone()
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
void tst_ViewGestures::LeavesADragOfZonesAlone()
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

void tst_ViewGestures::LeavesABandAlone()
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

void tst_ViewGestures::ScrollsBothWays_data()
{
    QTest::addColumn<QPoint>("pixels");
    QTest::addColumn<QPoint>("angle");
    QTest::addColumn<Qt::ScrollPhase>("phase");
    QTest::newRow("touch pad") << QPoint(13, -21) << QPoint(26, -42) << Qt::ScrollUpdate;
    QTest::newRow("touch pad without angles") << QPoint(13, -21) << QPoint() << Qt::NoScrollPhase;
    QTest::newRow("wheel with two axes") << QPoint() << QPoint(120, -120) << Qt::NoScrollPhase;
    QTest::newRow("to the side") << QPoint() << QPoint(120, 0) << Qt::NoScrollPhase;
}

void tst_ViewGestures::ScrollsBothWays()
{
    QFETCH(QPoint, pixels);
    QFETCH(QPoint, angle);
    QFETCH(Qt::ScrollPhase, phase);
    MovedCanvas canvas;
    const int x = canvas.view.horizontalScrollBar()->value();
    const int y = canvas.view.verticalScrollBar()->value();
    canvas.TurnBoth(pixels, angle, phase);
    const int right = canvas.view.horizontalScrollBar()->value() - x;
    const int down = canvas.view.verticalScrollBar()->value() - y;
    QVERIFY(right < 0);
    QVERIFY(angle == QPoint(120, 0) ? down == 0 : down > 0);
    if (!pixels.isNull()) {
        QCOMPARE(QPoint(right, down), -pixels);
    }
    canvas.VerifyAgreement({50, 50});
}

void tst_ViewGestures::PinchesAroundTheFingers()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    view.Moves().Show({{500, 500}, 2});
    QSignalSpy zoomed(&view, &MainView::ZoomChanged);
    const QPointF place = view.PlaceAt({200, 60});
    for (const double value : {0.1, 0.25, -0.2, 0.5}) {
        const auto before = static_cast<double>(view.Zoom());
        canvas.Pinch({200, 60}, value);
        QVERIFY(qAbs(static_cast<double>(view.Zoom()) - before * (1 + value)) < 1e-3);
        canvas.VerifyPlace({200, 60}, place);
        canvas.VerifyAgreement();
    }
    QCOMPARE(zoomed.size(), 4);
    canvas.Pinch({200, 60}, 45, Qt::RotateNativeGesture);
    QCOMPARE(zoomed.size(), 4);
    // The wheel goes on in its steps.
    Wheel(view, MovedCanvas::MousePixel, 120, Qt::ControlModifier);
    QCOMPARE(view.Zoom() * 4, std::round(view.Zoom() * 4));
}

void tst_ViewGestures::PinchStaysInItsRange()
{
    MovedCanvas canvas;
    MainView& view = canvas.view;
    canvas.Pinch({50, 50}, 1000);
    QCOMPARE(view.Zoom(), 12.5F);
    canvas.Pinch({50, 50}, -0.999);
    QCOMPARE(view.Zoom(), 0.25F);
    for (const double value : {-1.0, -3.0, std::nan(""), HUGE_VAL}) {
        canvas.Pinch({50, 50}, value);
        QCOMPARE(view.Zoom(), 0.25F);
    }
    view.Moves().Show({{500, 500}, 0.0625F});
    canvas.Pinch({50, 50}, -0.5);
    QCOMPARE(view.Zoom(), 0.0625F);
    canvas.Pinch({50, 50}, 1);
    QCOMPARE(view.Zoom(), 0.125F);
}

void tst_ViewGestures::PinchesOnATouchScreen()
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
void tst_ViewGestures::FirstFingerOfAPinchPaintsNothing()
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

void tst_ViewGestures::PinchLeavesAPolygonAlone()
{
    MovedCanvas canvas;
    Layer* layer = canvas.AddLayer(Qt::red);
    canvas.Edit(layer);
    canvas.Scene().GetPaintTools()->Choose(PaintToolKind::Polygon);
    const QVector<QPointF> corners{{430, 430}, {560, 450}, {450, 560}};
    QImage wanted = layer->Image().copy();
    raster::Fill(wanted, raster::PolygonRegion(corners, wanted.size()), raster::MaskSet);
    for (int i = 0; i < corners.size(); ++i) {
        // Also of the first corner only the finger's own one goes.
        PinchByTouch(canvas.view, {180, 150});
        QCOMPARE(canvas.Scene().Tool()->IsUnderWay(), i > 0);
        QVERIFY(!canvas.document.IsHandBusy());
        canvas.view.Moves().Show({{500, 500}, 1});
        canvas.Click(corners[i]);
    }
    PinchByTouch(canvas.view, {180, 150});
    QTest::keyClick(&canvas.view, Qt::Key_Return);
    QCOMPARE(layer->Image(), wanted);
    QCOMPARE(canvas.document.History().count(), 1);
}

QTEST_MAIN(tst_ViewGestures)
#include "tst_ViewGestures.moc"
