#include "tool/InputFiles.h"

#include "app/Leftovers.h"
#include "platform/Files.h"
#include "tool/Console.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>
#include <filesystem>

QString OpenInput(QFile& file, QIODevice::OpenMode flags)
{
    TidyFolderOf(file.fileName());
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
    const bool isInput = std::any_of(inputs.begin(), inputs.end(), [&](const QString& input) {
        std::error_code isMissing;
        return std::filesystem::equivalent(platform::ToPath(target), platform::ToPath(input),
                                           isMissing);
    });
    if (isInput) {
        Console::PrintError(target, QStringLiteral("is read by this command."));
    }
    return isInput;
}
