#pragma once

#include "tests/support/Random.h"

#include <QImage>
#include <QStringList>

/// A mask with one pixel a character: '.' is clear, '#' is set, '+' is index 1, which is neither.
QImage MaskFromArt(const QStringList& rows);
/// The reverse. Indices other than 0, 1 and 255 become '?', a null image gives no rows.
QStringList ArtFromMask(const QImage& mask);
/// The pixel indices row by row, from the top.
QByteArray Indices(const QImage& mask);

/// Every pixel set.
QImage FullMask(QSize size);
/// A mask with overlapping rectangles of set pixels and some noise of any index.
QImage RandomMask(Random& random, QSize size);
