#include "layers/raster/Region.h"

#include "layers/raster/Mask.h"
#include "layers/raster/SpanWriter.h"

#include <algorithm>
#include <cstring>

namespace raster {
namespace {

/// The part of a row that the mask has; empty for all rows of an image that is no mask.
Span Clipped(const Span& span, const QImage& mask)
{
    const bool hasRow =
        mask.format() == QImage::Format_Indexed8 && span.y >= 0 && span.y < mask.height();
    const int begin = std::max(span.begin, 0);
    return {span.y, begin, std::max(begin, hasRow ? std::min(span.end, mask.width()) : 0)};
}

/// The lowest bits.
quint64 LowBits(int count)
{
    return count >= WordLength ? ~quint64(0) : (quint64(1) << count) - 1;
}

Region Selected(const Region& region, const QImage& mask, bool isInside)
{
    Region selected;
    SpanWriter writer(selected);
    for (const Span& span : region) {
        const Span part = Clipped(span, mask);
        const uchar* row = part.begin < part.end ? mask.constScanLine(part.y) : nullptr;
        writer.BeginRow(span.y);
        for (int x = std::max(span.begin, 0); x < span.end; x += WordLength) {
            const int count = std::min(span.end - x, WordLength);
            const int known = std::min(part.end - x, count);
            const quint64 all = LowBits(count);
            const quint64 clear =
                known > 0 ? EqualBits(row + x, known, MaskClear) | (all & ~LowBits(known)) : all;
            writer.AddPixels(x, isInside ? all & ~clear : clear);
        }
        writer.EndRow();
    }
    return selected;
}

} // namespace

QRect Bounds(const Region& region)
{
    if (region.empty()) {
        return {};
    }
    int left = region.front().begin;
    int right = region.front().end;
    for (const Span& span : region) {
        left = std::min(left, span.begin);
        right = std::max(right, span.end);
    }
    return {QPoint(left, region.front().y), QPoint(right - 1, region.back().y)};
}

qint64 PixelCount(const Region& region)
{
    qint64 count = 0;
    for (const Span& span : region) {
        count += span.end - span.begin;
    }
    return count;
}

Region Restricted(const Region& region, const QImage& mask, bool isInside)
{
    return RegionOrNone([&] { return Selected(region, mask, isInside); });
}

void Fill(QImage& mask, const Region& region, uchar value)
{
    uchar* const pixels = mask.format() == QImage::Format_Indexed8 ? mask.bits() : nullptr;
    if (!pixels) {
        return;
    }
    const qint64 stride = mask.bytesPerLine();
    for (const Span& span : region) {
        const Span part = Clipped(span, mask);
        if (part.begin < part.end) {
            std::memset(pixels + part.y * stride + part.begin, value,
                        static_cast<std::size_t>(part.end - part.begin));
        }
    }
}

} // namespace raster
