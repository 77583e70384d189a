#pragma once

#include "canvas/tools/MapTool.h"
#include "layers/raster/Region.h"

#include <QPoint>

class Layer;

/// A left click fills the area under the mouse in the current layer, a right click erases it. The
/// options say what bounds it. Each is one step of the history.
class FillTool : public MapTool
{
public:
    using MapTool::MapTool;

    void Press(QGraphicsSceneMouseEvent& event) override;
    Qt::CursorShape Cursor() const override { return Qt::CrossCursor; }

private:
    raster::Region AreaAt(const Layer& layer, QPoint pixel) const;
};
