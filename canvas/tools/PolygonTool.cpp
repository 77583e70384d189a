#include "canvas/tools/PolygonTool.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "layers/raster/Shapes.h"

#include <QApplication>
#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QLineF>

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
    AddCorner(PositionOf(event));
}

void PolygonTool::DoublePress(QGraphicsSceneMouseEvent& event)
{
    if (IsLasso() || !IsUnderWay()) {
        Press(event);
    } else if (Begin(event)) {
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
    if (IsRelease(event)) {
        m_mouse = PositionOf(event);
        if (IsLasso() || IsDrag()) {
            AddCorner(m_mouse);
        }
        if (IsLasso()) {
            Close();
        } else {
            SetHeld(false);
        }
    }
    MapTool::Release(event);
}

/// Whether the mouse went away from the corner that was placed last. Hands are not quite still
/// during a click.
bool PolygonTool::IsDrag() const
{
    const double way = QLineF(m_corners.last(), m_mouse).length();
    return way * static_cast<double>(Parts().view.Zoom()) >= QApplication::startDragDistance();
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

void PolygonTool::Finish()
{
    if (IsLasso()) {
        Cancel();
    } else {
        SetHeld(false);
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
        Close();
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
