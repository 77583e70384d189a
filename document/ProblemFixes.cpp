#include "document/ProblemFixes.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/Problem.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/raster/Mask.h"
#include "territories/rules/ZoneRules.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

using EditPointer = std::unique_ptr<Edit>;

QString Text(const char* text)
{
    return QCoreApplication::translate("ProblemFixes", text);
}

EditPointer RaiseMaximum(const Problem& problem)
{
    ZoneValues values = problem.zone->Values();
    SpawnCounts& counts = values.counts;
    if (problem.finding.part == FindingPart::StaticCounts) {
        counts.staticMax = std::max(counts.staticMin, counts.staticMax);
        return Edits::ChangeZone(*problem.zone, values, Property::ZoneStaticMax);
    }
    counts.dynamicMax = std::max(counts.dynamicMin, counts.dynamicMax);
    return Edits::ChangeZone(*problem.zone, values, Property::ZoneDynamicMax);
}

EditPointer ClampRadius(const Problem& problem)
{
    ZoneValues values = problem.zone->Values();
    // What is no number becomes the smallest radius.
    values.radius = values.radius > ZoneValues::MinRadius
                        ? std::min(values.radius, ZoneValues::MaxRadius)
                        : ZoneValues::MinRadius;
    return Edits::ChangeZone(*problem.zone, values, Property::ZoneRadius);
}

EditPointer SetUsage(const Problem& problem)
{
    ZoneValues values = problem.zone->Values();
    // It may have been mended since it was found.
    if (const QString usage = ResembledUsage(values.Name()); !usage.isEmpty()) {
        values.SetName(usage);
    }
    return Edits::ChangeZone(*problem.zone, values, Property::ZoneUsage);
}

/// The bits of this many types.
quint32 BitsOf(int count)
{
    return count < AreaFlagTypes::MaxCount ? (1U << count) - 1 : ~0U;
}

EditPointer ClearBits(const Problem& problem)
{
    const AreaFlagTypes& types = ProjectSettings::Instance().FlagTypes();
    Layer& layer = *problem.layer;
    const bool isUsage = problem.finding.part == FindingPart::UsageFlags;
    const quint32 usages = isUsage ? BitsOf(types.usages.size()) : ~0U;
    const quint32 values = isUsage ? ~0U : BitsOf(types.values.size());
    return Edits::SetLayerFlags(layer, layer.UsageFlags() & usages, layer.ValueFlags() & values);
}

EditPointer Show(const Problem& problem)
{
    return Edits::SetRowChecked(*problem.territory, true);
}

EditPointer SetGreys(const Problem& problem)
{
    QImage mask = problem.layer->Image();
    if (!raster::Unshare(mask)) {
        return nullptr;
    }
    for (int y = 0; y < mask.height(); ++y) {
        uchar* row = mask.scanLine(y);
        std::replace_if(
            row, row + mask.width(), [](uchar pixel) { return pixel != raster::MaskClear; },
            raster::MaskSet);
    }
    return Edits::ChangePixels(Text("Set greys of %1").arg(problem.layer->text()), *problem.layer,
                               mask);
}

struct Fix
{
    const char* rule;
    const char* description;
    EditPointer (*make)(const Problem& problem);
    bool changesPixels;
};

static_assert(ZoneValues::MinRadius == 50 && ZoneValues::MaxRadius == 32768,
              "A description names them.");

const Fix Fixes[] = {
    {"zone-min-above-max", QT_TRANSLATE_NOOP("ProblemFixes", "Raise the maximum to the minimum."),
     RaiseMaximum, false},
    {"zone-radius",
     QT_TRANSLATE_NOOP("ProblemFixes", "Bring the radius into the range from 50 to 32768 m."),
     ClampRadius, false},
    {"event-like-usage",
     QT_TRANSLATE_NOOP("ProblemFixes", "Give the zone the usage that its event is named like."),
     SetUsage, false},
    {"unnamed-flag", QT_TRANSLATE_NOOP("ProblemFixes", "Clear the bits that no flag type names."),
     ClearBits, false},
    {"invisible-territory", QT_TRANSLATE_NOOP("ProblemFixes", "Show the territory."), Show, false},
    {"mask-value",
     QT_TRANSLATE_NOOP("ProblemFixes", "Make all pixels that are not 0 the value 255."), SetGreys,
     true},
};

/// Null for rules without a fix, and for things that are gone.
const Fix* FixOf(const Problem& problem)
{
    const auto* fix = std::find_if(std::begin(Fixes), std::end(Fixes), [&problem](const Fix& each) {
        return problem.finding.rule == QLatin1String(each.rule);
    });
    return fix != std::end(Fixes) && problem.HasThing() && problem.IsPresent() ? fix : nullptr;
}

/// Why the pixels may not be changed; empty when they may.
QString WhyNot(const Document& document, const Problem& problem, const Fix& fix)
{
    return fix.changesPixels ? document.WhyPixelsStay(*problem.layer) : QString();
}

} // namespace

bool CanFix(const Document& document, const Problem& problem)
{
    const Fix* fix = FixOf(problem);
    return fix && document.CanTravel() && WhyNot(document, problem, *fix).isEmpty();
}

std::unique_ptr<Edit> MakeFix(const Document& document, const Problem& problem)
{
    return CanFix(document, problem) ? FixOf(problem)->make(problem) : nullptr;
}

QString DescribeFix(const Document& document, const Problem& problem)
{
    const Fix* fix = FixOf(problem);
    if (!fix) {
        return {};
    }
    const QString why = WhyNot(document, problem, *fix);
    return why.isEmpty() ? Text(fix->description) : why;
}
