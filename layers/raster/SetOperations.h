#pragma once

#include <QImage>

namespace raster {

/// Inverts every byte of the pixel buffer. A null image stays null.
QImage Complement(const QImage& mask);

/// The union: a | b for each byte. This and the next two functions return an image with a's colour
/// table, or a null image unless a and b have the same geometry.
QImage Union(const QImage& a, const QImage& b);
/// The intersection: a & b.
QImage Intersection(const QImage& a, const QImage& b);
/// The difference: a & ~b.
QImage Difference(const QImage& a, const QImage& b);

} // namespace raster
