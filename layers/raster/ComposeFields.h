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
/// clear and valid, and those with words must have the same height. They may have different numbers
/// of bits and so hold different numbers of pixels a row.
void ComposeFields(const QVector<FlaggedMask>& masks, BitFieldRaster& usages,
                   BitFieldRaster& values);

} // namespace raster
