#include "app/InputFile.h"

#include <QFile>
#include <QFileInfo>
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

QString OpenForReading(QFile& file, QIODevice::OpenMode flags)
{
    const QFileInfo info(file.fileName());
    if (!info.exists()) {
        return file.fileName().contains(QChar::ReplacementCharacter)
                   ? QStringLiteral("does not exist, or its name is no UTF-8.")
                   : QStringLiteral("does not exist.");
    }
    if (!info.isFile()) {
        return QStringLiteral("is no file.");
    }
    return file.open(QIODevice::ReadOnly | flags)
               ? QString()
               : QStringLiteral("cannot be read: %1.").arg(file.errorString());
}

QString OpenPictureForReading(QFile& file)
{
    QString error = OpenForReading(file);
    if (!error.isEmpty()) {
        return error;
    }
    QImageReader reader(&file);
    const QByteArray format = reader.format();
    const QSize size = reader.size();
    if (!reader.canRead()) {
        return NoPicture();
    }
    if (qint64(size.width()) * size.height() > MaxPixels) {
        return QStringLiteral("has %1x%2 pixels, which are too many.")
            .arg(QString::number(size.width()), QString::number(size.height()));
    }
    if (format == "png" && IsCutOffPng(file)) {
        return QStringLiteral("is a picture that is cut off.");
    }
    return file.seek(0) ? QString() : NoPicture();
}
