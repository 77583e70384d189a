#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

/// Pure raster code: images and numbers in, images and error codes out.
namespace raster {

/// A mask is a Format_Indexed8 image with the grey table; index 0 is clear, 255 is set.
constexpr uchar MaskClear = 0;
constexpr uchar MaskSet = 255;

/// 256 opaque greys, entry i = 0xFF000000 + i * 0x010101.
const QVector<QRgb>& GreyTable();

/// The files of masks store sizes in 16 bits.
constexpr int MaxMaskLength = 65535;

/// True for sides of 1 to MaxMaskLength.
bool IsMaskSize(QSize size);

/// A mask with all pixels clear. Null without memory and if IsMaskSize is false. Only pages that
/// are written to take memory.
QImage BlankMask(QSize size);

/// An image of the same size, format, resolution and colour table with uninitialised pixels. The
/// padding bytes of rows are copied. Null for a null image and without memory.
QImage UnfilledCopy(const QImage& image);

/// Makes the image the only one that has its pixels, so that writing does not copy them: a shared
/// image that is written to without memory for a copy becomes null. False without memory, and then
/// the image stays as it is; false for a null image.
bool Unshare(QImage& image);

/// The mask of the pixels that equal rgb exactly. The source has 32 bits a pixel and rgb is
/// opaque. A Format_Indexed8 source is returned unchanged; any other depth gives a null image.
QImage ImageToMask(const QImage& source, QRgb rgb);

/// The picture of a mask: a Format_ARGB32_Premultiplied image with rgb (opaque) where the mask is
/// 255 and transparent elsewhere. Null if the source is not Format_Indexed8.
QImage MaskToDisplay(const QImage& mask, QRgb rgb);

/// True if neither image is null and both have the same format, width and height.
bool SameGeometry(const QImage& a, const QImage& b);

/// True if every pixel of a Format_Indexed8 image is MaskClear or MaskSet.
bool IsBinary(const QImage& mask);
/// The same for count pixels.
bool IsBinary(const uchar* pixels, int count);

/// The smallest rectangle that holds all pixels of a Format_Indexed8 image that are not MaskClear.
/// Empty if there is none, and for other formats.
QRect SetBounds(const QImage& mask);

} // namespace raster
