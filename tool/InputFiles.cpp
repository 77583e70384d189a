#include "tool/InputFiles.h"

#include "app/InputFile.h"
#include "app/Leftovers.h"
#include "platform/Files.h"
#include "tool/Console.h"

#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>
#include <filesystem>

QString OpenInput(QFile& file, QIODevice::OpenMode flags)
{
    TidyFolderOf(file.fileName());
    return OpenForReading(file, flags);
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
