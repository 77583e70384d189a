#include "layers/rules/SettingsRules.h"

#include "layers/AreaFlagTypes.h"
#include "layers/raster/BitFieldRaster.h"
#include "layers/raster/Mask.h"

namespace {

const FindingSpot& Project()
{
    static const FindingSpot project = {{}, QStringLiteral("project")};
    return project;
}

void CheckSizes(const SettingsFacts& facts, Findings& findings)
{
    const QString error = LayerSizeError(facts.layerSize);
    if (!error.isEmpty()) {
        findings.append({QStringLiteral("layer-size"), Severity::Error, Project().place, error,
                         QStringLiteral("Choose a size from 1 to %1.").arg(raster::MaxMaskLength)});
    }
    if (facts.worldSize.isEmpty()) {
        AddFinding(
            findings, Project(), "world-size", Severity::Error,
            QStringLiteral("the world cannot be %1 metres large.").arg(SizeText(facts.worldSize)),
            "Choose a size of at least 1.");
    }
}

void CheckFlagTypeCount(const QString& kind, int count, Findings& findings)
{
    if (count > AreaFlagTypes::MaxCount) {
        AddFinding(findings, Project(), "too-many-flag-types", Severity::Error,
                   QStringLiteral("there are %1 %2 flag types, and a map holds %3.")
                       .arg(QString::number(count), kind, QString::number(AreaFlagTypes::MaxCount)),
                   "Remove those that are not needed.");
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
            {QStringLiteral("lost-map-columns"), Severity::Error, Project().place,
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
        AddFinding(findings, Project(), "lost-bitmap-columns", Severity::Warning,
                   QStringLiteral("some programs lose or shift columns of bitmaps that are %1 "
                                  "pixels wide.")
                       .arg(width),
                   "Choose a layer size that is a multiple of 4.");
    }
}

} // namespace

void CheckSettings(const SettingsFacts& facts, Findings& findings)
{
    const int width = facts.layerSize.width();
    CheckSizes(facts, findings);
    CheckFlagTypeCount(QStringLiteral("usage"), facts.usageCount, findings);
    CheckFlagTypeCount(QStringLiteral("value"), facts.valueCount, findings);
    CheckMapColumns(QStringLiteral("usage"), facts.usageCount, width, findings);
    CheckMapColumns(QStringLiteral("value"), facts.valueCount, width, findings);
    CheckBitmapColumns(width, findings);
    if (!facts.backgroundFault.isEmpty()) {
        const FindingSpot spot = {{FindingSubject::Kind::Background},
                                  QStringLiteral("background ") + QuotedName(facts.background)};
        AddFinding(findings, spot, "missing-background", Severity::Warning,
                   QStringLiteral("it ") + facts.backgroundFault,
                   "Load a background image in the editor.");
    }
}

QString LayerSizeError(QSize size)
{
    return raster::IsMaskSize(size)
               ? QString()
               : QStringLiteral("layers cannot have %1 pixels.").arg(SizeText(size));
}

QString SizeText(QSize size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}
