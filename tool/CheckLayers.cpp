#include "tool/Findings.h"

#include "tool/Console.h"
#include "tool/LayerBitmap.h"
#include "tool/Progress.h"
#include "tool/ProjectData.h"

#include <QDir>
#include <QSet>

namespace {

QString PlaceOf(const LayerData& layer)
{
    return QStringLiteral("layer ") + Console::Quoted(layer.name);
}

/// The numbers of the set bits that have no flag type, with commas between them.
QString UnnamedBits(quint32 flags, int typeCount)
{
    QStringList bits;
    for (int bit = typeCount; bit < AreaFlagTypes::MaxCount; ++bit) {
        if ((flags >> bit & 1U) != 0) {
            bits.append(QString::number(bit));
        }
    }
    return bits.join(QStringLiteral(", "));
}

void CheckBits(const QString& kind, const LayerData& layer, quint32 flags, int typeCount,
               Findings& findings)
{
    const QString bits = UnnamedBits(flags, typeCount);
    if (!bits.isEmpty()) {
        findings.append(
            {QStringLiteral("unnamed-flag"), Severity::Error, PlaceOf(layer),
             QStringLiteral("no flag type names %1 bit %2.").arg(kind, bits),
             QStringLiteral("Add the missing flag types, or save the layer's flags anew.")});
    }
}

void CheckFlags(const ProjectData& project, const LayerData& layer, Findings& findings)
{
    CheckBits(QStringLiteral("usage"), layer, layer.usageFlags, project.flagTypes.usages.size(),
              findings);
    CheckBits(QStringLiteral("value"), layer, layer.valueFlags, project.flagTypes.values.size(),
              findings);
    if ((layer.usageFlags | layer.valueFlags) == 0) {
        findings.append({QStringLiteral("layer-without-flags"), Severity::Warning, PlaceOf(layer),
                         QStringLiteral("it has no flags and leaves no trace in the map."),
                         QStringLiteral("Check its flags in the layer properties.")});
    }
}

QString RuleOf(LayerBitmap::Problem problem)
{
    switch (problem) {
    case LayerBitmap::Problem::Missing:
        return QStringLiteral("bitmap-missing");
    case LayerBitmap::Problem::WrongSize:
        return QStringLiteral("bitmap-size");
    default:
        return QStringLiteral("bitmap-unreadable");
    }
}

void CheckPixels(const LayerData& layer, const LayerBitmap& bitmap, Findings& findings)
{
    raster::PixelCounts counts;
    if (!bitmap.CountPixels(counts)) {
        findings.append({RuleOf(LayerBitmap::Problem::Unreadable), Severity::Error, PlaceOf(layer),
                         QStringLiteral("its bitmap cannot be read."),
                         QStringLiteral("Try again, or restore the bitmap from a backup.")});
        return;
    }
    if (counts.Covered() == 0) {
        findings.append({QStringLiteral("layer-without-pixels"), Severity::Warning, PlaceOf(layer),
                         QStringLiteral("nothing is painted in it."),
                         QStringLiteral("Paint it or remove it.")});
    }
    if (counts.other > 0) {
        findings.append(
            {QStringLiteral("mask-value"), Severity::Warning, PlaceOf(layer),
             QStringLiteral("%1 pixels are neither 0 nor 255: the map has them, and the "
                            "editor does not show them.")
                 .arg(counts.other),
             QStringLiteral("Make them 0 or 255.")});
    }
}

void CheckBitmap(const ProjectData& project, const LayerData& layer, Findings& findings)
{
    const LayerBitmap bitmap(project, layer);
    // CheckNames has reported such a name already.
    if (bitmap.GetProblem() == LayerBitmap::Problem::Outside) {
        return;
    }
    if (bitmap.GetProblem() != LayerBitmap::Problem::None) {
        findings.append(
            {RuleOf(bitmap.GetProblem()), Severity::Error, PlaceOf(layer),
             QStringLiteral("its bitmap ") + bitmap.Error(),
             QStringLiteral("The editor leaves the layer out; put a bitmap of the layer "
                            "size in its place.")});
        return;
    }
    if (bitmap.IsCutOff()) {
        findings.append({QStringLiteral("bitmap-cut-off"), Severity::Error, PlaceOf(layer),
                         QStringLiteral("its bitmap ends before its last pixel."),
                         QStringLiteral("Restore the bitmap from a backup.")});
    }
    CheckPixels(layer, bitmap, findings);
}

void CheckOrphans(const ProjectData& project, Findings& findings)
{
    QSet<QString> wanted;
    for (const LayerData& layer : project.layers) {
        wanted.insert(layer.name + QStringLiteral(".tga"));
    }
    const QDir folder(project.folder.filePath(QStringLiteral("layers")));
    const QStringList files =
        folder.entryList({QStringLiteral("*.tga")}, QDir::Files | QDir::Hidden, QDir::Name);
    for (const QString& file : files) {
        if (!wanted.contains(file)) {
            findings.append({QStringLiteral("orphan-bitmap"), Severity::Warning,
                             QStringLiteral("bitmap ") + Console::Quoted(file),
                             QStringLiteral("no layer has it."),
                             QStringLiteral("Remove it from the folder 'layers'.")});
        }
    }
}

} // namespace

void CheckLayers(const ProjectData& project, Findings& findings)
{
    {
        Progress progress(QStringLiteral("Checking layers"), project.layers.size());
        for (const LayerData& layer : project.layers) {
            CheckFlags(project, layer, findings);
            CheckBitmap(project, layer, findings);
            progress.Step();
        }
    }
    CheckOrphans(project, findings);
}
