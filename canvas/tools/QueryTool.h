#pragma once

#include "canvas/tools/MapTool.h"

/// A left click on a zone selects it and makes its territory the current one.
class QueryTool : public MapTool
{
public:
    using MapTool::MapTool;

    void Press(QGraphicsSceneMouseEvent& event) override;
};
