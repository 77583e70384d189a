#pragma once

#include <QImage>

namespace raster {

/// Writes into result the largest index among each pixel of mask and its four neighbours, as far as
/// they lie inside the picture. Both are Format_Indexed8 of one size. flip inverts what is read and
/// written: 0 dilates, 255 erodes.
void DilateByCross(const QImage& mask, uchar flip, QImage& result);

} // namespace raster
