#include "tool/Findings.h"

#include "tool/Console.h"
#include "tool/ProjectData.h"

#include <array>

namespace {

/// Metres. The editor accepts this range.
constexpr float MinRadius = 50;
constexpr float MaxRadius = 32768;

constexpr std::array<const char*, 4> FixedUsages = {"Rest", "Graze", "Water", "HuntingGround"};

/// The fixed usage that an event's name resembles; empty if it resembles none or is one itself.
QString ResembledUsage(const QString& name)
{
    QString letters = name.toLower();
    for (const char separator : {' ', '-', '_'}) {
        letters.remove(QLatin1Char(separator));
    }
    for (const char* fixed : FixedUsages) {
        QString usage = QString::fromLatin1(fixed);
        if (name == usage) {
            return {};
        }
        if (letters == usage.toLower()) {
            return usage;
        }
    }
    return {};
}

QString Number(float value)
{
    return QString::number(static_cast<double>(value), 'g', 6);
}

class ZoneChecker
{
public:
    ZoneChecker(const ProjectData& project, Findings& findings)
        : m_project(project)
        , m_findings(findings)
    {
    }

    void Check(const ZoneData& zone, const QString& place)
    {
        m_place = place;
        CheckCounts(zone.values.counts);
        CheckRadius(zone.values.radius);
        CheckName(zone.values.Name());
        CheckPosition(zone);
    }

private:
    void Add(const char* rule, Severity severity, const QString& text, const char* advice)
    {
        m_findings.append(
            {QString::fromLatin1(rule), severity, m_place, text, QString::fromLatin1(advice)});
    }

    void CheckCounts(const SpawnCounts& counts)
    {
        const auto check = [this](const char* kind, int min, int max) {
            if (min > max) {
                Add("zone-min-above-max", Severity::Error,
                    QStringLiteral("the %1 minimum %2 is above the maximum %3.")
                        .arg(QString::fromLatin1(kind), QString::number(min), QString::number(max)),
                    "Lower the minimum or raise the maximum.");
            }
        };
        check("static", counts.staticMin, counts.staticMax);
        check("dynamic", counts.dynamicMin, counts.dynamicMax);
    }

    void CheckRadius(float radius)
    {
        // A NaN counts as outside too.
        if (!(radius >= MinRadius && radius <= MaxRadius)) {
            Add("zone-radius", Severity::Warning,
                QStringLiteral("its radius of %1 m is outside %2 to %3 m.")
                    .arg(Number(radius), Number(MinRadius), Number(MaxRadius)),
                "Change the radius in the zone properties.");
        }
    }

    void CheckName(const QString& name)
    {
        const QString usage = ResembledUsage(name);
        if (!usage.isEmpty()) {
            Add("event-like-usage", Severity::Warning,
                QStringLiteral(
                    "its dynamic event %1 is named like the usage %2, and is another one.")
                    .arg(Console::Quoted(name), Console::Quoted(usage)),
                "Choose the usage, or rename the event.");
        } else if (name.trimmed().isEmpty()) {
            Add("event-without-name", Severity::Error,
                QStringLiteral("its dynamic event has no name."), "Name the event.");
        }
    }

    void CheckPosition(const ZoneData& zone)
    {
        const auto isInside = [](float value, int size) {
            return value >= 0 && value <= static_cast<float>(size);
        };
        // No place is inside a world without a size. CheckSettings reports that size.
        if (m_project.worldSize.isEmpty()) {
            return;
        }
        if (!isInside(zone.x, m_project.worldSize.width()) ||
            !isInside(zone.z, m_project.worldSize.height())) {
            Add("zone-outside-world", Severity::Error,
                QStringLiteral("its centre (%1, %2) lies outside the world.")
                    .arg(Number(zone.x), Number(zone.z)),
                "Move or remove it.");
        }
    }

    const ProjectData& m_project;
    Findings& m_findings;
    QString m_place;
};

} // namespace

void CheckTerritories(const ProjectData& project, Findings& findings)
{
    ZoneChecker zones(project, findings);
    for (const TerritoryTypeData& type : project.types) {
        for (const TerritoryData& territory : type.territories) {
            const QString place =
                QStringLiteral("territory %1 of type %2")
                    .arg(Console::Quoted(territory.name), Console::Quoted(type.name));
            if (!territory.isVisible) {
                findings.append({QStringLiteral("invisible-territory"), Severity::Warning, place,
                                 QStringLiteral("it is hidden, and exported all the same."),
                                 QStringLiteral("Show it, or remove it.")});
            }
            for (int i = 0; i < territory.zones.size(); ++i) {
                zones.Check(territory.zones.at(i),
                            QStringLiteral("zone %1 of %2").arg(i + 1).arg(place));
            }
        }
    }
}
