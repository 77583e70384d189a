#include "tool/Findings.h"

#include "layers/raster/BitFieldRaster.h"
#include "layers/raster/Mask.h"
#include "tool/FieldBands.h"
#include "tool/PictureFile.h"
#include "tool/ProjectData.h"

#include <QFile>

namespace {

QString Project()
{
    return QStringLiteral("project");
}

void CheckSizes(const ProjectData& project, Findings& findings)
{
    const QString error = project.LayerSizeError();
    if (!error.isEmpty()) {
        findings.append({QStringLiteral("layer-size"), Severity::Error, Project(), error,
                         QStringLiteral("Choose a size from 1 to %1.").arg(raster::MaxMaskLength)});
    }
    if (project.worldSize.isEmpty()) {
        findings.append({QStringLiteral("world-size"), Severity::Error, Project(),
                         QStringLiteral("the world cannot be %1 metres large.")
                             .arg(SizeText(project.worldSize)),
                         QStringLiteral("Choose a size of at least 1.")});
    }
}

void CheckFlagTypeCount(const QString& kind, int count, Findings& findings)
{
    if (count > AreaFlagTypes::MaxCount) {
        findings.append(
            {QStringLiteral("too-many-flag-types"), Severity::Error, Project(),
             QStringLiteral("there are %1 %2 flag types, and a map holds %3.")
                 .arg(QString::number(count), kind, QString::number(AreaFlagTypes::MaxCount)),
             QStringLiteral("Remove those that are not needed.")});
    }
}

/// Reports columns that a map section does not hold.
void CheckMapColumns(const QString& kind, int flagCount, int width, Findings& findings)
{
    const int bits = raster::FieldBits(flagCount);
    if (!raster::IsFieldSize(bits) || width <= 0) {
        return;
    }
    const int lost = width % (32 / bits);
    if (lost > 0) {
        findings.append(
            {QStringLiteral("lost-map-columns"), Severity::Error, Project(),
             QStringLiteral("the %1 flags of the rightmost %2 of %3 columns have no "
                            "place in the map.")
                 .arg(kind)
                 .arg(lost)
                 .arg(width),
             QStringLiteral("Choose a layer size that is a multiple of %1.").arg(32 / bits)});
    }
}

void CheckBitmapColumns(int width, Findings& findings)
{
    if (width > 0 && width % 4 != 0) {
        findings.append(
            {QStringLiteral("lost-bitmap-columns"), Severity::Warning, Project(),
             QStringLiteral("some programs lose or shift columns of bitmaps that are %1 "
                            "pixels wide.")
                 .arg(width),
             QStringLiteral("Choose a layer size that is a multiple of 4.")});
    }
}

void CheckBackground(const ProjectData& project, Findings& findings)
{
    if (project.backgroundFile.isEmpty()) {
        return;
    }
    const QString place = QStringLiteral("background '%1'").arg(project.backgroundFile);
    QFile file(project.BackgroundPath());
    const QString error = OpenPicture(file);
    if (!error.isEmpty()) {
        findings.append({QStringLiteral("missing-background"), Severity::Warning, place,
                         QStringLiteral("it ") + error,
                         QStringLiteral("Load a background image in the editor.")});
    }
}

} // namespace

void CheckSettings(const ProjectData& project, Findings& findings)
{
    const int usageCount = project.flagTypes.usages.size();
    const int valueCount = project.flagTypes.values.size();
    CheckSizes(project, findings);
    CheckFlagTypeCount(QStringLiteral("usage"), usageCount, findings);
    CheckFlagTypeCount(QStringLiteral("value"), valueCount, findings);
    CheckMapColumns(QStringLiteral("usage"), usageCount, project.layerSize.width(), findings);
    CheckMapColumns(QStringLiteral("value"), valueCount, project.layerSize.width(), findings);
    CheckBitmapColumns(project.layerSize.width(), findings);
    CheckBackground(project, findings);
}
