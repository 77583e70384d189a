#include "territories/rules/ZoneRules.h"

#include "territories/ZoneTable.h"

#include <QLatin1String>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Metres. A text of six digits moves the circle by less.
constexpr double LeastOverhang = 1;

struct ShortText
{
    const char* rule;
    const char* text;
};
constexpr std::array<ShortText, 10> ShortTexts = {{
    {"zone-min-above-max", "minimum above maximum"},
    {"zone-radius", "radius out of range"},
    {"event-like-usage", "event named like a usage"},
    {"event-without-name", "event without a name"},
    {"zone-place", "place is no number"},
    {"zone-outside-world", "outside of the world"},
    {"zone-partly-outside", "partly outside of the world"},
    {"zone-equal", "equal to another zone"},
    {"zone-contained", "one zone in another"},
    {"zone-overlap", "overlaps another zone"},
}};

QString Number(double value)
{
    return QString::number(value, 'g', 6);
}

void CheckCounts(const FindingSpot& zone, FindingPart part, int min, int max, Findings& findings)
{
    if (min > max) {
        const QString kind = part == FindingPart::StaticCounts ? QStringLiteral("static")
                                                               : QStringLiteral("dynamic");
        AddFinding(findings, zone, "zone-min-above-max", Severity::Error,
                   QStringLiteral("the %1 minimum %2 is above the maximum %3.")
                       .arg(kind, QString::number(min), QString::number(max)),
                   "Lower the minimum or raise the maximum.", part);
    }
}

void CheckRadius(const FindingSpot& zone, double radius, Findings& findings)
{
    constexpr auto min = static_cast<double>(ZoneValues::MinRadius);
    constexpr auto max = static_cast<double>(ZoneValues::MaxRadius);
    // A NaN counts as outside too.
    if (!(radius >= min && radius <= max)) {
        AddFinding(findings, zone, "zone-radius", Severity::Warning,
                   QStringLiteral("its radius of %1 m is outside %2 to %3 m.")
                       .arg(Number(radius), Number(min), Number(max)),
                   "Change the radius in the zone properties.");
    }
}

void CheckName(const FindingSpot& zone, const QString& name, Findings& findings)
{
    const QString usage = ResembledUsage(name);
    if (!usage.isEmpty()) {
        AddFinding(
            findings, zone, "event-like-usage", Severity::Warning,
            QStringLiteral("its dynamic event %1 is named like the usage %2, and is another one.")
                .arg(QuotedName(name), QuotedName(usage)),
            "Choose the usage, or rename the event.");
    } else if (name.trimmed().isEmpty()) {
        AddFinding(findings, zone, "event-without-name", Severity::Error,
                   QStringLiteral("its dynamic event has no name."), "Name the event.");
    }
}

/// How far the circle reaches beyond the edges of the world, in metres.
double Overhang(const WorldCircle& circle, QSize worldSize)
{
    return std::max({circle.radius - circle.x, circle.radius - circle.z,
                     circle.x + circle.radius - worldSize.width(),
                     circle.z + circle.radius - worldSize.height()});
}

void CheckPlace(const FindingSpot& zone, const WorldCircle& circle, QSize worldSize,
                Findings& findings)
{
    const auto isInside = [](double value, int size) { return value >= 0 && value <= size; };
    if (!std::isfinite(circle.x) || !std::isfinite(circle.z)) {
        AddFinding(findings, zone, "zone-place", Severity::Error,
                   QStringLiteral("its place (%1, %2) is no number.")
                       .arg(Number(circle.x), Number(circle.z)),
                   "Move or remove it.");
        return;
    }
    // No place is inside a world without a size. CheckSettings reports that size.
    if (worldSize.isEmpty()) {
        return;
    }
    if (!isInside(circle.x, worldSize.width()) || !isInside(circle.z, worldSize.height())) {
        AddFinding(findings, zone, "zone-outside-world", Severity::Error,
                   QStringLiteral("its centre (%1, %2) lies outside the world.")
                       .arg(Number(circle.x), Number(circle.z)),
                   "Move or remove it.");
        return;
    }
    const double overhang = Overhang(circle, worldSize);
    if (overhang >= LeastOverhang) {
        AddFinding(
            findings, zone, "zone-partly-outside", Severity::Warning,
            QStringLiteral("it reaches %1 m beyond the edge of the world.").arg(Number(overhang)),
            "Move it, or make it smaller.");
    }
}

} // namespace

FindingSpot TerritorySpot(int type, const QString& typeName, int territory, const QString& name)
{
    return {{FindingSubject::Kind::Territory, type, territory},
            QStringLiteral("territory %1 of type %2").arg(QuotedName(name), QuotedName(typeName))};
}

FindingSpot ZoneSpot(const FindingSpot& territory, int zone)
{
    const FindingSubject& owner = territory.subject;
    return {{FindingSubject::Kind::Zone, owner.index, owner.territory, zone},
            QStringLiteral("zone %1 of ").arg(zone + 1) + territory.place};
}

void CheckTerritory(const FindingSpot& territory, bool isVisible, Findings& findings)
{
    if (!isVisible) {
        AddFinding(findings, territory, "invisible-territory", Severity::Warning,
                   QStringLiteral("it is hidden, and exported all the same."),
                   "Show it, or remove it.");
    }
}

void CheckZone(const FindingSpot& zone, const ZoneValues& values, const WorldCircle& circle,
               QSize worldSize, Findings& findings)
{
    const SpawnCounts& counts = values.counts;
    CheckCounts(zone, FindingPart::StaticCounts, counts.staticMin, counts.staticMax, findings);
    CheckCounts(zone, FindingPart::DynamicCounts, counts.dynamicMin, counts.dynamicMax, findings);
    CheckRadius(zone, circle.radius, findings);
    CheckName(zone, values.Name(), findings);
    CheckPlace(zone, circle, worldSize, findings);
}

QString ResembledUsage(const QString& name)
{
    const QString letters = Letters(name);
    ZoneValues fixed;
    for (fixed.usage = ZoneValues::Rest; fixed.usage < ZoneValues::DynamicEvent; ++fixed.usage) {
        QString usage = fixed.Name();
        if (name == usage) {
            return {};
        }
        if (letters == usage.toLower()) {
            return usage;
        }
    }
    return {};
}

QString ZoneProblems(const Findings& findings)
{
    QStringList texts;
    for (const Finding& finding : findings) {
        const auto found =
            std::find_if(ShortTexts.begin(), ShortTexts.end(), [&finding](const ShortText& each) {
                return finding.rule == QLatin1String(each.rule);
            });
        if (found != ShortTexts.end()) {
            texts.append(QString::fromLatin1(found->text));
        }
    }
    texts.removeDuplicates();
    return texts.join(QStringLiteral(", "));
}
