#pragma once

#include "layers/raster/DiscShape.h"

#include <QImage>

namespace raster {

/// Dilates a binary mask by a disc, for a cost that does not grow with the radius. result has the
/// mask's size and format. flip inverts what is read and written: 0 dilates, 255 erodes. The radius
/// is more than 15. Takes scratch memory for a few rows, without which it throws std::bad_alloc,
/// and above radius 254 for the edges of rows, half a byte a pixel but no more than 32 MiB, without
/// which it goes on. False, and result is of no use, for a mask that turns out to hold other
/// indices than 0 and 255.
bool DilateBySweeps(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result);

} // namespace raster
