#pragma once

#include <QString>

class LayerList;
class QIODevice;

/// The binary area map: the layers' flags, packed as bit fields a pixel. See LayerList::SaveMap and
/// LayerList::ImportMap, which call these functions.
bool SaveAreaMap(const LayerList& layers, const QString& path);
bool ImportAreaMap(LayerList& layers, QIODevice& device);
