#include "layers/raster/Mask.h"

#include "layers/raster/PixelMemory.h"
#include "layers/raster/WideVectors.h"

#include <QVector>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace raster {

const QVector<QRgb>& GreyTable()
{
    static const QVector<QRgb> table = [] {
        QVector<QRgb> greys(256);
        for (int i = 0; i < greys.size(); ++i) {
            greys[i] = qRgb(i, i, i);
        }
        return greys;
    }();
    return table;
}

bool IsMaskSize(QSize size)
{
    return !size.isEmpty() && qMax(size.width(), size.height()) <= MaxMaskLength;
}

namespace {

bool IsNotClear(uchar pixel)
{
    return pixel != MaskClear;
}

bool IsClear(const uchar* pixels, int count)
{
    // Clear, and each like the next one.
    return count <= 0 || (pixels[0] == MaskClear &&
                          memcmp(pixels, pixels + 1, static_cast<std::size_t>(count - 1)) == 0);
}

int BytesPerLine(int width)
{
    return (width + 3) & ~3;
}

std::size_t ByteCount(QSize size)
{
    return static_cast<std::size_t>(BytesPerLine(size.width())) *
           static_cast<std::size_t>(size.height());
}

/// A Format_Indexed8 image of these bytes, which go with it. Null when there are none.
QImage ImageIn(PixelMemory memory, QSize size)
{
    if (memory.IsEmpty()) {
        return {};
    }
    auto pixels = std::make_unique<PixelMemory>(std::move(memory));
    const auto release = [](void* given) { delete static_cast<PixelMemory*>(given); };
    QImage image(pixels->As<uchar>(), size.width(), size.height(), BytesPerLine(size.width()),
                 QImage::Format_Indexed8, release, pixels.get());
    if (!image.isNull()) {
        Q_UNUSED(pixels.release())
    }
    return image;
}

QImage Unfilled(const QImage& image)
{
    const std::size_t byteCount = ByteCount(image.size());
    if (image.format() != QImage::Format_Indexed8 || !PixelMemory::IsLarge(byteCount)) {
        return {image.size(), image.format()};
    }
    return ImageIn(PixelMemory::Unfilled(byteCount), image.size());
}

} // namespace

QImage BlankMask(QSize size)
{
    if (!IsMaskSize(size)) {
        return {};
    }
    QImage mask = ImageIn(PixelMemory::Zeroed(ByteCount(size)), size);
    mask.setColorTable(GreyTable());
    return mask;
}

QImage UnfilledCopy(const QImage& image)
{
    QImage copy = Unfilled(image);
    if (copy.isNull()) {
        return {};
    }
    copy.setColorTable(image.colorTable());
    copy.setDotsPerMeterX(image.dotsPerMeterX());
    copy.setDotsPerMeterY(image.dotsPerMeterY());
    copy.setDevicePixelRatio(image.devicePixelRatio());
    const int used = (image.width() * image.depth() + 7) / 8;
    const int stride = std::min(copy.bytesPerLine(), image.bytesPerLine());
    for (int y = 0; y < copy.height() && used < stride; ++y) {
        const uchar* padded = image.constScanLine(y);
        std::copy(padded + used, padded + stride, copy.scanLine(y) + used);
    }
    return copy;
}

bool Unshare(QImage& image)
{
    if (!image.isDetached()) {
        QImage copy = image.copy();
        if (copy.isNull()) {
            return false;
        }
        image = std::move(copy);
    }
    return true;
}

QImage ImageToMask(const QImage& source, QRgb rgb)
{
    if (source.format() == QImage::Format_Indexed8) {
        return source;
    }
    if (source.depth() != 32) {
        return {};
    }
    QImage mask = BlankMask(source.size());
    for (int y = 0; y < mask.height(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        uchar* to = mask.scanLine(y);
        for (int x = 0; x < mask.width(); ++x) {
            to[x] = from[x] == rgb ? MaskSet : MaskClear;
        }
    }
    return mask;
}

QImage MaskToDisplay(const QImage& mask, QRgb rgb)
{
    if (mask.format() != QImage::Format_Indexed8) {
        return {};
    }
    QImage display(mask.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < display.height(); ++y) {
        const uchar* from = mask.constScanLine(y);
        auto* to = reinterpret_cast<QRgb*>(display.scanLine(y));
        for (int x = 0; x < display.width(); ++x) {
            to[x] = from[x] == MaskSet ? rgb : 0U;
        }
    }
    return display;
}

bool SameGeometry(const QImage& a, const QImage& b)
{
    return !a.isNull() && !b.isNull() && a.format() == b.format() && a.size() == b.size();
}

bool IsBinary(const QImage& mask)
{
    for (int y = 0; y < mask.height(); ++y) {
        if (!IsBinary(mask.constScanLine(y), mask.width())) {
            return false;
        }
    }
    return true;
}

QUILLMAP_WIDE_VECTORS
bool IsBinary(const uchar* pixels, int count)
{
    uchar others = 0;
    for (int x = 0; x < count; ++x) {
        // Adding 1 turns 255 and 0 into 0 and 1.
        others |= static_cast<uchar>(pixels[x] + 1);
    }
    return others <= 1;
}

QRect SetBounds(const QImage& mask)
{
    if (mask.format() != QImage::Format_Indexed8) {
        return {};
    }
    const int width = mask.width();
    int top = 0;
    int bottom = mask.height() - 1;
    while (top <= bottom && IsClear(mask.constScanLine(top), width)) {
        ++top;
    }
    while (bottom > top && IsClear(mask.constScanLine(bottom), width)) {
        --bottom;
    }
    if (top > bottom) {
        return {};
    }
    int left = width;
    int right = -1;
    for (int y = top; y <= bottom; ++y) {
        // Only what is outside of the bounds so far can widen them.
        const uchar* row = mask.constScanLine(y);
        if (!IsClear(row, left)) {
            left = static_cast<int>(std::find_if(row, row + left, IsNotClear) - row);
        }
        if (!IsClear(row + right + 1, width - right - 1)) {
            right = width - 1;
            while (row[right] == MaskClear) {
                --right;
            }
        }
    }
    return {QPoint(left, top), QPoint(right, bottom)};
}

} // namespace raster
