#include "app/BatchExport.h"

#include "app/Leftovers.h"
#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectSettings.h"
#include "app/Xml.h"
#include "layers/LayerList.h"
#include "territories/TerritoryTypeList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace {

QString DefaultOutputFolder(const QString& configPath, const QDir& configDir)
{
    // The path contains the typed folder twice. Pipelines rely on that place.
    return QStringLiteral("%1/%2/Output")
        .arg(configDir.path(), configPath.section(QLatin1Char('/'), 0, -2));
}

void ExportTypes(const TerritoryTypeList& types)
{
    if (types.IsEmpty()) {
        return;
    }
    // The number shows success as 1 and failure as 0. It does not count types.
    const int isExported = types.ExportAll() ? 1 : 0;
    LogSuccess(QStringLiteral("%1 territory types exported.").arg(isExported));
}

/// The map and the types before it take their places together.
void ExportMap(const LayerList& layers, const QString& path, OutputGroup& group)
{
    const bool isMade = layers.SaveMap(path);
    if (!group.Commit() || !isMade) {
        LogError(QStringLiteral("Failed to export area map to file '%1'.").arg(path));
    }
}

} // namespace

void ReadBatchDocument(QIODevice& device, LayerList& layers, TerritoryTypeList& types)
{
    QXmlStreamReader xml(&device);
    WalkXml(xml, {
                     {QLatin1String("global"),
                      [](QXmlStreamReader& element) {
                          ProjectSettings::Instance().ReadXml(element);
                          return true;
                      }},
                     {QLatin1String("layers"),
                      [&layers](QXmlStreamReader& element) {
                          layers.ReadXml(element);
                          return true;
                      }},
                     {QLatin1String("territory-type-list"),
                      [&types](QXmlStreamReader& element) {
                          types.Read(element, nullptr);
                          return true;
                      }},
                 });
}

ExitCode RunBatchExport(const QString& configPath, const QString& outputPath)
{
    TidyFolderOf(configPath);
    QFile file(configPath);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        LogError(QStringLiteral("Failed to open file '%1' for reading.").arg(configPath));
        return ExitNoConfig;
    }
    const QFileInfo config(file);
    const QDir configDir = config.absoluteDir();
    LayerList layers;
    TerritoryTypeList types;
    ReadBatchDocument(file, layers, types);

    const QString folder =
        outputPath.isEmpty() ? DefaultOutputFolder(configPath, configDir) : outputPath;
    if (!configDir.mkpath(folder)) {
        LogError(QStringLiteral("Failed to create path '%1'.").arg(folder));
        return ExitNoOutputFolder;
    }
    OutputGroup group;
    ExportTypes(types);
    ExportMap(
        layers,
        QStringLiteral("%1/%2.map").arg(configDir.absoluteFilePath(folder), config.baseName()),
        group);
    return ExitDone;
}
