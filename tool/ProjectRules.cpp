#include "tool/ProjectRules.h"

#include "app/NameRules.h"
#include "layers/rules/SettingsRules.h"
#include "territories/rules/ZoneRules.h"
#include "tool/CheckLayers.h"
#include "tool/Interruption.h"
#include "tool/PictureFile.h"
#include "tool/ProjectData.h"

#include <QFile>

namespace {

template <typename Items>
QStringList NamesOf(const Items& items)
{
    QStringList names;
    for (const auto& item : items) {
        names.append(item.name);
    }
    return names;
}

void CheckNames(const ProjectData& project, Findings& findings)
{
    ProjectNames names{project.name,
                       NamesOf(project.layers),
                       NamesOf(project.types),
                       project.flagTypes.usages.toList(),
                       project.flagTypes.values.toList(),
                       {}};
    for (const TerritoryTypeData& type : project.types) {
        names.territories.append(NamesOf(type.territories));
    }
    CheckProjectNames(names, findings);
}

SettingsFacts FactsOf(const ProjectData& project)
{
    SettingsFacts facts;
    facts.layerSize = project.layerSize;
    facts.worldSize = project.worldSize;
    facts.usageCount = project.flagTypes.usages.size();
    facts.valueCount = project.flagTypes.values.size();
    facts.background = project.backgroundFile;
    if (!project.backgroundFile.isEmpty()) {
        QFile file(project.BackgroundPath());
        facts.backgroundFault = OpenPicture(file);
    }
    return facts;
}

void CheckType(const ProjectData& project, int index, double overlap, Findings& findings)
{
    const TerritoryTypeData& type = project.types.at(index);
    PairRules pairs(overlap);
    for (int i = 0; i < type.territories.size(); ++i) {
        const TerritoryData& territory = type.territories.at(i);
        const FindingSpot spot = TerritorySpot(index, type.name, i, territory.name);
        CheckTerritory(spot, territory.isVisible, findings);
        for (int k = 0; k < territory.zones.size() && !Interruption::HasCome(); ++k) {
            const ZoneData& zone = territory.zones.at(k);
            const WorldCircle circle = {static_cast<double>(zone.x), static_cast<double>(zone.z),
                                        static_cast<double>(zone.values.radius)};
            const FindingSpot zoneSpot = ZoneSpot(spot, k);
            CheckZone(zoneSpot, zone.values, circle, project.worldSize, findings);
            pairs.Add(zoneSpot, zone.values, circle, findings);
        }
    }
}

} // namespace

Findings ApplyRules(const ProjectData& project, double overlap)
{
    Findings findings;
    CheckNames(project, findings);
    CheckSettings(FactsOf(project), findings);
    CheckLayers(project, findings);
    for (int i = 0; i < project.types.size(); ++i) {
        CheckType(project, i, overlap, findings);
    }
    return findings;
}
