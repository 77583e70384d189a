#pragma once

#include "layers/raster/StructuringElement.h"

#include <QImage>

namespace raster {

/// Dilates a binary mask by a disc, for a cost that does not grow with the radius. result has the
/// mask's size and format. flip inverts what is read and written: 0 dilates, 255 erodes. Takes
/// scratch memory for a few rows, and up to half a byte a pixel above radius 254.
void DilateBySweeps(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result);

} // namespace raster
