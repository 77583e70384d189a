#pragma once

#include "layers/raster/ComposeFields.h"

#include <QByteArray>
#include <QImage>
#include <QVector>

/// Simple versions of the measured functions, with one QImage call for each pixel.
namespace literal {

QByteArray EncodeTarga(const QImage& mask);
QImage DecodeTarga(const QByteArray& file, QSize size);
/// The words of a section, for either kind of flag.
QByteArray ComposeFields(const QVector<raster::FlaggedMask>& masks, int bits, QSize size,
                         quint32 raster::FlaggedMask::*flags);
QVector<QImage> SplitFields(const raster::BitFieldRaster& fields, QSize size, int flagCount);

} // namespace literal
