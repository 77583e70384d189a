#pragma once

#include "layers/raster/Region.h"

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QVector>

namespace raster {

// The pixels of shapes. A pixel is in when its centre is: that of the pixel in column 0 of row 0
// lies at (0.5, 0.5), and y points down. Coordinates are in mask pixels and may lie outside of the
// mask, whose size is given. Shapes with a coordinate that is no number, or beyond
// LargestCoordinate to either side, have no pixels.

constexpr double LargestCoordinate = 1e9;

/// A centre on the left or top edge is in, one on the right or bottom edge is not. So rectangles
/// side by side share no pixel and leave none out. Width and height may be negative.
Region RectangleRegion(QRectF rectangle, QSize mask);

/// The ellipse within the rectangle. A centre on its line is in. Width and height may be negative.
Region EllipseRegion(QRectF rectangle, QSize mask);

/// The polygon of these corners, closed from the last to the first. Where its lines cross, the
/// pixels that lie within an odd number of turns are in. Exactly the pixels are in whose centres
/// QPolygonF::containsPoint finds inside by the odd-even rule: a centre on an edge is in when the
/// polygon lies to the right of the edge (or below it, for a level edge). So polygons that have an
/// edge in common share no pixel there and leave none out.
Region PolygonRegion(const QVector<QPointF>& corners, QSize mask);

/// A line with round ends: the pixels whose centres are at most half the width away from it.
/// Nothing for widths of 0 and less.
Region LineRegion(QPointF from, QPointF to, double width, QSize mask);

} // namespace raster
