#pragma once

#include <QImage>

namespace raster {

/// Each takes a Format_Indexed8 mask and gives one with the same colour table; any other format, a
/// null image and a lack of memory give a null image. A pixel's neighbours are those in its disc,
/// which DiscShape describes, that lie inside the picture: what lies outside is neither set nor
/// clear. The radius, in pixels, may be of any size, and beyond the picture's diagonal it changes
/// nothing more; radii below 1 and one that is no number give the mask itself. Any indices are
/// served, but masks of 0 and 255 alone are many times as fast. Scratch memory is that of a few
/// dozen rows and half a byte a pixel, but no more than 32 MiB.

/// The largest index among the neighbours.
QImage Dilate(const QImage& mask, float discRadius);
/// The smallest index among the neighbours.
QImage Erode(const QImage& mask, float discRadius);
/// Dilates the erosion: what is smaller than the disc vanishes.
QImage Open(const QImage& mask, float discRadius);
/// Erodes the dilation: gaps that are smaller than the disc are filled.
QImage Close(const QImage& mask, float discRadius);

} // namespace raster
