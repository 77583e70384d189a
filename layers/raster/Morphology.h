#pragma once

#include <QImage>
#include <QPoint>
#include <QVector>

namespace raster {

/// Each takes a Format_Indexed8 mask and gives one with the same colour table; any other format, a
/// null image and a lack of memory give a null image. A pixel's neighbours are those at the offsets
/// from it that lie inside the picture: what lies outside is neither set nor clear. Any indices are
/// served, but masks of 0 and 255 alone are many times as fast. Scratch memory is that of a few
/// dozen rows and half a byte a pixel, but no more than 32 MiB. A disc is recognised among offsets;
/// all other shapes take time in proportion to the number of their offsets.

/// The largest index among the neighbours; 0 where there are none.
QImage Dilate(const QImage& mask, const QVector<QPoint>& offsets);
/// The smallest index among the neighbours; 255 where there are none.
QImage Erode(const QImage& mask, const QVector<QPoint>& offsets);
/// Dilates the erosion: what is smaller than the shape vanishes.
QImage Open(const QImage& mask, const QVector<QPoint>& offsets);
/// Erodes the dilation: gaps that are smaller than the shape are filled.
QImage Close(const QImage& mask, const QVector<QPoint>& offsets);

/// The same with the offsets of Disc(discRadius), which are never listed: the radius, in pixels,
/// may be of any size, and beyond the picture's diagonal it changes nothing more. The mask itself
/// is returned for radii below 1 and for one that is no number.
QImage Dilate(const QImage& mask, float discRadius);
QImage Erode(const QImage& mask, float discRadius);
QImage Open(const QImage& mask, float discRadius);
QImage Close(const QImage& mask, float discRadius);

} // namespace raster
