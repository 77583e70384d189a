#pragma once

#include <QByteArray>
#include <QImage>

/// The layer bitmaps' format read and written byte by byte and pixel by pixel, as slowly and
/// plainly as it can be described. What the real codec does is held against this.
namespace literal {

/// A null image for a file that is refused.
QImage ReadTarga(const QByteArray& file, QSize size);
QByteArray WriteTarga(const QImage& mask, bool isRunLength);

} // namespace literal
