#pragma once

#include "layers/raster/DiscShape.h"

#include <QImage>

namespace raster {

/// Dilates a binary mask by a disc. The cost grows with the radius, but little with the picture,
/// because a byte holds eight pixels. result has the mask's size and format. flip is XORed to the
/// pixels that are read and written: 0 dilates, 255 erodes. The scratch memory is a quarter of a
/// byte a pixel for each row and each pixel of the radius.
void DilateByChords(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result);

} // namespace raster
