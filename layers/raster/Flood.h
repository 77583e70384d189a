#pragma once

#include "layers/raster/Region.h"

#include <QImage>
#include <QPoint>
#include <QVector>

namespace raster {

/// What a fill covers that begins at the seed: the pixels that equal the seed's in every mask and
/// that the seed is connected with through such pixels, side by side or one above the other. The
/// masks are Format_Indexed8 and of one size. Empty without masks, when one is no such mask, and
/// when the seed lies outside. Takes two bits a pixel of the rows that it looks at, beside the
/// region.
Region AreaAt(const QVector<QImage>& masks, QPoint seed);

/// All pixels that equal the seed's, connected or not. The mask is Format_Indexed8; empty for other
/// formats and when the seed lies outside.
Region EqualPixels(const QImage& mask, QPoint seed);

} // namespace raster
