#include "tool/NumberReports.h"

#include "layers/AreaScale.h"
#include "layers/raster/FieldLayout.h"
#include "layers/raster/Mask.h"
#include "territories/ZoneNumbers.h"
#include "tool/FieldBands.h"
#include "tool/Interruption.h"
#include "tool/LayerBitmap.h"
#include "tool/Progress.h"
#include "tool/ProjectData.h"
#include "tool/Report.h"

#include <QRect>

#include <optional>

namespace {

constexpr int KmDigits = 3;
constexpr int DensityDigits = 2;

/// Around what a layer covers: everywhere, and in the columns that either section of the map has.
struct LayerBounds
{
    QRect all;
    QRect inUsages;
    QRect inValues;
};

/// Around what a band covers in its first columns.
QRect BoundsOf(const QImage& band, int columns)
{
    return raster::SetBounds(columns < band.width() ? band.copy(0, 0, columns, band.height())
                                                    : band);
}

/// Returns nothing after printing an error, and after an interruption.
std::optional<LayerBounds> FindBounds(const LayerBitmap& bitmap, int usageColumns, int valueColumns)
{
    LayerBounds bounds;
    // Bands count from the bottom.
    int top = bitmap.Size().height();
    for (int i = 0; i < bitmap.BandCount(); ++i) {
        top -= qMin(raster::TargaBands::BandRows, top);
        if (bitmap.IsClear(i)) {
            continue;
        }
        const QImage band = bitmap.Band(i);
        if (band.isNull() || Interruption::HasCome()) {
            return {};
        }
        bounds.all |= BoundsOf(band, band.width()).translated(0, top);
        bounds.inUsages |= BoundsOf(band, usageColumns).translated(0, top);
        bounds.inValues |= BoundsOf(band, valueColumns).translated(0, top);
    }
    return bounds;
}

/// Adds nothing for an empty rectangle.
void AddBounds(Report& report, const AreaScale& scale, const QRect& bounds)
{
    if (bounds.isEmpty()) {
        return;
    }
    const QRectF metres = scale.InWorld(bounds);
    report.Add(QStringLiteral("x-min"), AreaScale::Rounded(metres.left(), KmDigits));
    report.Add(QStringLiteral("x-max"), AreaScale::Rounded(metres.right(), KmDigits));
    report.Add(QStringLiteral("z-min"), AreaScale::Rounded(metres.top(), KmDigits));
    report.Add(QStringLiteral("z-max"), AreaScale::Rounded(metres.bottom(), KmDigits));
}

/// One entry for each flag that the map has somewhere.
QVector<Report> FlagReports(const ProjectData& project, const QVector<LayerBounds>& layers,
                            quint32 LayerData::*flags, QRect LayerBounds::*boundsIn, int bits,
                            const QVector<QString>& names, const AreaScale& scale)
{
    QVector<Report> reports;
    for (int bit = 0; bit < bits; ++bit) {
        QRect bounds;
        for (int i = 0; i < layers.size(); ++i) {
            if ((project.layers.at(i).*flags & (1U << bit)) != 0) {
                bounds |= layers.at(i).*boundsIn;
            }
        }
        if (bounds.isEmpty()) {
            continue;
        }
        Report report;
        report.Add(QStringLiteral("name"), AreaFlagTypes::BitName(bit, names));
        AddBounds(report, scale, bounds);
        reports.append(report);
    }
    return reports;
}

Report ZoneReport(const QString& name, const QString& of, const ZoneSums& sums)
{
    Report report;
    report.Add(QStringLiteral("name"), name);
    report.Add(QStringLiteral("of"), of);
    report.Add(QStringLiteral("zones"), sums.zones);
    report.Add(QStringLiteral("creatures-min"), sums.creaturesMin);
    report.Add(QStringLiteral("creatures-max"), sums.creaturesMax);
    report.Add(QStringLiteral("circles-km2"), AreaScale::Rounded(sums.squareKm, KmDigits));
    if (const std::optional<double> least = sums.MinPerSquareKm()) {
        report.Add(QStringLiteral("min-per-km2"), AreaScale::Rounded(*least, DensityDigits));
    }
    if (const std::optional<double> most = sums.MaxPerSquareKm()) {
        report.Add(QStringLiteral("max-per-km2"), AreaScale::Rounded(*most, DensityDigits));
    }
    return report;
}

} // namespace

bool AddPixelNumbers(Report& report, const ProjectData& project, const ProjectFields& fields)
{
    const int width = project.layerSize.width();
    const int usageColumns = raster::FieldLayout(fields.UsageBits(), width).FieldsPerRow();
    const int valueColumns = raster::FieldLayout(fields.ValueBits(), width).FieldsPerRow();
    const AreaScale scale(project.layerSize, project.worldSize);
    Progress progress(QStringLiteral("Finding layers"), project.layers.size());
    QVector<LayerBounds> layers;
    QVector<Report> reports;
    for (int i = 0; i < project.layers.size(); ++i) {
        const LayerBitmap& bitmap = fields.Bitmap(i);
        raster::PixelCounts counts;
        const std::optional<LayerBounds> bounds = FindBounds(bitmap, usageColumns, valueColumns);
        if (!bounds || !bitmap.CountPixels(counts)) {
            return false;
        }
        Report layer;
        layer.Add(QStringLiteral("name"), project.layers.at(i).name);
        layer.Add(QStringLiteral("greys"), counts.other);
        AddBounds(layer, scale, bounds->all);
        reports.append(layer);
        layers.append(*bounds);
        progress.Step();
    }
    report.Add(QStringLiteral("layer-bounds"), reports);
    report.Add(QStringLiteral("usage-bounds"),
               FlagReports(project, layers, &LayerData::usageFlags, &LayerBounds::inUsages,
                           fields.UsageBits(), project.flagTypes.usages, scale));
    report.Add(QStringLiteral("value-bounds"),
               FlagReports(project, layers, &LayerData::valueFlags, &LayerBounds::inValues,
                           fields.ValueBits(), project.flagTypes.values, scale));
    return true;
}

void AddZoneNumbers(Report& report, const ProjectData& project)
{
    QVector<Report> reports;
    ZoneNumbers all;
    for (const TerritoryTypeData& type : project.types) {
        ZoneNumbers ofType;
        QVector<Report> territories;
        for (const TerritoryData& territory : type.territories) {
            ZoneNumbers numbers;
            for (const ZoneData& zone : territory.zones) {
                numbers.Add(zone.values);
            }
            territories.append(ZoneReport(QStringLiteral("%1 / %2").arg(type.name, territory.name),
                                          QStringLiteral("territory"), numbers.All()));
            ofType += numbers;
        }
        reports.append(ZoneReport(type.name, QStringLiteral("type"), ofType.All()));
        reports += territories;
        all += ofType;
    }
    const std::vector<ZoneNumbers::UsageSums> usages = all.Usages();
    for (const ZoneNumbers::UsageSums& usage : usages) {
        reports.append(ZoneReport(usage.name, QStringLiteral("usage"), usage.sums));
    }
    reports.append(ZoneReport(QStringLiteral("all zones"), QStringLiteral("project"), all.All()));
    report.Add(QStringLiteral("zone-numbers"), reports);
}
