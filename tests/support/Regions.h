#pragma once

#include "layers/raster/Region.h"
#include "tests/support/Random.h"

#include <QImage>
#include <QSize>

#include <functional>

/// The pixels of a mask for which isIn(x, y) is true, asked one by one.
raster::Region RegionWhere(QSize size, const std::function<bool(int, int)>& isIn);
/// The pixels of a mask that are not clear.
raster::Region RegionOf(const QImage& mask);
/// Up to 150 pixels wide, so that rows have one to three words of bits, and up to 30 high; one in
/// eight is much wider and very low.
QSize RandomSize(Random& random);
/// What differs between two regions, in words; empty when they are equal.
QString Difference(const raster::Region& actual, const raster::Region& expected);
