#pragma once

#include "layers/raster/MaskDelta.h"
#include "tests/support/Random.h"

#include <QImage>
#include <QRect>
#include <QSize>

// Random changes of masks, for tests of what is kept of them.

/// Smaller than, as large as and larger than tiles.
constexpr QSize MaskSizes[] = {{1, 1},   {63, 63},   {64, 64},  {65, 65},  {64, 1},
                               {1, 130}, {200, 70},  {3, 300},  {128, 64}, {129, 191},
                               {64, 65}, {255, 257}, {320, 192}};

/// A mask with rows that are longer than their pixels, and of any bytes there.
QImage PaddedMask(Random& random, const QImage& mask);
/// A deep copy.
QImage CopyOf(const QImage& mask);
/// Sets the pixels to one value, two values or any values.
void ChangeMask(Random& random, QImage& mask, const QRect& rect);

/// A change of a mask, and what a delta knows of it.
struct MaskEdit
{
    MaskEdit(Random& random, const QImage& start, int steps);

    QImage before;
    QImage after;
    QImage mask;
    raster::MaskDelta delta;
    bool isTouched = true;
};

MaskEdit RandomMaskEdit(Random& random, QSize size);
