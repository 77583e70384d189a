#pragma once

#include <QByteArray>
#include <QImage>

/// A simple, slow codec of layer bitmaps that works byte by byte and pixel by pixel. Tests compare
/// the real codec with it.
namespace literal {

/// Returns a null image if the file is refused.
QImage ReadTarga(const QByteArray& file, QSize size);
QByteArray WriteTarga(const QImage& mask, bool isRunLength);

} // namespace literal
