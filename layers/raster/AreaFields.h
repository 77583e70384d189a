#pragma once

#include "layers/raster/BitFieldRaster.h"

#include <QImage>
#include <QVector>

namespace raster {

/// A mask and the flags that each of its set pixels (any index but 0) carries.
struct FlaggedMask
{
    QImage mask;
    quint32 usageFlags = 0;
    quint32 valueFlags = 0;
};

/// ORs the flags of every mask into the fields of both rasters, in one pass over the masks.
/// Image row 0 goes to the rasters' last row; pixels outside a mask are clear. The rasters must be
/// fresh, valid and of one height; they may differ in bits and so in the pixels that they hold.
void ComposeFields(const QVector<FlaggedMask>& masks, BitFieldRaster& usages,
                   BitFieldRaster& values);

/// The pixels whose field has the bit of one flag set.
struct FlagMask
{
    int flag = 0;
    QImage mask;
};

/// The leading words of a section whose later words count as 0.
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
