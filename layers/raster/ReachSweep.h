#pragma once

#include "layers/raster/StructuringElement.h"

#include <QImage>

namespace raster {

/// Dilates a binary mask by a disc, for a cost that does not grow with the radius. result has the
/// mask's size and format. flip inverts what is read and written: 0 dilates, 255 erodes. The radius
/// is more than 15. Takes scratch memory for a few rows and, above radius 254, up to half a byte a
/// pixel and 32 MiB more; it goes on without the latter. std::bad_alloc when there is no memory for
/// the former.
void DilateBySweeps(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result);

} // namespace raster
