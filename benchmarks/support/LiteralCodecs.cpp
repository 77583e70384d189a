#include "benchmarks/support/LiteralCodecs.h"

#include "layers/raster/Mask.h"

namespace literal {

QByteArray EncodeTarga(const QImage& mask)
{
    QByteArray file(18, '\0');
    const int count = mask.width() * mask.height();
    const auto pixel = [&mask](int i) {
        return mask.pixelIndex(i % mask.width(), i / mask.width());
    };
    for (int i = 0; i < count;) {
        int run = 1;
        while (run < 128 && i + run < count && pixel(i + run) == pixel(i)) {
            ++run;
        }
        file.append(static_cast<char>((run - 1) | 128));
        file.append(static_cast<char>(pixel(i)));
        i += run;
    }
    return file;
}

QImage DecodeTarga(const QByteArray& file, QSize size)
{
    QImage mask = raster::BlankMask(size);
    const int count = size.width() * size.height();
    int at = 18;
    for (int i = 0; i < count;) {
        const int header = static_cast<uchar>(file.at(at++));
        const bool isRun = (header & 128) != 0;
        for (int n = 0; n <= (header & 127); ++n, ++i) {
            const auto value = static_cast<uchar>(file.at(isRun ? at : at + n));
            mask.setPixel(i % size.width(), i / size.width(), value);
        }
        at += isRun ? 1 : (header & 127) + 1;
    }
    return mask;
}

QByteArray ComposeFields(const QVector<raster::FlaggedMask>& masks, int bits, QSize size,
                         quint32 raster::FlaggedMask::*flags)
{
    raster::BitFieldRaster fields(bits, size.width(), size.height());
    const quint32 fieldMask = 0xFFFFFFFFU >> (32 - bits);
    for (int y = 0; y < size.height(); ++y) {
        quint32* row = fields.Row(size.height() - 1 - y);
        for (int x = 0; x < fields.FieldsPerRow(); ++x) {
            const int shift = 32 - bits * (x % fields.PixelsPerWord() + 1);
            for (const raster::FlaggedMask& layer : masks) {
                if (layer.*flags != 0 && layer.mask.pixel(x, y) != layer.mask.color(0)) {
                    row[x / fields.PixelsPerWord()] |= (layer.*flags & fieldMask) << shift;
                }
            }
        }
    }
    return {reinterpret_cast<const char*>(fields.Words()),
            static_cast<int>(4 * fields.WordCount())};
}

QVector<QImage> SplitFields(const raster::BitFieldRaster& fields, QSize size, int flagCount)
{
    QVector<QImage> masks(flagCount);
    for (int row = 0; row < size.height(); ++row) {
        for (int x = 0; x < size.width(); ++x) {
            const quint32 field = fields.Get(x, row);
            for (int flag = 0; flag < flagCount; ++flag) {
                if ((field >> flag & 1U) == 0) {
                    continue;
                }
                if (masks[flag].isNull()) {
                    masks[flag] = raster::BlankMask(size);
                }
                masks[flag].setPixel(x, size.height() - 1 - row, raster::MaskSet);
            }
        }
    }
    return masks;
}

} // namespace literal
