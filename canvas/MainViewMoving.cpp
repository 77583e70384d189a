// How the view moves the map, and what follows the map: the rulers, and what shows where the mouse
// is.

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/ViewMoves.h"
#include "canvas/WidgetRuler.h"
#include "canvas/ZoomSteps.h"

#include <QScopedValueRollback>
#include <QScrollBar>
#include <QWheelEvent>

#include <cmath>

namespace {

/// Rounds toward zero. The edges of very large maps lie beyond the range of int.
int WholePixels(float pixels)
{
    constexpr float lowest = -2147483648.0F;
    constexpr float highest = 2147483520.0F;
    return static_cast<int>(qBound(lowest, pixels, highest));
}

/// Moves what the bar shows by so many pixels.
void ScrollBy(QScrollBar& bar, qreal pixels)
{
    const qreal value = std::round(bar.value() + pixels);
    bar.setValue(static_cast<int>(qBound<qreal>(bar.minimum(), value, bar.maximum())));
}

} // namespace

void MainView::scrollContentsBy(int dx, int dy)
{
    const QScopedValueRollback<bool> moving(m_isMapMoving, true);
    QGraphicsView::scrollContentsBy(dx, dy);
}

/// The view pixel of the map's lower left corner.
QPointF MainView::MapCorner() const
{
    // At zooms that only the actions reach, a view pixel is many metres.
    if (m_zoom < ZoomSteps::LowestOfWheel) {
        return viewportTransform().map(QPointF(0, m_scene->height()));
    }
    const QScrollBar* horizontal = horizontalScrollBar();
    const QScrollBar* vertical = verticalScrollBar();
    const QPoint center = viewport()->rect().center();
    auto x = static_cast<float>(-qint64{horizontal->value()});
    // The sizes of an imported map may make the scroll range as large as an int allows.
    auto y =
        static_cast<float>(qint64{vertical->maximum()} - vertical->value() + vertical->pageStep());
    if (horizontal->minimum() == horizontal->maximum()) {
        x = static_cast<float>(center.x()) - static_cast<float>(m_scene->width()) * m_zoom * 0.5F;
    }
    if (vertical->minimum() == vertical->maximum()) {
        y = static_cast<float>(center.y()) + static_cast<float>(m_scene->height()) * m_zoom * 0.5F;
    }
    return {static_cast<qreal>(x), static_cast<qreal>(y)};
}

void MainView::UpdateRulers()
{
    const QPointF corner = MapCorner();
    m_horizontalRuler->SetOrigin(static_cast<float>(corner.x()));
    m_verticalRuler->SetOrigin(static_cast<float>(corner.y()));
    FollowMouse();
}

void MainView::TellRulers()
{
    m_horizontalRuler->SetZoom(m_zoom);
    m_verticalRuler->SetZoom(m_zoom);
    UpdateRulers();
}

/// Shows what is under the mouse, after the map has moved below it.
void MainView::FollowMouse()
{
    // Without a project to edit, the mouse has no place in the world.
    if (m_mouse && !m_isMapMoving && isEnabled()) {
        const QPoint onScreen = viewport()->mapToGlobal(*m_mouse);
        m_horizontalRuler->SetCursorPos(onScreen);
        m_verticalRuler->SetCursorPos(onScreen);
        TellMouse();
    }
}

void MainView::TellMouse()
{
    // Not the rulers' origins: they stay when Ctrl+0 makes a map larger that still fits the view.
    const QPointF corner = MapCorner();
    emit MouseMoved(WholePixels(static_cast<float>(m_mouse->x()) - static_cast<float>(corner.x())),
                    WholePixels(static_cast<float>(corner.y()) - static_cast<float>(m_mouse->y())));
}

QPointF MainView::PlaceAt(QPointF pixel) const
{
    return viewportTransform().inverted().map(pixel);
}

std::optional<QPointF> MainView::MousePixel() const
{
    return m_mouse && viewport()->rect().contains(*m_mouse) ? std::optional<QPointF>(*m_mouse)
                                                            : std::nullopt;
}

void MainView::ShowAt(float zoom, QPointF place, QPointF pixel)
{
    const bool isOther = zoom < m_zoom || zoom > m_zoom;
    const auto scale = static_cast<qreal>(zoom);
    m_zoom = zoom;
    {
        const QScopedValueRollback<bool> moving(m_isMapMoving, true);
        setTransform(QTransform::fromScale(scale, scale));
        const QPointF offset = viewportTransform().map(place) - pixel;
        ScrollBy(*horizontalScrollBar(), offset.x());
        ScrollBy(*verticalScrollBar(), offset.y());
    }
    TellRulers();
    if (isOther) {
        emit ZoomChanged(m_zoom);
    }
}

void MainView::CenterAt(float zoom, QPointF place)
{
    const auto scale = static_cast<qreal>(zoom);
    m_zoom = zoom;
    {
        const QScopedValueRollback<bool> moving(m_isMapMoving, true);
        setTransform(QTransform::fromScale(scale, scale));
        centerOn(place);
    }
    TellRulers();
    emit ZoomChanged(m_zoom);
}

void MainView::wheelEvent(QWheelEvent* event)
{
    m_mouse = event->position().toPoint();
    if (event->modifiers() == Qt::ControlModifier) {
        m_moves->Turn(event->position(), event->angleDelta().y() >= 0);
        event->accept();
    } else {
        Scroll(*event);
    }
}

/// Qt scrolls in one direction only, and in the steps of a wheel. Two fingers move the map both
/// ways at once.
void MainView::Scroll(QWheelEvent& event)
{
    const QPoint turn = event.angleDelta();
    const QPoint pixels = event.pixelDelta();
    // Some wheels report pixels too, but only touch pads have phases.
    const bool isByFingers = event.phase() != Qt::NoScrollPhase || turn.isNull();
    if (isByFingers && !pixels.isNull() && event.modifiers() == Qt::NoModifier) {
        ScrollBy(*horizontalScrollBar(), -pixels.x());
        ScrollBy(*verticalScrollBar(), -pixels.y());
        event.accept();
        return;
    }
    if (turn.x() == 0 || turn.y() == 0) {
        QGraphicsView::wheelEvent(&event);
        return;
    }
    for (const QPoint part : {QPoint(turn.x(), 0), QPoint(0, turn.y())}) {
        QWheelEvent single(event.position(), event.globalPosition(), {}, part, event.buttons(),
                           event.modifiers(), event.phase(), event.inverted(), event.source());
        QGraphicsView::wheelEvent(&single);
    }
    event.accept();
}

void MainView::ResetZoom()
{
    m_zoom = 1.0F;
    {
        const QScopedValueRollback<bool> moving(m_isMapMoving, true);
        resetTransform();
    }
    if (m_scene->Mode() == SceneMode::Paint) {
        m_scene->LoseMouse();
    }
    emit ZoomChanged(m_zoom);
    FollowMouse();
}
