#include "tool/InputFiles.h"

#include "tool/Console.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <sys/stat.h>

#include <algorithm>

namespace {

/// False for what does not exist.
bool GetStatus(const QString& path, struct stat& status)
{
    return stat(QFile::encodeName(path).constData(), &status) == 0;
}

} // namespace

QString OpenInput(QFile& file, QIODevice::OpenMode flags)
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

QString WalkDocument(QFile& file, const std::function<void(QXmlStreamReader&)>& takeElement)
{
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement()) {
            takeElement(xml);
        }
    }
    return xml.hasError()
               ? QStringLiteral("line %1: %2").arg(xml.lineNumber()).arg(xml.errorString())
               : QString();
}

bool IsInput(const QString& target, const QStringList& inputs)
{
    struct stat written = {};
    if (!GetStatus(target, written)) {
        return false;
    }
    const bool isInput = std::any_of(inputs.begin(), inputs.end(), [&](const QString& input) {
        struct stat read = {};
        return GetStatus(input, read) && read.st_dev == written.st_dev &&
               read.st_ino == written.st_ino;
    });
    if (isInput) {
        Console::PrintError(target, QStringLiteral("is read by this command."));
    }
    return isInput;
}
