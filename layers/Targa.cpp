#include "layers/Targa.h"

#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectSettings.h"
#include "layers/raster/Mask.h"
#include "layers/raster/TargaCodec.h"

#include <QFile>
#include <QFileInfo>

#include <memory>

namespace {

QString MessageOf(raster::TargaError error)
{
    switch (error) {
    case raster::TargaError::TypeMismatch:
        return QStringLiteral("TARGA : Identification field and data type mismatch.");
    case raster::TargaError::ColourFormat:
        return QStringLiteral("TARGA : Colour formats are not supported.");
    case raster::TargaError::WrongSize:
        return QStringLiteral("TARGA : Wrong size of the image.");
    case raster::TargaError::NoImage:
    case raster::TargaError::None:
        break;
    }
    return {};
}

struct FileBytes
{
    std::unique_ptr<uchar[]> bytes;
    qint64 count = 0;
};

/// The file's first bytes, at most maxCount, in one read. Not zeroed first: masks are large.
FileBytes ReadBytes(QFile& file, qint64 maxCount)
{
    FileBytes read;
    const qint64 wanted = qMin(file.size(), maxCount);
    read.bytes.reset(new uchar[static_cast<std::size_t>(wanted)]);
    read.count = qMax<qint64>(file.read(reinterpret_cast<char*>(read.bytes.get()), wanted), 0);
    return read;
}

} // namespace

QImage LoadTarga(const QString& fileName)
{
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return {};
    }
    const QSize size = ProjectSettings::Instance().LayerSize();
    const FileBytes content = ReadBytes(file, raster::TargaMaxBytes(size));
    const raster::TargaResult result =
        raster::DecodeTarga(content.bytes.get(), content.count, size);
    const QString message = MessageOf(result.error);
    if (!message.isEmpty()) {
        LogError(message);
    }
    return result.mask;
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
