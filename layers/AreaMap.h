#pragma once

#include "layers/raster/ComposeFields.h"

#include <QString>
#include <QVector>

class LayerList;
class QIODevice;

/// The binary area map: the layers' flags, packed as bit fields a pixel. See LayerList::SaveMap and
/// LayerList::ImportMap, which call these functions.
bool SaveAreaMap(const LayerList& layers, const QString& path);
bool ImportAreaMap(LayerList& layers, QIODevice& device);

/// The masks and flags of all layers in row order, of which the map is composed. Do not keep them:
/// a mask that is shared cannot be painted in place.
QVector<raster::FlaggedMask> FlaggedMasks(const LayerList& layers);
