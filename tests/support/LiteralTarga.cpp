#include "tests/support/LiteralTarga.h"

#include <QVector>

namespace literal {
namespace {

QImage ClearImage(QSize size)
{
    QImage image(size, QImage::Format_Indexed8);
    QVector<QRgb> greys;
    for (int i = 0; i < 256; ++i) {
        greys.append(0xFF000000U + static_cast<QRgb>(i) * 0x010101U);
    }
    image.setColorTable(greys);
    image.fill(0);
    return image;
}

/// Takes bytes one after another. Bytes after the end are ignored.
class Reader
{
public:
    explicit Reader(const QByteArray& bytes)
        : m_bytes(bytes)
    {
    }

    void Read(int& byte)
    {
        if (m_next < m_bytes.size()) {
            byte = static_cast<uchar>(m_bytes.at(m_next++));
        }
    }

private:
    QByteArray m_bytes;
    int m_next = 0;
};

class PixelSetter
{
public:
    PixelSetter(QImage& image, bool isFlipped)
        : m_image(image)
        , m_isFlipped(isFlipped)
    {
    }

    bool IsDone() const { return m_next >= m_image.width() * m_image.height(); }

    void Append(int value)
    {
        const int x = m_next % m_image.width();
        const int storedRow = m_next / m_image.width();
        const int y = m_isFlipped ? m_image.height() - 1 - storedRow : storedRow;
        if (m_image.valid(x, y)) {
            m_image.setPixel(x, y, static_cast<uint>(value));
        }
        ++m_next;
    }

private:
    QImage& m_image;
    bool m_isFlipped;
    int m_next = 0;
};

void ReadPackets(Reader& reader, PixelSetter& pixels)
{
    int header = 0;
    int value = 0;
    while (!pixels.IsDone()) {
        reader.Read(header);
        const bool isRun = (header & 128) != 0;
        if (isRun) {
            reader.Read(value);
        }
        for (int i = 0; i < (header & 127) + 1; ++i) {
            if (!isRun) {
                reader.Read(value);
            }
            pixels.Append(value);
        }
    }
}

void ReadRows(Reader& reader, PixelSetter& pixels, int width)
{
    QVector<int> row(width, 0);
    while (!pixels.IsDone()) {
        for (int& value : row) {
            reader.Read(value);
        }
        for (const int value : qAsConst(row)) {
            pixels.Append(value);
        }
    }
}

} // namespace

QImage ReadTarga(const QByteArray& file, QSize size)
{
    Reader reader(file);
    QVector<int> header(18, 0);
    for (int& byte : header) {
        reader.Read(byte);
    }
    const QSize fileSize(header.at(12) + 256 * header.at(13), header.at(14) + 256 * header.at(15));
    if (header.at(0) != 0 || header.at(1) != 0 || (header.at(2) & 3) != 3 || fileSize != size) {
        return {};
    }
    QImage image = ClearImage(size);
    PixelSetter pixels(image, (header.at(17) & 0x20) == 0);
    if ((header.at(2) & 8) != 0) {
        ReadPackets(reader, pixels);
    } else {
        ReadRows(reader, pixels, size.width());
    }
    return image;
}

QByteArray WriteTarga(const QImage& mask, bool isRunLength)
{
    QByteArray file(18, '\0');
    file[2] = isRunLength ? 11 : 3;
    file[12] = static_cast<char>(mask.width() % 256);
    file[13] = static_cast<char>(mask.width() / 256);
    file[14] = static_cast<char>(mask.height() % 256);
    file[15] = static_cast<char>(mask.height() / 256);
    file[16] = 8;
    file[17] = 0x20;
    QByteArray pixels;
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            pixels.append(static_cast<char>(mask.pixelIndex(x, y)));
        }
    }
    if (!isRunLength) {
        return file + pixels;
    }
    for (int i = 0; i < pixels.size();) {
        int count = 0;
        while (i + count < pixels.size() && count < 128 && pixels.at(i + count) == pixels.at(i)) {
            ++count;
        }
        file.append(static_cast<char>((count - 1) | 128));
        file.append(pixels.at(i));
        i += count;
    }
    return file;
}

} // namespace literal
