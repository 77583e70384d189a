#pragma once

#include "territories/TerritoryTypeList.h"

#include <QString>

/// Also the name of the layer's bitmap.
QString LayerName(int i);

/// Sets the flag types of the project's settings: "usage 0" ... and "value 0" ...
void AddFlagTypes(int usageCount, int valueCount);

/// Writes a project of the size and the flag types that the settings have: the document and the
/// bitmaps of its layers, which are visible, of natural shapes, and have one type of each kind in
/// turn (the first bit when there are none). False when the document cannot be written.
bool MakeProject(const QString& path, int layerCount,
                 const TerritoryTypeList& types = TerritoryTypeList());
