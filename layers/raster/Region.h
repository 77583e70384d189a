#pragma once

#include <QImage>
#include <QRect>

#include <vector>

namespace raster {

/// Pixels of one row of a mask, from begin to before end.
struct Span
{
    int y;
    int begin;
    int end;
};

inline bool operator==(const Span& a, const Span& b)
{
    return a.y == b.y && a.begin == b.begin && a.end == b.end;
}

/// Some pixels of a mask: a shape, or what a fill covers. The rows ascend; the spans of a row
/// ascend too and neither overlap nor touch. No span is empty, and all lie inside of the mask.
/// Functions that return a region return an empty one when there is no memory for it.
using Region = std::vector<Span>;

/// The smallest rectangle around the pixels; empty for an empty region.
QRect Bounds(const Region& region);
qint64 PixelCount(const Region& region);

/// The pixels of the region where the mask is not MaskClear (isInside), or is MaskClear. The mask
/// is Format_Indexed8; pixels beyond it, and those of a null mask or another format, count as
/// clear.
Region Restricted(const Region& region, const QImage& mask, bool isInside);

/// Gives all pixels of the region the value, in place. The mask is Format_Indexed8 and not shared
/// (QImage::isDetached), else Qt copies it as a whole. Pixels beyond the mask are passed over, and
/// other formats are left as they are.
void Fill(QImage& mask, const Region& region, uchar value);

} // namespace raster
