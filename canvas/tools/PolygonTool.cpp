#include "canvas/tools/PolygonTool.h"

#include "app/Log.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/tools/PaintTools.h"
#include "layers/raster/Shapes.h"

#include <QApplication>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>

#include <utility>

void PolygonTool::Press(QGraphicsSceneMouseEvent& event)
{
    const bool isFirst = !IsUnderWay();
    if (!Begin(event)) {
        return;
    }
    if (isFirst) {
        m_corners.clear();
    }
    m_cornersBefore = m_corners.size();
    AddCorner(PositionOf(event));
}

void PolygonTool::DoublePress(QGraphicsSceneMouseEvent& event)
{
    if (IsLasso() || !IsUnderWay()) {
        Press(event);
    } else if (Begin(event)) {
        // The first press of the two placed a corner, unless it went elsewhere.
        if (IsAway(PositionOf(event))) {
            AddCorner(PositionOf(event));
        }
        Close();
    }
}

void PolygonTool::Move(QGraphicsSceneMouseEvent& event)
{
    const QPointF position = PositionOf(event);
    Parts().scene.SetMousePosition(position);
    // While the map moves the mouse stands still.
    if (IsLasso() && IsBusy() && !Parts().view.IsMapMoving()) {
        AddCorner(position);
    } else if (IsUnderWay()) {
        m_mouse = position;
        ShowOutline();
    }
    MapTool::Move(event);
}

void PolygonTool::Release(QGraphicsSceneMouseEvent& event)
{
    MapTool::Release(event);
    if (!IsRelease(event)) {
        return;
    }
    if (IsLasso() || IsAway(PositionOf(event))) {
        AddCorner(PositionOf(event));
    }
    if (IsLasso()) {
        Close();
    } else {
        SetHeld(false);
    }
}

/// Whether the place is another one than that of the last corner. Hands are not quite still during
/// a click.
bool PolygonTool::IsAway(QPointF place) const
{
    const MainView& view = Parts().view;
    const QPoint way = view.mapFromScene(m_corners.last()) - view.mapFromScene(place);
    return way.manhattanLength() >= QApplication::startDragDistance();
}

void PolygonTool::AddCorner(QPointF corner)
{
    m_mouse = corner;
    if (m_corners.isEmpty() || m_corners.last() != corner) {
        m_corners.append(corner);
    }
    ShowOutline();
}

void PolygonTool::RemoveCorner()
{
    m_corners.removeLast();
    if (m_corners.isEmpty()) {
        Cancel();
    } else {
        ShowOutline();
    }
}

void PolygonTool::Close()
{
    const QPolygonF corners = std::exchange(m_corners, {});
    Complete(raster::PolygonRegion(corners, LayerSize()));
}

/// Like a press, the key is refused while the layer may not be painted, and the corners stay.
void PolygonTool::CloseByKey()
{
    const QString reason = Parts().scene.GetPaintTools()->WhyNot();
    if (reason.isEmpty()) {
        Close();
    } else {
        LogInfo(reason);
    }
}

void PolygonTool::Finish()
{
    if (IsLasso()) {
        Cancel();
    } else {
        SetHeld(false);
    }
}

void PolygonTool::CancelPress()
{
    if (IsLasso()) {
        Cancel();
    } else if (IsBusy()) {
        SetHeld(false);
        if (m_corners.size() > m_cornersBefore) {
            RemoveCorner();
        }
    }
}

bool PolygonTool::PressKey(const QKeyEvent& event)
{
    if (!IsUnderWay()) {
        return false;
    }
    switch (event.key()) {
    case Qt::Key_Backspace:
        RemoveCorner();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        CloseByKey();
        return true;
    default:
        return ShapeTool::PressKey(event);
    }
}

void PolygonTool::ShowOutline() const
{
    QPainterPath outline(m_corners.first());
    for (int i = 1; i < m_corners.size(); ++i) {
        outline.lineTo(m_corners.at(i));
    }
    outline.lineTo(m_mouse);
    outline.lineTo(m_corners.first());
    Show(outline, m_mouse, SizeText(outline.controlPointRect().size()));
}
