#pragma once

#include "layers/raster/Region.h"

#include <QString>

#include <QtGlobal>

class Layer;
struct MapToolParts;

/// Sets the pixels of the layer, or erases them, where the options of the Paint mode let them
/// change: one step of the history. text: that of the step, with %1 for the layer's name. Returns
/// how many pixels it left with the wanted value. May log, which processes events.
qint64 PaintRegion(const MapToolParts& parts, Layer& layer, const QString& text,
                   raster::Region pixels, bool isErasing);
