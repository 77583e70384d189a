#include "layers/raster/Region.h"

#include "layers/raster/Mask.h"
#include "layers/raster/PixelBits.h"
#include "layers/raster/SpanWriter.h"

#include <algorithm>
#include <cstring>

namespace raster {
namespace {

/// The size of a mask; none for other images.
QSize MaskSize(const QImage& mask)
{
    return mask.format() == QImage::Format_Indexed8 ? mask.size() : QSize(0, 0);
}

/// Where the part of a run ends that a mask of that size has; may be before it begins.
int EndWithin(QSize mask, const Span& span)
{
    return span.y < mask.height() ? std::min<int>(span.end, mask.width()) : 0;
}

/// The lowest bits.
quint64 LowBits(int count)
{
    return count >= WordLength ? ~quint64(0) : (quint64(1) << count) - 1;
}

Region Selected(const Region& region, const QImage& mask, bool isInside)
{
    const QSize size = MaskSize(mask);
    Region selected;
    SpanWriter writer(selected);
    for (const Span& span : region) {
        const int knownEnd = EndWithin(size, span);
        quint64 wasIn = 0;
        writer.BeginRow(span.y);
        for (int x = span.begin; x < span.end; x += WordLength) {
            const int count = std::min(span.end - x, WordLength);
            const int known = std::clamp(knownEnd - x, 0, count);
            const quint64 set =
                known > 0
                    ? LowBits(known) & ~EqualBits(mask.constScanLine(span.y) + x, known, MaskClear)
                    : 0;
            const quint64 edges = EdgeBits(isInside ? set : LowBits(count) & ~set, wasIn);
            writer.AddEdges(x, &edges, 1);
        }
        writer.EndRun(span.end);
    }
    return selected;
}

} // namespace

QRect Bounds(const Region& region)
{
    if (region.empty()) {
        return {};
    }
    quint16 left = region.front().begin;
    quint16 right = region.front().end;
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
    const QSize size = MaskSize(mask);
    uchar* const pixels = size.isEmpty() ? nullptr : mask.bits();
    if (!pixels) {
        return;
    }
    const qint64 stride = mask.bytesPerLine();
    for (const Span& span : region) {
        const int count = EndWithin(size, span) - span.begin;
        if (count > 0) {
            std::memset(pixels + span.y * stride + span.begin, value,
                        static_cast<std::size_t>(count));
        }
    }
}

} // namespace raster
