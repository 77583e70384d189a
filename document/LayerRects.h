#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QVector>

#include <vector>

/// Parts of a layer, in layer pixels; they may overlap.
using LayerRects = QVector<QRect>;

/// The whole layer, at the size of the project's layers.
QRect WholeLayer();

/// All pixels of the layer in reach of the rectangles; one rectangle around them where that is no
/// more work.
LayerRects Grown(const LayerRects& rects, int reach);

/// Adds rectangles to others; one around all where they would be too many.
void Append(LayerRects& rects, const LayerRects& added);

/// The tiles, those side by side as one rectangle.
LayerRects RectsOf(std::vector<int> tiles);

/// The pixels of the rectangles that are in none of the others.
LayerRects Outside(const LayerRects& rects, const LayerRects& others);

/// The smallest rectangle of mask pixels in which the mask differs from pixels that lie at a place
/// of it. Both have a byte a pixel, and the pixels lie inside of the mask.
QRect Difference(const QImage& mask, QPoint place, const QImage& pixels);
