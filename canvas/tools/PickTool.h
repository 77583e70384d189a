#pragma once

#include "canvas/tools/MapTool.h"

/// A left click makes the topmost ticked layer that is set under the mouse the current one.
class PickTool : public MapTool
{
public:
    using MapTool::MapTool;

    void Press(QGraphicsSceneMouseEvent& event) override;
    Qt::CursorShape Cursor() const override { return Qt::PointingHandCursor; }
};
