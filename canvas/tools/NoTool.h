#pragma once

#include "canvas/tools/MapTool.h"

/// For the modes in which presses do nothing.
class NoTool : public MapTool
{
public:
    using MapTool::MapTool;

    void Press(QGraphicsSceneMouseEvent& /*event*/) override {}
};
