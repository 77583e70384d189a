#pragma once

#include "canvas/tools/MapTool.h"

/// A left click places a zone into the current territory, with the values of the zone shown last.
class InsertTool : public MapTool
{
public:
    using MapTool::MapTool;

    void Press(QGraphicsSceneMouseEvent& event) override;
};
