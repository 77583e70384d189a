#pragma once

#include <QSize>

#include <vector>

/// Numbers of pixels in squares of masks, which LayerNumbers keeps.
namespace raster {

/// The side of the largest square that is counted at once.
constexpr int CountSide = 128;

/// What a square of a mask holds.
struct PartCount
{
    /// The pixels that are not MaskClear, and those of them that are not MaskSet either.
    quint16 covered = 0;
    quint16 greys = 0;
    /// The smallest rectangle around the covered pixels, in pixels from the square's top left;
    /// right and bottom belong to it. Without meaning where nothing is covered.
    quint8 left = 0;
    quint8 top = 0;
    quint8 right = 0;
    quint8 bottom = 0;
};

/// A square of a Format_Indexed8 mask, which it does not hold.
struct MaskPart
{
    /// The top left pixel; rows begin stride bytes apart.
    const uchar* pixels = nullptr;
    qint64 stride = 0;
    /// At most CountSide each way; pixels beyond are clear.
    QSize size;
};

PartCount CountPart(const MaskPart& part);

enum class Combining
{
    Any,
    All,
};

/// The number of pixels at which any or all of the parts, of which there is at least one, are not
/// clear.
int CountCombined(const std::vector<MaskPart>& parts, Combining combining);

} // namespace raster
