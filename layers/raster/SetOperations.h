#pragma once

#include <QImage>

namespace raster {

/// Every byte of the pixel buffer inverted. Null stays null.
QImage Complement(const QImage& mask);

/// The pixels set in a, in b or in both, byte by byte a | b. This and the next two give an image
/// with a's colour table, and a null image unless both have one geometry.
QImage Union(const QImage& a, const QImage& b);
/// a & b.
QImage Intersection(const QImage& a, const QImage& b);
/// a & ~b.
QImage Difference(const QImage& a, const QImage& b);

} // namespace raster
