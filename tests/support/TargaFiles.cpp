#include "tests/support/TargaFiles.h"

#include <vector>

namespace {

QByteArray Size16(int length)
{
    QByteArray bytes;
    bytes.append(static_cast<char>(length % 256)).append(static_cast<char>(length / 256));
    return bytes;
}

} // namespace

QByteArray TargaHeader(char imageType, QSize size, char descriptor)
{
    return QByteArray(2, '\0') + imageType + QByteArray(9, '\0') + Size16(size.width()) +
           Size16(size.height()) + '\x08' + descriptor;
}

QByteArray Encoded(const QImage& mask, raster::TargaPacking packing)
{
    QByteArray file;
    raster::EncodeTarga(mask, packing, [&file](const char* bytes, qint64 count) {
        file.append(bytes, static_cast<int>(count));
        return true;
    });
    return file;
}

raster::TargaResult Decoded(const QByteArray& file, QSize size)
{
    // A copy of its exact size lets the address sanitizer see every read behind the end.
    const std::vector<uchar> bytes(file.begin(), file.end());
    return raster::DecodeTarga(bytes.data(), file.size(), size);
}
