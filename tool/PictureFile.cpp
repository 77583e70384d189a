#include "tool/PictureFile.h"

#include "app/OutputFile.h"
#include "platform/ErrorOutput.h"
#include "tool/Console.h"
#include "tool/InputFiles.h"
#include "tool/Interruption.h"
#include "tool/ProjectData.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QtEndian>

namespace {

/// 2 GiB at four bytes a pixel.
constexpr qint64 MaxPixels = 1 << 29;

QString NoPicture()
{
    return QStringLiteral("is no picture that can be read.");
}

/// Checks the lengths of the chunks without unpacking them.
bool IsCutOffPng(QFile& file)
{
    constexpr int signatureBytes = 8;
    constexpr int lengthBytes = 4;
    constexpr int checksumBytes = 4;
    for (qint64 offset = signatureBytes; file.seek(offset);) {
        const QByteArray head = file.read(2 * lengthBytes);
        if (head.size() < 2 * lengthBytes) {
            return true;
        }
        offset += head.size() + qFromBigEndian<quint32>(head.constData()) + checksumBytes;
        if (head.endsWith("IEND")) {
            return file.size() < offset;
        }
    }
    return true;
}

} // namespace

QString OpenPicture(QFile& file)
{
    QString error = OpenInput(file);
    if (!error.isEmpty()) {
        return error;
    }
    // The library that unpacks pictures says there, in its own form, what is wrong.
    const platform::ErrorOutputTurnedOff silence;
    QImageReader reader(&file);
    const QByteArray format = reader.format();
    const QSize size = reader.size();
    if (!reader.canRead()) {
        return NoPicture();
    }
    if (qint64(size.width()) * size.height() > MaxPixels) {
        return QStringLiteral("has %1 pixels, which are too many.").arg(SizeText(size));
    }
    if (format == "png" && IsCutOffPng(file)) {
        return QStringLiteral("is a picture that is cut off.");
    }
    return file.seek(0) ? QString() : NoPicture();
}

QImage ReadPicture(const QString& path)
{
    QFile file(path);
    QString error = OpenPicture(file);
    QImage picture;
    if (error.isEmpty()) {
        const platform::ErrorOutputTurnedOff silence;
        picture = QImageReader(&file).read();
    }
    if (picture.isNull()) {
        Console::PrintError(path, error.isEmpty() ? NoPicture() : error);
    }
    return picture;
}

bool WritePicture(const QString& path, const QImage& picture)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (picture.isNull() || !picture.save(&buffer, "PNG")) {
        Console::PrintError(path, QStringLiteral("there is no memory for the picture."));
        return false;
    }
    if (Interruption::HasCome()) {
        return false;
    }
    OutputFile file(path);
    if (!file.Open() || !file.Write(bytes) || !file.Commit()) {
        Console::PrintError(path, QStringLiteral("cannot be written: %1.").arg(file.ErrorString()));
        return false;
    }
    return true;
}
