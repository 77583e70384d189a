#include "tests/support/LiteralMap.h"

namespace literal {
namespace {

void AppendInt(QByteArray& bytes, quint32 value)
{
    for (int i = 0; i < 4; ++i) {
        bytes.append(static_cast<char>(value % 256));
        value /= 256;
    }
}

/// Reads integers from the beginning of bytes; 0 if none are left.
class IntReader
{
public:
    explicit IntReader(const QByteArray& bytes)
        : m_bytes(bytes)
    {
    }

    quint32 Next()
    {
        quint32 value = 0;
        for (int i = 0; i < 4; ++i, ++m_next) {
            const int byte = m_next < m_bytes.size() ? static_cast<uchar>(m_bytes.at(m_next)) : 0;
            value += static_cast<quint32>(byte) << (8 * i);
        }
        return value;
    }

private:
    QByteArray m_bytes;
    int m_next = 0;
};

int BitsFor(int flagTypeCount)
{
    int bits = flagTypeCount == 0 ? 0 : 1;
    while (bits < flagTypeCount) {
        bits *= 2;
    }
    return bits;
}

bool IsSet(const QImage& image, int x, int y)
{
    return image.valid(x, y) && image.pixel(x, y) != image.color(0);
}

int WordIndex(int x, int row, int bits, QSize size)
{
    const int pixelsPerWord = 32 / bits;
    return row * (size.width() / pixelsPerWord) + x / pixelsPerWord;
}

/// The number of pixels of a row that the words hold.
int PackedWidth(int bits, QSize size)
{
    return size.width() - size.width() % (32 / bits);
}

int Shift(int x, int bits)
{
    const int pixelsPerWord = 32 / bits;
    return (pixelsPerWord - 1 - x % pixelsPerWord) * bits;
}

quint32 FieldMask(int bits)
{
    return static_cast<quint32>((quint64(1) << bits) - 1);
}

int WordCount(int bits, QSize size)
{
    return size.width() / (32 / bits) * size.height();
}

QVector<QRgb> Greys()
{
    QVector<QRgb> greys;
    for (int i = 0; i < 256; ++i) {
        greys.append(0xFF000000U + static_cast<QRgb>(i) * 0x010101U);
    }
    return greys;
}

QImage& ImageOf(int flag, QVector<FlagImage>& images, QSize size)
{
    for (FlagImage& known : images) {
        if (known.flag == flag) {
            return known.image;
        }
    }
    QImage image(size, QImage::Format_Indexed8);
    image.setColorTable(Greys());
    image.fill(0);
    images.append({flag, image});
    return images.last().image;
}

void WriteSection(QByteArray& map, const QVector<QImage>& images, const QVector<quint32>& flags,
                  int flagTypeCount, QSize size)
{
    const int bits = BitsFor(flagTypeCount);
    AppendInt(map, static_cast<quint32>(bits));
    if (bits == 0) {
        return;
    }
    const QVector<quint32> words = SectionWords(images, flags, bits, size);
    for (const quint32 word : words) {
        AppendInt(map, word);
    }
}

QVector<FlagImage> ReadSection(IntReader& reader, QSize size, int flagTypeCount)
{
    const auto bits = static_cast<int>(reader.Next());
    if (bits == 0) {
        return {};
    }
    QVector<quint32> words(WordCount(bits, size));
    for (quint32& word : words) {
        word = reader.Next();
    }
    return SplitSection(words, bits, size, flagTypeCount);
}

} // namespace

QVector<quint32> SectionWords(const QVector<QImage>& images, const QVector<quint32>& flags,
                              int bits, QSize size)
{
    QVector<quint32> words(WordCount(bits, size), 0);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < PackedWidth(bits, size); ++x) {
            quint32 field = 0;
            for (int i = 0; i < images.size(); ++i) {
                if (flags.at(i) != 0 && IsSet(images.at(i), x, y)) {
                    field |= flags.at(i);
                }
            }
            const int row = size.height() - 1 - y;
            words[WordIndex(x, row, bits, size)] |= (field & FieldMask(bits)) << Shift(x, bits);
        }
    }
    return words;
}

QByteArray WriteMap(const QVector<MapLayer>& layers, QSize layerSize, QSize worldSize,
                    int usageTypeCount, int valueTypeCount)
{
    QByteArray map;
    for (const int size :
         {layerSize.width(), layerSize.height(), worldSize.width(), worldSize.height()}) {
        AppendInt(map, static_cast<quint32>(size));
    }
    QVector<QImage> images;
    QVector<quint32> usageFlags;
    QVector<quint32> valueFlags;
    for (const MapLayer& layer : layers) {
        images.append(layer.image);
        usageFlags.append(layer.usageFlags);
        valueFlags.append(layer.valueFlags);
    }
    WriteSection(map, images, usageFlags, usageTypeCount, layerSize);
    WriteSection(map, images, valueFlags, valueTypeCount, layerSize);
    return map;
}

QVector<FlagImage> SplitSection(const QVector<quint32>& words, int bits, QSize size,
                                int flagTypeCount)
{
    QVector<FlagImage> images;
    for (int row = 0; row < size.height(); ++row) {
        for (int x = 0; x < PackedWidth(bits, size); ++x) {
            const quint32 word = words.value(WordIndex(x, row, bits, size));
            const quint32 field = (word >> Shift(x, bits)) & FieldMask(bits);
            for (int flag = 0; flag < flagTypeCount; ++flag) {
                if ((field >> flag) % 2 == 1) {
                    const int y = size.height() - 1 - row;
                    ImageOf(flag, images, size).setPixel(x, y, 255);
                }
            }
        }
    }
    return images;
}

QVector<MapLayer> ReadMap(const QByteArray& map, int usageTypeCount, int valueTypeCount)
{
    IntReader reader(map);
    QSize size;
    size.setWidth(static_cast<int>(reader.Next()));
    size.setHeight(static_cast<int>(reader.Next()));
    reader.Next();
    reader.Next();
    QVector<MapLayer> layers;
    const QVector<FlagImage> usages = ReadSection(reader, size, usageTypeCount);
    for (const FlagImage& usage : usages) {
        layers.append({usage.image, 1U << usage.flag, 0});
    }
    const QVector<FlagImage> values = ReadSection(reader, size, valueTypeCount);
    for (const FlagImage& value : values) {
        layers.append({value.image, 0, 1U << value.flag});
    }
    return layers;
}

} // namespace literal
