#pragma once

#include "layers/raster/DiscShape.h"

#include <QImage>

namespace raster {

/// Dilates a binary mask by a disc whose radius is more than 15. The number of passes does not grow
/// with the radius. result has the mask's size and format. flip is XORed to the pixels that are
/// read and written: 0 dilates, 255 erodes. Needs scratch memory for a few rows, and throws
/// std::bad_alloc without it. Above radius 254 it also uses half a byte a pixel, at most 32 MiB,
/// for the edges of rows; without that memory it still works. Returns false, with an unusable
/// result, if the mask holds other indices than 0 and 255.
bool DilateBySweeps(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result);

} // namespace raster
