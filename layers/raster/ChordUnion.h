#pragma once

#include "layers/raster/DiscShape.h"

#include <QImage>

namespace raster {

/// Dilates a binary mask by a disc, for a cost that grows with the radius but little with the
/// picture: a byte holds eight pixels. result has the mask's size and format. flip inverts what is
/// read and written: 0 dilates, 255 erodes. Takes scratch memory of a quarter of a byte a pixel for
/// each row and each pixel of the radius.
void DilateByChords(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result);

} // namespace raster
