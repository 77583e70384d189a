#include "tests/support/Masks.h"

#include "layers/raster/Mask.h"

#include <algorithm>

namespace {

uchar IndexOf(QChar character)
{
    switch (character.unicode()) {
    case '#':
        return raster::MaskSet;
    case '+':
        return 1;
    default:
        return raster::MaskClear;
    }
}

QChar CharacterOf(int index)
{
    switch (index) {
    case raster::MaskSet:
        return QLatin1Char('#');
    case 1:
        return QLatin1Char('+');
    case raster::MaskClear:
        return QLatin1Char('.');
    default:
        return QLatin1Char('?');
    }
}

void FillRectangle(QImage& mask, Random& random)
{
    const int left = random.Below(mask.width());
    const int top = random.Below(mask.height());
    const int right = qMin(mask.width(), left + 1 + random.Below(mask.width()));
    const int bottom = qMin(mask.height(), top + 1 + random.Below(mask.height()));
    for (int y = top; y < bottom; ++y) {
        std::fill(mask.scanLine(y) + left, mask.scanLine(y) + right, raster::MaskSet);
    }
}

} // namespace

QImage MaskFromArt(const QStringList& rows)
{
    QImage mask = raster::BlankMask({rows.value(0).size(), rows.size()});
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            mask.scanLine(y)[x] = IndexOf(rows.at(y).at(x));
        }
    }
    return mask;
}

QStringList ArtFromMask(const QImage& mask)
{
    QStringList rows;
    for (int y = 0; y < mask.height(); ++y) {
        QString row;
        for (int x = 0; x < mask.width(); ++x) {
            row.append(CharacterOf(mask.pixelIndex(x, y)));
        }
        rows.append(row);
    }
    return rows;
}

QByteArray Indices(const QImage& mask)
{
    QByteArray indices;
    for (int y = 0; y < mask.height(); ++y) {
        indices.append(reinterpret_cast<const char*>(mask.constScanLine(y)), mask.width());
    }
    return indices;
}

QImage FullMask(QSize size)
{
    QImage mask = raster::BlankMask(size);
    mask.fill(raster::MaskSet);
    return mask;
}

QImage RandomMask(Random& random, QSize size)
{
    QImage mask = raster::BlankMask(size);
    for (int i = random.Below(4); i > 0; --i) {
        FillRectangle(mask, random);
    }
    for (int i = random.Below(1 + size.width() * size.height() / 4); i > 0; --i) {
        const int y = random.Below(size.height());
        mask.scanLine(y)[random.Below(size.width())] = static_cast<uchar>(random.Below(256));
    }
    return mask;
}
