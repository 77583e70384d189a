#include "layers/raster/Region.h"

#include "layers/raster/Mask.h"
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

/// The part of a row that a mask of that size has.
Span Clipped(const Span& span, QSize mask)
{
    const int begin = std::max(span.begin, 0);
    const int end = span.y >= 0 && span.y < mask.height() ? std::min(span.end, mask.width()) : 0;
    return {span.y, begin, std::max(begin, end)};
}

/// Sets the pixels of a run. In regions of many runs most are short.
void FillRun(uchar* to, int count, uchar value)
{
    constexpr int block = 16;
    constexpr int longRun = 256;
    if (count > longRun) {
        std::memset(to, value, static_cast<std::size_t>(count));
    } else if (count >= block) {
        uchar values[block];
        std::memset(values, value, block);
        // The last block may overlap the one before.
        uchar* const last = to + count - block;
        for (; to < last; to += block) {
            std::memcpy(to, values, block);
        }
        std::memcpy(last, values, block);
    } else {
        for (int i = 0; i < count; ++i) {
            to[i] = value;
        }
    }
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
        const Span part = Clipped(span, size);
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
    const QSize size = MaskSize(mask);
    uchar* const pixels = size.isEmpty() ? nullptr : mask.bits();
    if (!pixels) {
        return;
    }
    const qint64 stride = mask.bytesPerLine();
    for (const Span& span : region) {
        const Span part = Clipped(span, size);
        if (part.begin < part.end) {
            FillRun(pixels + part.y * stride + part.begin, part.end - part.begin, value);
        }
    }
}

} // namespace raster
