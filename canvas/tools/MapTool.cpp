#include "canvas/tools/MapTool.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"

#include <QGraphicsSceneMouseEvent>

#include <cmath>

void MapTool::Move(QGraphicsSceneMouseEvent& event)
{
    m_parts.scene.StandardMove(event);
}

void MapTool::Release(QGraphicsSceneMouseEvent& event)
{
    m_parts.scene.StandardRelease(event);
}

QPointF MapTool::PositionOf(const QGraphicsSceneMouseEvent& event) const
{
    return event.scenePos() + m_parts.view.MouseFraction();
}

QPoint MapTool::PixelOf(const QGraphicsSceneMouseEvent& event) const
{
    const QPointF position = PositionOf(event);
    return {int(std::floor(position.x())), int(std::floor(position.y()))};
}
