#pragma once

#include "layers/raster/DiscShape.h"

#include <QImage>

namespace raster {

/// Dilates a mask of any indices by a disc. The cost grows with the radius. result has the mask's
/// size and format. flip is XORed to the pixels that are read and written: 0 dilates, 255 erodes.
/// The scratch memory is at most six rows.
void DilateByRunningMaxima(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result);

} // namespace raster
