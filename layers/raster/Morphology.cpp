#include "layers/raster/Morphology.h"

#include "layers/raster/ChordUnion.h"
#include "layers/raster/CrossMaximum.h"
#include "layers/raster/DiscShape.h"
#include "layers/raster/Mask.h"
#include "layers/raster/ReachSweep.h"
#include "layers/raster/RunningMaximum.h"
#include "layers/raster/WideVectors.h"

#include <algorithm>
#include <new>

namespace raster {
namespace {

/// Erosion is the complement of the dilation of the complement: flip is XORed to the pixels that
/// are read and written.
constexpr uchar DilateFlip = 0;
constexpr uchar ErodeFlip = 255;

/// Above this radius two sweeps are faster than the chords of packed rows.
constexpr int LargestChordRadius = 20;

bool IsIndexed(const QImage& mask)
{
    return !mask.isNull() && mask.format() == QImage::Format_Indexed8;
}

QUILLMAP_WIDE_VECTORS
uchar Largest(const uchar* pixels, int count, uchar flip)
{
    uchar largest = 0;
    for (int x = 0; x < count; ++x) {
        largest = std::max<uchar>(largest, pixels[x] ^ flip);
    }
    return largest;
}

/// If every pixel reaches every other, all become the largest index.
void DilateByPicture(const QImage& mask, uchar flip, QImage& result)
{
    const int width = mask.width();
    uchar largest = 0;
    for (int y = 0; y < mask.height() && largest != 255; ++y) {
        largest = std::max(largest, Largest(mask.constScanLine(y), width, flip));
    }
    for (int y = 0; y < result.height(); ++y) {
        std::fill_n(result.scanLine(y), width, static_cast<uchar>(largest ^ flip));
    }
}

/// Returns false, with an unusable result, if the mask holds other indices than 0 and 255.
bool DilateIfBinary(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result)
{
    if (disc.Radius() > LargestChordRadius) {
        return DilateBySweeps(mask, disc, flip, result);
    }
    if (!IsBinary(mask)) {
        return false;
    }
    DilateByChords(mask, disc, flip, result);
    return true;
}

QImage DilateByDisc(const QImage& mask, const DiscShape& disc, uchar flip)
{
    if (!IsIndexed(mask) || disc.Radius() == 0) {
        return IsIndexed(mask) ? mask : QImage();
    }
    QImage result = UnfilledCopy(mask);
    if (result.isNull()) {
        return {};
    }
    if (disc.Covers(mask.size())) {
        DilateByPicture(mask, flip, result);
    } else if (disc.Radius() == 1 && disc.HalfChord(1) == 0) {
        DilateByCross(mask, flip, result);
    } else if (!DilateIfBinary(mask, disc, flip, result)) {
        DilateByRunningMaxima(mask, disc, flip, result);
    }
    return result;
}

QImage DilateByRadius(const QImage& mask, float discRadius, uchar flip)
{
    try {
        return DilateByDisc(mask, DiscShape(discRadius, mask.size()), flip);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace

QImage Dilate(const QImage& mask, float discRadius)
{
    return DilateByRadius(mask, discRadius, DilateFlip);
}

QImage Erode(const QImage& mask, float discRadius)
{
    return DilateByRadius(mask, discRadius, ErodeFlip);
}

QImage Open(const QImage& mask, float discRadius)
{
    return Dilate(Erode(mask, discRadius), discRadius);
}

QImage Close(const QImage& mask, float discRadius)
{
    return Erode(Dilate(mask, discRadius), discRadius);
}

} // namespace raster
