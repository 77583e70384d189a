#pragma once

#include "layers/rules/LayerRules.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>

namespace raster {
class TargaBands;
}

/// What a file is worth as the bitmap of a layer.
struct BitmapState
{
    BitmapFault fault = BitmapFault::None;
    /// Without the file's name, such as "does not exist."; empty without a fault.
    QString error;
    /// The file ends before its last pixel, and the rest is filled when it is loaded.
    bool isCutOff = false;
};

/// size: that of the layers; an empty one accepts any. Reads the whole file. It ends early when
/// isCancelled returns true, and then says that the file cannot be read.
BitmapState ReadBitmapState(const QString& path, QSize size,
                            const std::function<bool()>& isCancelled);
/// The same for a file that was read. found: the size in its header.
BitmapState BitmapStateOf(const raster::TargaBands& bands, QSize found, QSize size);

/// The names of the bitmaps in the folder that are none of these layers', with the ending.
QStringList OrphanBitmaps(const QString& folder, const QStringList& layers);
