#include "tool/PictureFile.h"

#include "app/OutputFile.h"
#include "tool/Console.h"
#include "tool/Interruption.h"

#include <QBuffer>

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
