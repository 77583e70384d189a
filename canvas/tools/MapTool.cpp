#include "canvas/tools/MapTool.h"

#include "canvas/MainScene.h"

void MapTool::Move(QGraphicsSceneMouseEvent& event)
{
    m_parts.scene.StandardMove(event);
}

void MapTool::Release(QGraphicsSceneMouseEvent& event)
{
    m_parts.scene.StandardRelease(event);
}
