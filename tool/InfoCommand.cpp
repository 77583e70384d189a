#include "layers/AreaScale.h"
#include "layers/raster/BitFieldRaster.h"
#include "tool/Commands.h"
#include "tool/FieldBands.h"
#include "tool/FieldCounts.h"
#include "tool/FileKind.h"
#include "tool/InputFiles.h"
#include "tool/Interruption.h"
#include "tool/LayerBitmap.h"
#include "tool/NumberReports.h"
#include "tool/Progress.h"
#include "tool/ProjectData.h"
#include "tool/Report.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QXmlStreamReader>

#include <functional>
#include <optional>

namespace {

void AddArea(Report& report, const AreaScale& scale, qint64 pixels)
{
    report.Add(QStringLiteral("pixels"), pixels);
    report.Add(QStringLiteral("km2"), AreaScale::Rounded(scale.SquareKm(pixels), 3));
    report.Add(QStringLiteral("percent"), AreaScale::Rounded(scale.Percent(pixels), 2));
}

void AddSizes(Report& report, QSize layerSize, QSize worldSize)
{
    report.Add(QStringLiteral("width"), layerSize.width());
    report.Add(QStringLiteral("height"), layerSize.height());
    report.Add(QStringLiteral("world-width"), worldSize.width());
    report.Add(QStringLiteral("world-height"), worldSize.height());
}

struct MapCounts
{
    FieldCounts usages;
    FieldCounts values;
};

/// Returns false after printing an error.
bool CountFields(FieldBands& fields, MapCounts& counts)
{
    Progress progress(QStringLiteral("Counting"), fields.BandCount());
    for (int band = 0; band < fields.BandCount(); ++band) {
        const std::optional<FieldBand> rows = fields.Read(band);
        if (!rows) {
            return false;
        }
        counts.usages.Add(rows->usages);
        counts.values.Add(rows->values);
        progress.Step();
    }
    return true;
}

/// One entry for each flag. Bits without a name are left out if no pixel has them. counts is null
/// if the counts are not known.
QVector<Report> FlagReports(const FieldCounts* counts, int bits, const QVector<QString>& names,
                            const AreaScale& scale)
{
    QVector<Report> reports;
    for (int bit = 0; bit < qMax(bits, names.size()); ++bit) {
        const qint64 pixels = counts && bit < bits ? counts->Of(bit) : 0;
        if (bit >= names.size() && pixels == 0) {
            continue;
        }
        Report report;
        report.Add(QStringLiteral("name"), AreaFlagTypes::BitName(bit, names));
        if (bit < names.size()) {
            report.Add(QStringLiteral("bit"), bit);
        }
        if (counts) {
            AddArea(report, scale, pixels);
        }
        reports.append(report);
    }
    return reports;
}

void AddTotals(Report& report, const SpawnTotals& totals)
{
    report.Add(QStringLiteral("static-min"), totals.staticMin);
    report.Add(QStringLiteral("static-max"), totals.staticMax);
    report.Add(QStringLiteral("dynamic-min"), totals.dynamicMin);
    report.Add(QStringLiteral("dynamic-max"), totals.dynamicMax);
}

Report TerritoriesReport(const QVector<TerritoryData>& territories)
{
    int zones = 0;
    SpawnTotals totals;
    for (const TerritoryData& territory : territories) {
        zones += territory.zones.size();
        totals += territory.Totals();
    }
    Report report;
    report.Add(QStringLiteral("territories"), territories.size());
    report.Add(QStringLiteral("zones"), zones);
    AddTotals(report, totals);
    return report;
}

/// Entries of layers whose bitmap cannot be read have no counts. fields is null if not all bitmaps
/// can be read.
QVector<Report> LayerReports(const ProjectData& project, const ProjectFields* fields,
                             const AreaScale& scale)
{
    Progress progress(QStringLiteral("Reading layers"), project.layers.size());
    QVector<Report> reports;
    for (int i = 0; i < project.layers.size(); ++i) {
        const LayerData& layer = project.layers.at(i);
        Report report;
        report.Add(QStringLiteral("name"), layer.name);
        report.Add(QStringLiteral("visible"), layer.isVisible);
        report.Add(QStringLiteral("usages"), FlagNames(layer.usageFlags, project.flagTypes.usages));
        report.Add(QStringLiteral("values"), FlagNames(layer.valueFlags, project.flagTypes.values));
        std::optional<LayerBitmap> opened;
        const LayerBitmap& bitmap = fields ? fields->Bitmap(i) : opened.emplace(project, layer);
        raster::PixelCounts counts;
        if (bitmap.GetProblem() == LayerBitmap::Problem::None && bitmap.CountPixels(counts)) {
            AddArea(report, scale, counts.Covered());
        }
        reports.append(report);
        progress.Step();
    }
    return reports;
}

ToolExit DescribeProject(const QString& path, bool asJson)
{
    ProjectData project;
    if (!ReadProject(path, project)) {
        return ToolExit::Unreadable;
    }
    ProjectFields fields;
    MapCounts counts;
    const bool areCounted =
        fields.Open(project, ProjectFields::CutOffBitmaps::Fill) && CountFields(fields, counts);
    if (Interruption::HasCome()) {
        return ToolExit::Unreadable;
    }
    const AreaScale scale(project.layerSize, project.worldSize);
    QVector<Report> types;
    QVector<TerritoryData> territories;
    for (const TerritoryTypeData& type : qAsConst(project.types)) {
        Report typeReport;
        typeReport.Add(QStringLiteral("name"), type.name);
        typeReport.Append(TerritoriesReport(type.territories));
        types.append(typeReport);
        territories += type.territories;
    }
    Report report;
    report.Add(QStringLiteral("file"), path);
    report.Add(QStringLiteral("kind"), QStringLiteral("project"));
    AddSizes(report, project.layerSize, project.worldSize);
    report.Add(QStringLiteral("background"), project.backgroundFile);
    report.Add(QStringLiteral("layers"),
               LayerReports(project, areCounted ? &fields : nullptr, scale));
    const FieldCounts* usageCounts = areCounted ? &counts.usages : nullptr;
    const FieldCounts* valueCounts = areCounted ? &counts.values : nullptr;
    report.Add(QStringLiteral("usage-flags"),
               FlagReports(usageCounts, fields.UsageBits(), project.flagTypes.usages, scale));
    report.Add(QStringLiteral("value-flags"),
               FlagReports(valueCounts, fields.ValueBits(), project.flagTypes.values, scale));
    report.Add(QStringLiteral("territory-types"), types);
    report.Add(QStringLiteral("all-territories"), TerritoriesReport(territories));
    if (areCounted && !AddPixelNumbers(report, project, fields)) {
        return ToolExit::Unreadable;
    }
    AddZoneNumbers(report, project);
    report.Print(asJson);
    return areCounted ? ToolExit::Done : ToolExit::Unreadable;
}

ToolExit DescribeMap(const QString& path, const AreaFlagTypes& types, bool asJson)
{
    MapFields fields;
    MapCounts counts;
    if (!fields.Open(path) || !CountFields(fields, counts)) {
        return ToolExit::Unreadable;
    }
    const AreaScale scale(fields.Size(), fields.WorldSize());
    Report report;
    report.Add(QStringLiteral("file"), path);
    report.Add(QStringLiteral("kind"), QStringLiteral("map"));
    AddSizes(report, fields.Size(), fields.WorldSize());
    report.Add(QStringLiteral("usage-bits"), fields.UsageBits());
    report.Add(QStringLiteral("value-bits"), fields.ValueBits());
    report.Add(QStringLiteral("usage-flags"),
               FlagReports(&counts.usages, fields.UsageBits(), types.usages, scale));
    report.Add(QStringLiteral("value-flags"),
               FlagReports(&counts.values, fields.ValueBits(), types.values, scale));
    report.Print(asJson);
    return ToolExit::Done;
}

ToolExit DescribeBitmap(const QString& path, bool asJson)
{
    const LayerBitmap bitmap(path);
    raster::PixelCounts counts;
    if (!bitmap.CountPixels(counts)) {
        return ToolExit::Unreadable;
    }
    const double pixelCount = double(bitmap.Size().width()) * bitmap.Size().height();
    Report report;
    report.Add(QStringLiteral("file"), path);
    report.Add(QStringLiteral("kind"), QStringLiteral("layer bitmap"));
    report.Add(QStringLiteral("width"), bitmap.Size().width());
    report.Add(QStringLiteral("height"), bitmap.Size().height());
    report.Add(QStringLiteral("cut-off"), bitmap.IsCutOff());
    report.Add(QStringLiteral("set"), counts.set);
    report.Add(QStringLiteral("clear"), counts.clear);
    report.Add(QStringLiteral("other"), counts.other);
    report.Add(QStringLiteral("percent"),
               AreaScale::Rounded(100 * double(counts.Covered()) / pixelCount, 2));
    report.Print(asJson);
    return ToolExit::Done;
}

/// Returns false after printing an error.
bool ReadElements(const QString& path, const std::function<void(QXmlStreamReader&)>& takeElement)
{
    QFile file(path);
    QString error = OpenInput(file);
    if (error.isEmpty()) {
        error = WalkDocument(file, takeElement);
    }
    if (!error.isEmpty()) {
        Console::PrintError(path, error);
    }
    return error.isEmpty();
}

ToolExit DescribeType(const QString& path, bool asJson)
{
    QVector<TerritoryData> territories;
    const auto read = [&territories](QXmlStreamReader& xml) {
        if (xml.name() == QLatin1String("territory-type")) {
            territories += ReadTerritoryType(xml).territories;
        }
    };
    if (!ReadElements(path, read)) {
        return ToolExit::Unreadable;
    }
    Report report;
    report.Add(QStringLiteral("file"), path);
    report.Add(QStringLiteral("kind"), QStringLiteral("territory type"));
    QVector<Report> each;
    for (int i = 0; i < territories.size(); ++i) {
        Report territory;
        territory.Add(QStringLiteral("number"), i + 1);
        territory.Add(QStringLiteral("zones"), territories.at(i).zones.size());
        AddTotals(territory, territories.at(i).Totals());
        each.append(territory);
    }
    report.Add(QStringLiteral("territories"), each);
    report.Add(QStringLiteral("all-territories"), TerritoriesReport(territories));
    report.Print(asJson);
    return ToolExit::Done;
}

QJsonArray NameArray(const QVector<QString>& names)
{
    return QJsonArray::fromStringList(names.toList());
}

ToolExit DescribeAreaTypes(const QString& path, bool asJson)
{
    AreaFlagTypes types;
    if (!ReadFlagTypes(path, types)) {
        return ToolExit::Unreadable;
    }
    Report report;
    report.Add(QStringLiteral("file"), path);
    report.Add(QStringLiteral("kind"), QStringLiteral("area types"));
    report.Add(QStringLiteral("usages"), NameArray(types.usages));
    report.Add(QStringLiteral("values"), NameArray(types.values));
    report.Print(asJson);
    return ToolExit::Done;
}

ToolExit Info(const QStringList& files, const QCommandLineParser& options)
{
    const QString& path = files.first();
    const bool asJson = options.isSet(QStringLiteral("json"));
    FileKind kind = FileKind::Project;
    if (!FindKind(path, kind)) {
        return ToolExit::Unreadable;
    }
    AreaFlagTypes types;
    const bool isMap = kind == FileKind::Map;
    if (const auto error = ReadTypesOption(QStringLiteral("info"), options, isMap, types)) {
        return *error;
    }
    switch (kind) {
    case FileKind::Project:
        return DescribeProject(path, asJson);
    case FileKind::TerritoryType:
        return DescribeType(path, asJson);
    case FileKind::AreaTypes:
        return DescribeAreaTypes(path, asJson);
    case FileKind::Map:
        return DescribeMap(path, types, asJson);
    case FileKind::Bitmap:
        break;
    }
    return DescribeBitmap(path, asJson);
}

} // namespace

Command InfoCommand()
{
    return {
        QStringLiteral("info"),
        QStringLiteral("FILE"),
        1,
        QStringLiteral("Show what a project, map, layer bitmap, territory type or area types file "
                       "holds."),
        {TypesOption(), {QStringLiteral("json"), QStringLiteral("Print the content as JSON.")}},
        Info};
}
