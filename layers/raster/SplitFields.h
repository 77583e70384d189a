#pragma once

#include <QImage>
#include <QSize>
#include <QVector>

namespace raster {

/// The pixels whose field has the bit of one flag set.
struct FlagMask
{
    int flag = 0;
    QImage mask;
};

/// The leading words of an area map section whose later words count as 0.
struct PackedFields
{
    const quint32* words = nullptr;
    qint64 wordCount = 0;
    /// 1, 2, 4, 8, 16 or 32.
    int bits = 1;
    /// The raster's size in pixels.
    QSize size;
};

/// One mask of the fields' size for each flag below flagCount that is set somewhere, in the order
/// in which the flags first occur: rows from the first of the file (the bottom row of the image),
/// pixels left to right, lower flag first. A flag whose mask finds no memory is left out.
QVector<FlagMask> SplitFields(const PackedFields& fields, int flagCount);

} // namespace raster
