#include "layers/Targa.h"

#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectSettings.h"
#include "layers/raster/Mask.h"
#include "layers/raster/TargaCodec.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <memory>
#include <new>

namespace {

using raster::TargaError;
using raster::TargaResult;

/// Empty for an empty size, which has no image that could be missing.
QString MessageOf(TargaError error, QSize size)
{
    switch (error) {
    case TargaError::TypeMismatch:
        return QStringLiteral("TARGA : Identification field and data type mismatch.");
    case TargaError::ColourFormat:
        return QStringLiteral("TARGA : Colour formats are not supported.");
    case TargaError::WrongSize:
        return QStringLiteral("TARGA : Wrong size of the image.");
    case TargaError::NoImage:
        return size.isEmpty() ? QString()
                              : QStringLiteral("TARGA : Not enough memory for %1x%2 pixels.")
                                    .arg(size.width())
                                    .arg(size.height());
    case TargaError::None:
        break;
    }
    return {};
}

using Header = std::array<char, raster::TargaHeaderSize>;

/// Reads the header and checks it. count: how many of its bytes there are.
TargaError ReadHeader(QFile& file, QSize size, Header& header, qint64& count)
{
    count = qMax<qint64>(file.read(header.data(), header.size()), 0);
    return raster::CheckTargaHeader(reinterpret_cast<const uchar*>(header.data()), count, size);
}

/// Opening a pipe would wait for a writer, maybe for ever.
bool OpenRegular(QFile& file)
{
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

/// Checks the header before it allocates memory for the rest, because a broken file may claim any
/// size. The rest is read at once into memory that is not zeroed first, because masks are large.
TargaResult ReadTarga(QFile& file, QSize size)
{
    Header header{};
    qint64 headerCount = 0;
    const TargaError error = ReadHeader(file, size, header, headerCount);
    if (error != TargaError::None) {
        return {{}, error};
    }
    const qint64 count = qMax(qMin(file.size(), raster::TargaMaxBytes(size)), headerCount);
    const std::unique_ptr<char[]> bytes(new (std::nothrow) char[static_cast<std::size_t>(count)]);
    if (!bytes) {
        return {{}, TargaError::NoImage};
    }
    std::copy_n(header.begin(), headerCount, bytes.get());
    const qint64 dataCount =
        qMax<qint64>(file.read(bytes.get() + headerCount, count - headerCount), 0);
    return raster::DecodeTarga(reinterpret_cast<const uchar*>(bytes.get()), headerCount + dataCount,
                               size);
}

} // namespace

QImage LoadTarga(const QString& fileName)
{
    return LoadTarga(fileName, ProjectSettings::Instance().LayerSize());
}

QImage LoadTarga(const QString& fileName, QSize size)
{
    QFile file(fileName);
    if (!OpenRegular(file)) {
        return {};
    }
    const TargaResult result = ReadTarga(file, size);
    const QString message = MessageOf(result.error, size);
    if (!message.isEmpty()) {
        LogError(message);
    }
    return result.mask;
}

QString WhyNotLoaded(const QString& fileName)
{
    QFile file(fileName);
    if (!file.exists()) {
        return QStringLiteral("There is no file '%1'.").arg(fileName);
    }
    if (!OpenRegular(file)) {
        return QStringLiteral("'%1' cannot be read.").arg(fileName);
    }
    const QSize size = ProjectSettings::Instance().LayerSize();
    Header header{};
    qint64 headerCount = 0;
    switch (ReadHeader(file, size, header, headerCount)) {
    case TargaError::TypeMismatch:
    case TargaError::ColourFormat:
        return QStringLiteral("'%1' is no bitmap of grey values.").arg(fileName);
    case TargaError::WrongSize:
        return QStringLiteral("'%1' has another size than the layers of the project.")
            .arg(fileName);
    case TargaError::NoImage:
    case TargaError::None:
        break;
    }
    return QStringLiteral("There is no memory for a layer of %1x%2 pixels.")
        .arg(size.width())
        .arg(size.height());
}

bool SaveTarga(const QString& fileName, const QImage& image, bool compressed)
{
    if (fileName.isEmpty()) {
        LogError(QStringLiteral("Please specify a filename."));
        return false;
    }
    if (image.format() != QImage::Format_Indexed8) {
        LogError(QStringLiteral("Only 8-bit indexed image format is supported."));
        return false;
    }
    if (qMax(image.width(), image.height()) > raster::MaxMaskLength) {
        LogError(
            QStringLiteral("An image of %1x%2 pixels is too large for file %3.")
                .arg(QString::number(image.width()), QString::number(image.height()), fileName));
        return false;
    }
    OutputFile file(fileName);
    if (!file.Open()) {
        LogError(QStringLiteral("File %1 cannot be opened for writting.").arg(fileName));
        return false;
    }
    const auto packing = compressed ? raster::TargaPacking::RunLength : raster::TargaPacking::Raw;
    const auto write = [&file](const char* bytes, qint64 count) {
        return file.Write(bytes, count);
    };
    if (!raster::EncodeTarga(image, packing, write) || !file.Commit()) {
        LogError(QStringLiteral("The first attempt to write into file %1 failed.").arg(fileName));
        return false;
    }
    return true;
}
