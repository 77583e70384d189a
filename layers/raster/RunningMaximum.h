#pragma once

#include "layers/raster/DiscShape.h"

#include <QImage>

namespace raster {

/// Dilates a mask of any indices by a disc, for a cost that grows with the radius. result has the
/// mask's size and format. flip inverts what is read and written: 0 dilates, 255 erodes. Takes
/// scratch memory for six rows at most.
void DilateByRunningMaxima(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result);

} // namespace raster
