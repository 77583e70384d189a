#include "tests/support/MovedCanvas.h"

#include "canvas/WidgetRuler.h"
#include "tests/support/CanvasActions.h"

#include <QNativeGestureEvent>
#include <QTest>
#include <QWheelEvent>

#include <cmath>

MovedCanvas::MovedCanvas()
    : CanvasFixture({1000, 1000})
    , moved(&view, &MainView::MouseMoved)
{
    view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QCoreApplication::processEvents();
    view.centerOn(500, 500);
    MoveTo(MousePixel);
}

void MovedCanvas::MoveTo(QPoint pixel, Qt::MouseButtons buttons)
{
    Mouse(QEvent::MouseMove, pixel, Qt::NoButton, buttons);
}

void MovedCanvas::Pinch(QPointF pixel, double value, Qt::NativeGestureType gesture)
{
    QNativeGestureEvent event(gesture, nullptr, pixel, pixel, pixel, value, 0, 0);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void MovedCanvas::TurnBoth(QPoint pixels, QPoint angle, Qt::ScrollPhase phase)
{
    const QPoint position(50, 50);
    QWheelEvent event(position, view.viewport()->mapToGlobal(position), pixels, angle, Qt::NoButton,
                      Qt::NoModifier, phase, false);
    QCoreApplication::sendEvent(view.viewport(), &event);
}

void MovedCanvas::VerifyAgreement(QPoint mouse)
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

void MovedCanvas::VerifyLabel(QPointF place)
{
    const auto zoom = static_cast<double>(view.Zoom());
    QVERIFY(!moved.isEmpty());
    const double x = moved.last().at(0).toInt() / zoom;
    const double z = moved.last().at(1).toInt() / zoom;
    // In view pixels. At small zooms one is many metres.
    const double allowed = zoom < 0.25 ? 0.99 : 2;
    QVERIFY2(std::abs(x - place.x()) <= allowed / zoom, qPrintable(QString::number(x)));
    QVERIFY2(std::abs(z - (view.sceneRect().height() - place.y())) <= allowed / zoom,
             qPrintable(QString::number(z)));
}

void MovedCanvas::VerifyPlace(QPoint pixel, QPointF place) const
{
    const QPointF now = view.PlaceAt(pixel);
    QVERIFY2(QLineF(now, place).length() * static_cast<double>(view.Zoom()) <= 1,
             qPrintable(QStringLiteral("%1 %2").arg(now.x()).arg(now.y())));
}
