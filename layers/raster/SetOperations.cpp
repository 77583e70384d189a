#include "layers/raster/SetOperations.h"

#include "layers/raster/Mask.h"

#include <algorithm>

namespace raster {
namespace {

template <typename Operation>
void CombineBytes(const uchar* a, const uchar* b, uchar* __restrict to, qsizetype count,
                  Operation operation)
{
    for (qsizetype i = 0; i < count; ++i) {
        to[i] = static_cast<uchar>(operation(a[i], b[i]));
    }
}

/// Combines both buffers in one pass, or row by row if their strides differ.
template <typename Operation>
QImage Combine(const QImage& a, const QImage& b, Operation operation)
{
    if (!SameGeometry(a, b)) {
        return {};
    }
    QImage result = UnfilledCopy(a);
    if (result.isNull()) {
        return {};
    }
    const int stride = result.bytesPerLine();
    if (a.bytesPerLine() == stride && b.bytesPerLine() == stride) {
        CombineBytes(a.constBits(), b.constBits(), result.bits(), result.sizeInBytes(), operation);
        return result;
    }
    const int count = std::min({a.bytesPerLine(), b.bytesPerLine(), stride});
    for (int y = 0; y < result.height(); ++y) {
        CombineBytes(a.constScanLine(y), b.constScanLine(y), result.scanLine(y), count, operation);
    }
    return result;
}

} // namespace

QImage Complement(const QImage& mask)
{
    return Combine(mask, mask, [](uchar a, uchar) { return ~a; });
}

QImage Union(const QImage& a, const QImage& b)
{
    return Combine(a, b, [](uchar x, uchar y) { return x | y; });
}

QImage Intersection(const QImage& a, const QImage& b)
{
    return Combine(a, b, [](uchar x, uchar y) { return x & y; });
}

QImage Difference(const QImage& a, const QImage& b)
{
    return Combine(a, b, [](uchar x, uchar y) { return x & ~y; });
}

} // namespace raster
