#include "layers/raster/ReachSweep.h"

#include "layers/raster/EdgeStack.h"
#include "layers/raster/Mask.h"
#include "layers/raster/RowReach.h"
#include "layers/raster/WideVectors.h"

#include <algorithm>
#include <type_traits>
#include <vector>

namespace raster {
namespace {

/// Advances reach to the next row and writes that row's pixels. From one row to the next all
/// reaches become 1 smaller; own(x, pixel) is the reach of the new row's own pixels.
template <typename T, typename Own, typename Pixel>
void Advance(int width, T* __restrict reach, uchar* __restrict pixels, Own own, Pixel toPixel)
{
    for (int x = 0; x < width; ++x) {
        // The maximum would drop a reach below 0, but an unsigned byte cannot be negative.
        const T still = std::is_signed_v<T> ? reach[x] : std::max<T>(reach[x], 1);
        const T here = std::max<T>(static_cast<T>(still - 1), own(x, pixels[x]));
        reach[x] = here;
        pixels[x] = toPixel(here, pixels[x]);
    }
}

/// MaskSet or MaskClear, computed without a branch. With a branch the compiler would make a
/// separate loop for each value of flip.
template <typename T>
uchar ToPixel(T reach)
{
    return static_cast<uchar>(-static_cast<int>(reach != 0));
}

/// Fetches the pixels of a row in advance: the processor's own prefetching does not recognise a
/// loop over so many rows at once.
void PrefetchRow(const QImage& image, int y)
{
    if (y < 0 || y >= image.height()) {
        return;
    }
    const uchar* pixels = image.constScanLine(y);
    const int count = image.bytesPerLine();
    for (int x = 0; x < count; x += 64) {
        Prefetch(pixels + x);
    }
}

constexpr int RowsAhead = 4;

/// The distance to the nearest set pixel of its own row tells how many rows up and down a pixel
/// reaches. A sweep keeps the maximum of the reaches of all rows before, minus 1 for each row. This
/// is the two-phase scheme of distance transforms (Meijster, Roerdink and Hesselink, 2000); because
/// the radius is known, no minimum over parabolas is needed.
///
/// This version keeps the reach of the downward sweep in the result, for a radius whose reach fits
/// a byte.
QUILLMAP_WIDE_VECTORS
bool SweepBytes(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result)
{
    const int width = mask.width();
    RowReach<uchar> row(disc, mask.size());
    std::vector<uchar> reach(static_cast<std::size_t>(width));
    for (int y = 0; y < mask.height(); ++y) {
        PrefetchRow(mask, y + RowsAhead);
        PrefetchRow(result, y + RowsAhead);
        const uchar* pixels = mask.constScanLine(y);
        if (!IsBinary(pixels, width)) {
            return false;
        }
        const uchar* own = row.Of(pixels, flip);
        Advance(
            width, reach.data(), result.scanLine(y), [own](int x, uchar) { return own[x]; },
            [](uchar here, uchar) { return here; });
    }
    std::fill(reach.begin(), reach.end(), uchar(0));
    for (int y = mask.height() - 1; y >= 0; --y) {
        PrefetchRow(result, y - RowsAhead);
        Advance(
            width, reach.data(), result.scanLine(y), [](int, uchar kept) { return kept; },
            [flip](uchar here, uchar) -> uchar { return ToPixel(here) ^ flip; });
    }
    return true;
}

/// The reach of a row's own pixels during the sweep upward.
template <typename T>
const T* OwnReach(RowReach<T>& row, EdgeStack::Edges edges, const uchar* pixels, uchar flip)
{
    if (!edges.IsKept()) {
        return row.Of(pixels, flip);
    }
    return edges.IsEmpty() ? row.OfBusy(pixels, flip) : row.Of(edges);
}

/// The version for a longer reach. The sweep upward computes the reach of each row again, from the
/// row's edges if they were kept. That is faster than keeping the reach, and takes less memory.
template <typename T>
QUILLMAP_WIDE_VECTORS bool SweepTwice(const QImage& mask, const DiscShape& disc, uchar flip,
                                      QImage& result)
{
    const int width = mask.width();
    RowReach<T> row(disc, mask.size());
    EdgeStack remembered(mask.size());
    std::vector<T> reach(static_cast<std::size_t>(width));
    for (int y = 0; y < mask.height(); ++y) {
        PrefetchRow(mask, y + RowsAhead);
        PrefetchRow(result, y + RowsAhead);
        const uchar* pixels = mask.constScanLine(y);
        if (!IsBinary(pixels, width)) {
            return false;
        }
        const T* own = row.Of(pixels, flip);
        remembered.Push(row.Edges());
        Advance(
            width, reach.data(), result.scanLine(y), [own](int x, uchar) { return own[x]; },
            [](T here, uchar) { return ToPixel(here); });
    }
    std::fill(reach.begin(), reach.end(), T(0));
    for (int y = mask.height() - 1; y >= 0; --y) {
        PrefetchRow(result, y - RowsAhead);
        const T* own = OwnReach(row, remembered.Pop(), mask.constScanLine(y), flip);
        Advance(
            width, reach.data(), result.scanLine(y), [own](int x, uchar) { return own[x]; },
            [flip](T here, uchar above) -> uchar { return (ToPixel(here) | above) ^ flip; });
    }
    return true;
}

} // namespace

bool DilateBySweeps(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result)
{
    if (RowReach<uchar>::Holds(disc, mask.size())) {
        return SweepBytes(mask, disc, flip, result);
    }
    if (RowReach<qint16>::Holds(disc, mask.size())) {
        return SweepTwice<qint16>(mask, disc, flip, result);
    }
    return SweepTwice<qint32>(mask, disc, flip, result);
}

} // namespace raster
