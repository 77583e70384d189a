#include "canvas/ViewMoves.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/ZoomSteps.h"
#include "canvas/tools/MapTool.h"

#include <QGestureEvent>
#include <QLineF>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>

#include <cmath>

ViewMoves::ViewMoves(MainView& view)
    : m_view(view)
{
    // Touch screens; touch pads send native gestures.
    view.viewport()->grabGesture(Qt::PinchGesture);
}

QPointF ViewMoves::Middle() const
{
    return QRectF(m_view.viewport()->rect()).center();
}

void ViewMoves::Zoom(bool isIn)
{
    const QPointF pixel = m_view.MousePixel().value_or(Middle());
    ZoomAround(ZoomSteps::Next(m_view.Zoom(), isIn), PlaceUnder(pixel), pixel);
}

/// Scroll bars count whole pixels. Without the place that the zoom before kept, many zooms in a row
/// would add up to a drift.
QPointF ViewMoves::PlaceUnder(QPointF pixel) const
{
    const QPointF place = m_view.PlaceAt(pixel);
    const qreal offset = QLineF(place, m_keptPlace).length() * static_cast<qreal>(m_view.Zoom());
    return pixel == m_keptPixel && offset < 1 ? m_keptPlace : place;
}

void ViewMoves::ZoomAround(float zoom, QPointF place, QPointF pixel)
{
    m_keptPlace = place;
    m_keptPixel = pixel;
    m_view.ShowAt(zoom, place, pixel);
}

void ViewMoves::Turn(QPointF pixel, bool isIn)
{
    const float zoom = ZoomSteps::NextOfWheel(m_view.Zoom(), isIn);
    if (m_keepsPlace) {
        ZoomAround(zoom, PlaceUnder(pixel), pixel);
    } else {
        m_view.CenterAt(zoom, m_view.mapToScene(pixel.toPoint()));
    }
}

ViewPlace ViewMoves::Place() const
{
    return {m_view.PlaceAt(Middle()), m_view.Zoom()};
}

void ViewMoves::Show(const ViewPlace& place)
{
    m_view.ShowAt(place.zoom, place.center, Middle());
}

ViewPlace ViewMoves::PlaceToFit(const QRectF& area) const
{
    return {area.center(), ZoomSteps::ToFit(area.size(), m_view.maximumViewportSize())};
}

bool ViewMoves::TakeEvent(QEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return Press(static_cast<QMouseEvent&>(event));
    case QEvent::MouseMove:
        Drag(static_cast<QMouseEvent&>(event));
        return false;
    case QEvent::MouseButtonRelease:
        if (static_cast<QMouseEvent&>(event).button() == Qt::MiddleButton) {
            EndDrag();
            return true;
        }
        return false;
    case QEvent::NativeGesture:
        return Pinch(static_cast<QNativeGestureEvent&>(event));
    case QEvent::Gesture:
        if (QGesture* pinch = static_cast<QGestureEvent&>(event).gesture(Qt::PinchGesture)) {
            Pinch(*static_cast<QPinchGesture*>(pinch));
            return true;
        }
        return false;
    default:
        return false;
    }
}

bool ViewMoves::Press(const QMouseEvent& event)
{
    EndDrag();
    m_isByFinger = event.source() != Qt::MouseEventNotSynthesized;
    if (event.button() != Qt::MiddleButton) {
        return false;
    }
    const MapTool* tool = m_view.Scene()->Tool();
    const bool isHandFree = event.buttons() == Qt::MiddleButton && !(tool && tool->IsBusy());
    // Space drags with the left button.
    if (isHandFree && m_view.isEnabled() && m_view.dragMode() == QGraphicsView::NoDrag) {
        QWidget& viewport = *m_view.viewport();
        m_held = m_view.PlaceAt(event.localPos());
        if (viewport.testAttribute(Qt::WA_SetCursor)) {
            m_cursorBefore = viewport.cursor();
        }
        viewport.setCursor(Qt::ClosedHandCursor);
    }
    return true;
}

void ViewMoves::Drag(const QMouseEvent& event)
{
    if (!m_held) {
        return;
    }
    if ((event.buttons() & Qt::MiddleButton) != 0) {
        m_view.ShowAt(m_view.Zoom(), *m_held, event.localPos());
    } else {
        EndDrag();
    }
}

void ViewMoves::EndDrag()
{
    if (!m_held) {
        return;
    }
    m_held.reset();
    if (m_cursorBefore) {
        m_view.viewport()->setCursor(*m_cursorBefore);
        m_cursorBefore.reset();
    } else {
        m_view.viewport()->unsetCursor();
    }
}

bool ViewMoves::Pinch(const QNativeGestureEvent& event)
{
    if (event.gestureType() != Qt::ZoomNativeGesture) {
        return false;
    }
    ZoomBy(1 + event.value(), event.localPos(), event.localPos());
    return true;
}

void ViewMoves::Pinch(const QPinchGesture& pinch)
{
    const auto toPixel = [this](QPointF onScreen) {
        return onScreen - m_view.viewport()->mapToGlobal(QPoint());
    };
    // A gesture that begins still has the last position of the one before.
    const bool isFirst = pinch.state() == Qt::GestureStarted;
    const QPointF from = isFirst ? pinch.centerPoint() : pinch.lastCenterPoint();
    if (isFirst && m_isByFinger) {
        m_view.Scene()->CancelPress();
    }
    ZoomBy(pinch.scaleFactor(), toPixel(from), toPixel(pinch.centerPoint()));
}

/// The place between the fingers moves with them.
void ViewMoves::ZoomBy(qreal factor, QPointF from, QPointF to)
{
    if (!m_view.isEnabled() || !std::isfinite(factor) || factor <= 0) {
        return;
    }
    const float before = m_view.Zoom();
    const float zoom = qBound(qMin(before, ZoomSteps::LowestOfWheel),
                              before * static_cast<float>(factor), ZoomSteps::Highest);
    ZoomAround(zoom, PlaceUnder(from), to);
}
