#include "tool/ProjectData.h"

#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "app/Xml.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryTypeList.h"
#include "tool/Console.h"
#include "tool/InputFiles.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

void SpawnTotals::operator+=(const SpawnTotals& more)
{
    staticMin += more.staticMin;
    staticMax += more.staticMax;
    dynamicMin += more.dynamicMin;
    dynamicMax += more.dynamicMax;
}

SpawnTotals TerritoryData::Totals() const
{
    SpawnTotals totals;
    for (const ZoneData& zone : zones) {
        const SpawnCounts& counts = zone.values.counts;
        totals += {counts.staticMin, counts.staticMax, counts.dynamicMin, counts.dynamicMax};
    }
    return totals;
}

QString ProjectData::BitmapPath(const LayerData& layer) const
{
    return folder.filePath(QStringLiteral("layers/") + layer.name + QStringLiteral(".tga"));
}

QString ProjectData::BackgroundPath() const
{
    return folder.path() + QLatin1Char('/') + backgroundFile;
}

QStringList ProjectData::Files() const
{
    QStringList files = {path};
    for (const LayerData& layer : layers) {
        files.append(BitmapPath(layer));
    }
    if (!backgroundFile.isEmpty()) {
        files.append(BackgroundPath());
    }
    return files;
}

namespace {

LayerData ReadLayer(const QXmlStreamReader& xml)
{
    const LayerRecord record = LayerRecord::Read(xml);
    return {record.name, record.usageFlags, record.valueFlags, QColor::fromRgba(record.color),
            record.isVisible};
}

ZoneData ReadZone(const QXmlStreamReader& xml)
{
    ZoneData zone;
    zone.values.ReadXml(xml);
    zone.x = FloatAttribute(xml, QLatin1String("x"), 0);
    zone.z = FloatAttribute(xml, QLatin1String("z"), 0);
    return zone;
}

TerritoryData ReadTerritory(QXmlStreamReader& xml)
{
    TerritoryData territory;
    territory.name = TextAttribute(xml, QLatin1String("name"));
    territory.color = UIntAttribute(xml, QLatin1String("color"), 0);
    territory.isVisible = IntAttribute(xml, QLatin1String("visible"), 0) > 0;
    WalkXml(xml,
            {{QLatin1String("zone"),
              [&territory](QXmlStreamReader& element) {
                  territory.zones.append(ReadZone(element));
                  return true;
              }}},
            QLatin1String("territory"));
    return territory;
}

void ReadLayers(QXmlStreamReader& xml, QVector<LayerData>& layers)
{
    WalkXml(xml,
            {{QLatin1String("layer"),
              [&layers](QXmlStreamReader& element) {
                  layers.append(ReadLayer(element));
                  return true;
              }}},
            QLatin1String("layers"));
}

/// Returns what is wrong; empty for a well-formed document with the sizes of a project.
QString DocumentError(QFile& file)
{
    bool hasGlobal = false;
    const QString error = WalkDocument(file, [&hasGlobal](const QXmlStreamReader& xml) {
        hasGlobal = hasGlobal || xml.name() == QLatin1String("global");
    });
    return hasGlobal || !error.isEmpty()
               ? error
               : QStringLiteral("is no project: there is no element \"global\" in it.");
}

void TakeSettings(ProjectData& project)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    project.backgroundFile = settings.BackgroundFile();
    project.backgroundColor = settings.BackgroundColor();
    project.layerSize = settings.LayerSize();
    project.worldSize = {settings.WorldWidth(), settings.WorldHeight()};
    project.flagTypes = settings.FlagTypes();
}

} // namespace

TerritoryTypeData ReadTerritoryType(QXmlStreamReader& xml)
{
    TerritoryTypeData type;
    type.name = TextAttribute(xml, QLatin1String("name"));
    WalkXml(xml,
            {{QLatin1String("territory"),
              [&type](QXmlStreamReader& element) {
                  type.territories.append(ReadTerritory(element));
                  return true;
              }}},
            QLatin1String("territory-type"));
    return type;
}

QVector<TerritoryTypeData> ReadTerritoryTypes(QXmlStreamReader& xml)
{
    QVector<TerritoryTypeData> types;
    WalkXml(xml,
            {{QLatin1String("territory-type"),
              [&types](QXmlStreamReader& element) {
                  types.append(ReadTerritoryType(element));
                  return true;
              }}},
            QLatin1String("territory-type-list"));
    return types;
}

bool ReadProject(const QString& path, ProjectData& project)
{
    project = {};
    project.path = path;
    project.folder = QFileInfo(path).absoluteDir();
    project.name = QFileInfo(path).baseName();
    QFile file(path);
    QString error = OpenInput(file);
    if (error.isEmpty()) {
        error = DocumentError(file);
    }
    if (!error.isEmpty()) {
        Console::PrintError(path, error);
        return false;
    }
    ProjectSettings::Instance().SetFlagTypes({});
    ProjectReader reader(file);
    reader.Read({[](QXmlStreamReader&) {},
                 [&project](QXmlStreamReader& xml) {
                     ReadLayers(xml, project.layers);
                     return true;
                 },
                 [&project](QXmlStreamReader& xml) {
                     project.types += ReadTerritoryTypes(xml);
                     return true;
                 }});
    TakeSettings(project);
    return true;
}

std::optional<ProjectValues> ReadProjectValues(const QString& path)
{
    QFile file(path);
    QString error = OpenInput(file);
    if (error.isEmpty()) {
        error = DocumentError(file);
    }
    if (!error.isEmpty()) {
        Console::PrintError(path, error);
        return {};
    }
    const Console::CurrentFile current(path);
    ProjectSettings::Instance().SetFlagTypes({});
    return ReadProjectText(file);
}

bool ReadTypeList(const QString& path, TerritoryTypeList& types)
{
    QFile file(path);
    const QString error = OpenInput(file);
    if (!error.isEmpty()) {
        Console::PrintError(path, error);
        return false;
    }
    const Console::CurrentFile current(path);
    ProjectReader reader(file);
    reader.Read({[](QXmlStreamReader&) {},
                 [](QXmlStreamReader& xml) { return WalkXml(xml, {}, QLatin1String("layers")); },
                 [&types](QXmlStreamReader& xml) { return types.Read(xml, nullptr); }});
    return true;
}

bool ReadFlagTypes(const QString& path, AreaFlagTypes& types)
{
    QFile file(path);
    QString error = OpenInput(file);
    if (error.isEmpty()) {
        error = WalkDocument(file, [&types](const QXmlStreamReader& xml) {
            if (xml.name() == QLatin1String("usage")) {
                types.usages.append(TextAttribute(xml, QLatin1String("name")));
            } else if (xml.name() == QLatin1String("value")) {
                types.values.append(TextAttribute(xml, QLatin1String("name")));
            }
        });
    }
    if (!error.isEmpty()) {
        Console::PrintError(path, error);
    }
    return error.isEmpty();
}
