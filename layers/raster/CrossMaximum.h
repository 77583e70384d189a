#pragma once

#include <QImage>

namespace raster {

/// Writes into result the largest index among each pixel of mask and those of its four neighbours
/// that lie inside the picture. Both are Format_Indexed8 and of the same size. flip is XORed to the
/// pixels that are read and written: 0 dilates, 255 erodes.
void DilateByCross(const QImage& mask, uchar flip, QImage& result);

} // namespace raster
