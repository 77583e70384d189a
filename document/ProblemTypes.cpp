#include "app/NameRules.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/Problems.h"
#include "territories/TerritoryRecords.h"
#include "territories/rules/ZonePairs.h"
#include "territories/rules/ZoneRules.h"

#include <functional>
#include <utility>

// How the problems of territory types are found: type by type, zone by zone, so that a slice may
// end anywhere. A change of the type begins it again.

/// The check of one type that is under way.
struct Problems::TypeCheck
{
    int id = 0;
    /// Its place in the document.
    int index = 0;
    QString name;
    std::vector<Tracked<Territory>> territories;
    /// The present territory; that many were finished.
    std::size_t at = 0;
    FindingSpot spot;
    bool hasBegun = false;
    /// The id of the zone that was checked last, and how many of the territory were.
    int lastZone = -1;
    int zoneCount = 0;
    /// Of all territories.
    std::size_t allCount = 0;
    PairRules pairs;
    ProblemList found;
};

void Problems::MakeStale(int id, TypePart& part)
{
    part.isStale = true;
    m_areTypesStale = true;
    if (m_check && m_check->id == id) {
        m_check.reset();
    }
}

/// Returns whether something is left.
bool Problems::CheckTypes(const std::function<bool()>& isTimeUp)
{
    if (!m_check && !BeginType()) {
        m_areTypesStale = false;
        return true;
    }
    TypeCheck& check = *m_check;
    if (check.at < check.territories.size()) {
        CheckZones(check, isTimeUp);
    } else {
        EndType();
    }
    return true;
}

/// Begins to check the first type that is stale; false when there is none.
bool Problems::BeginType()
{
    const QVector<TerritoryType*> types = m_document.Types().Types();
    std::map<int, TypePart> known = std::exchange(m_types, {});
    for (const TerritoryType* type : types) {
        const auto found = known.find(type->Id());
        m_types[type->Id()] = found == known.end() ? TypePart() : std::move(found->second);
    }
    m_hasNews = m_hasNews || known.size() != m_types.size();
    for (int index = 0; index < types.size(); ++index) {
        const TerritoryType& type = *types[index];
        TypePart& part = m_types[type.Id()];
        if (part.isStale) {
            BeginType(type, index, part);
            return true;
        }
    }
    return false;
}

void Problems::BeginType(const TerritoryType& type, int index, TypePart& part)
{
    m_check = std::make_shared<TypeCheck>();
    m_check->id = type.Id();
    m_check->index = index;
    m_check->name = type.text();
    part.isStale = false;
    part.territoryIds.clear();
    QStringList names;
    const QVector<Territory*> territories = type.Territories();
    for (Territory* territory : territories) {
        m_check->territories.emplace_back(territory);
        part.territoryIds.append(territory->Id());
        names.append(territory->text());
    }
    Findings findings;
    CheckEqualTerritories(index, type.text(), names, findings);
    for (const Finding& finding : qAsConst(findings)) {
        Problem problem{finding, {}, {}, {}, {}};
        problem.territory = territories.value(finding.subject.territory);
        m_check->found.push_back(problem);
    }
}

void Problems::BeginTerritory(TypeCheck& check, Territory& territory)
{
    check.hasBegun = true;
    check.lastZone = -1;
    check.zoneCount = 0;
    check.spot =
        TerritorySpot(check.index, check.name, static_cast<int>(check.at), territory.text());
    Findings findings;
    // The current territory is shown whatever its mark says.
    CheckTerritory(check.spot, territory.checkState() == Qt::Checked, findings);
    for (const Finding& finding : qAsConst(findings)) {
        check.found.push_back({finding, {}, {}, &territory, {}});
    }
}

void Problems::CheckZones(TypeCheck& check, const std::function<bool()>& isTimeUp)
{
    Territory* territory = check.territories[check.at];
    if (!territory) {
        // Nobody has told that it is gone.
        MakeStale(check.id, m_types[check.id]);
        return;
    }
    if (!check.hasBegun) {
        BeginTerritory(check, *territory);
    }
    const QMap<int, Zone*>& zones = territory->Zones();
    for (auto zone = zones.upperBound(check.lastZone); zone != zones.end(); ++zone) {
        CheckOneZone(check, **zone);
        check.lastZone = zone.key();
        ++check.allCount;
        if (isTimeUp()) {
            return;
        }
    }
    check.hasBegun = false;
    ++check.at;
}

void Problems::CheckOneZone(TypeCheck& check, Zone& zone)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const ZoneRecord record = zone.Record();
    const WorldCircle circle = CircleOf(m_types[check.id], zone, record);
    const FindingSpot spot = ZoneSpot(check.spot, check.zoneCount++);
    Findings findings;
    CheckZone(spot, record.values, circle, {settings.WorldWidth(), settings.WorldHeight()},
              findings);
    check.pairs.Add(spot, record.values, circle, findings);
    for (const Finding& finding : qAsConst(findings)) {
        check.found.push_back({finding, {}, {}, {}, &zone});
    }
}

/// The numbers of most zones are those of the check before. Making texts of them takes longer than
/// all rules.
const WorldCircle& Problems::CircleOf(TypePart& part, const Zone& zone, const ZoneRecord& record)
{
    Written& written = part.written[zone.Id()];
    // The operators of QPointF take close places for equal ones.
    const std::equal_to<> isSame;
    if (!isSame(written.place.x(), record.place.x()) ||
        !isSame(written.place.y(), record.place.y()) || !isSame(written.radius, record.radius)) {
        written.place = record.place;
        written.radius = record.radius;
        written.circle = AsWritten(InWorld(record, WorldScale(ProjectSettings::Instance())));
    }
    return written.circle;
}

void Problems::EndType()
{
    TypePart& part = m_types[m_check->id];
    part.found = std::make_shared<const ProblemList>(std::move(m_check->found));
    if (part.written.size() > 2 * m_check->allCount) {
        // Most entries belong to removed zones.
        part.written.clear();
    }
    m_check.reset();
    m_hasNews = true;
}
