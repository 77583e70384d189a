#include "tool/PictureFile.h"

#include "app/InputFile.h"
#include "app/Leftovers.h"
#include "app/OutputFile.h"
#include "platform/ErrorOutput.h"
#include "tool/Console.h"
#include "tool/Interruption.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>

namespace {

QString NoPicture()
{
    return QStringLiteral("is no picture that can be read.");
}

} // namespace

QString OpenPicture(QFile& file)
{
    TidyFolderOf(file.fileName());
    // The library that unpacks pictures says there, in its own form, what is wrong.
    const platform::ErrorOutputTurnedOff silence;
    return OpenPictureForReading(file);
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
