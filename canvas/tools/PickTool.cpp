#include "canvas/tools/PickTool.h"

#include "canvas/MainScene.h"
#include "canvas/tools/PaintTools.h"
#include "document/Document.h"
#include "layers/raster/Mask.h"

#include <QGraphicsSceneMouseEvent>

#include <algorithm>

void PickTool::Press(QGraphicsSceneMouseEvent& event)
{
    if (event.button() != Qt::LeftButton) {
        return;
    }
    const QPoint pixel = PixelOf(event);
    // The first in the list is on top.
    const QVector<Layer*> layers = Parts().document.Layers().Layers();
    const auto found = std::find_if(layers.begin(), layers.end(), [pixel](const Layer* layer) {
        const QImage& mask = layer->Image();
        return layer->IsVisible() && mask.valid(pixel) &&
               mask.constScanLine(pixel.y())[pixel.x()] != raster::MaskClear;
    });
    if (found != layers.end()) {
        Parts().scene.GetPaintTools()->PickLayer(**found);
    }
}
