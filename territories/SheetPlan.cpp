#include "territories/SheetPlan.h"

#include "territories/BulkEntry.h"
#include "territories/ZoneCell.h"

#include <QHash>
#include <QPair>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <tuple>

namespace {

/// What a row of a sheet may change.
constexpr std::array<ZoneColumn, 9> Editable = {
    ZoneColumn::Usage,      ZoneColumn::X,          ZoneColumn::Z,
    ZoneColumn::Radius,     ZoneColumn::StaticMin,  ZoneColumn::StaticMax,
    ZoneColumn::DynamicMin, ZoneColumn::DynamicMax, ZoneColumn::Depth};

/// Whether a cell says what the file says.
bool IsSame(ZoneColumn column, const QString& cell, const QString& filed)
{
    if (cell.isEmpty() || cell == filed) {
        return true;
    }
    const std::optional<double> number = NumberIn(cell);
    return IsNumber(column) && number && number == NumberIn(filed);
}

/// What is wrong with a pair of counts; empty if nothing is.
QString PairFault(ZoneColumn minColumn, int min, ZoneColumn maxColumn, int max)
{
    return min > max ? QStringLiteral("%1 %2 is above %3 %4")
                           .arg(Key(minColumn), QString::number(min), Key(maxColumn),
                                QString::number(max))
                     : QString();
}

/// A zone on its way from what it is to what a row of the sheet says.
class Draft
{
public:
    Draft(const ZoneRow& filed, QPointF place, const WorldScale& scale)
        : m_filed(filed)
        , m_scale(scale)
        , m_zone{filed.values, place, 0}
    {
    }

    const ZoneValues& Values() const { return m_zone.values; }
    QPointF Place() const { return m_zone.place; }

    bool IsChangedBy(const SheetRow& row) const
    {
        return std::any_of(Editable.begin(), Editable.end(), [&](ZoneColumn column) {
            return !IsSame(column, row.Cell(column), CellText(m_filed, column));
        });
    }

    /// Returns why the row cannot be taken; empty if it was.
    QString Take(const SheetRow& row, bool hasPlace)
    {
        // A save writes all places again.
        QString noPlace = PlaceFault(m_scale);
        if (!noPlace.isEmpty()) {
            return noPlace;
        }
        QStringList reasons;
        for (const ZoneColumn column : Editable) {
            const QString& cell = row.Cell(column);
            const bool isPlace = column == ZoneColumn::X || column == ZoneColumn::Z;
            const QString filed = isPlace && !hasPlace ? QString() : CellText(m_filed, column);
            const bool isSame = IsSame(column, cell, filed);
            // An old name stays.
            const QString fault = column == ZoneColumn::Usage && isSame
                                      ? QString()
                                      : CellFault(column, cell.isEmpty() ? filed : cell);
            if (!fault.isEmpty()) {
                reasons.append(fault);
            } else if (!isSame) {
                Set(column, cell);
            }
        }
        if (reasons.isEmpty()) {
            reasons = WholeFaults();
        }
        return reasons.join(QStringLiteral("; "));
    }

private:
    void Set(ZoneColumn column, const QString& cell)
    {
        if (column == ZoneColumn::Usage) {
            m_zone.values.SetName(cell);
        } else {
            m_zone = WithNumber(column, NumberIn(cell).value_or(0), m_zone, m_scale);
        }
    }

    /// What is wrong with values that are right by themselves.
    QStringList WholeFaults() const
    {
        const SpawnCounts& counts = m_zone.values.counts;
        QStringList faults = {PairFault(ZoneColumn::StaticMin, counts.staticMin,
                                        ZoneColumn::StaticMax, counts.staticMax),
                              PairFault(ZoneColumn::DynamicMin, counts.dynamicMin,
                                        ZoneColumn::DynamicMax, counts.dynamicMax)};
        faults.removeAll(QString());
        return faults;
    }

    ZoneRow m_filed;
    const WorldScale& m_scale;
    ZoneRecord m_zone;
};

/// Plans one row after the other.
class Planner
{
public:
    Planner(const std::vector<TypeRecord>& types, const WorldScale& scale,
            const ZoneValues& newZone)
        : m_types(types)
        , m_scale(scale)
        , m_newZone(newZone)
    {
        m_newZone.depth = qBound(ZoneValues::MinDepth, newZone.depth, ZoneValues::MaxDepth);
        for (std::size_t type = 0; type < types.size(); ++type) {
            m_typeNames.insert(types[type].name);
            const std::vector<TerritoryRecord>& territories = types[type].territories;
            for (std::size_t i = 0; i < territories.size(); ++i) {
                m_territories[{types[type].name, territories[i].name}].push_back({type, i});
            }
        }
    }

    /// Returns why the row cannot be taken; empty if it was.
    QString Take(const SheetRow& row)
    {
        const QString& type = row.Cell(ZoneColumn::Type);
        const QString& territory = row.Cell(ZoneColumn::Territory);
        const auto named = m_territories.constFind({type, territory});
        if (named == m_territories.constEnd()) {
            return WhyNoTerritory(type, territory);
        }
        const bool isNew = row.Cell(ZoneColumn::Number).trimmed().isEmpty();
        if (named->size() > 1 && (isNew || !TakeUnchanged(row, *named))) {
            return QStringLiteral("there are %1 territories '%2' of type '%3'")
                .arg(QString::number(named->size()), SheetExcerpt(territory), SheetExcerpt(type));
        }
        if (named->size() > 1) {
            return {};
        }
        return isNew ? Add(row, named->front()) : Change(row, named->front());
    }

    SheetPlan& Plan() { return m_plan; }

private:
    const TerritoryRecord& At(const TerritoryPlace& place) const
    {
        return m_types[place.type].territories[place.territory];
    }

    QString WhyNoTerritory(const QString& type, const QString& territory) const
    {
        if (!m_typeNames.contains(type)) {
            return type.isEmpty()
                       ? QStringLiteral("it names no type")
                       : QStringLiteral("there is no territory type '%1'").arg(SheetExcerpt(type));
        }
        return territory.isEmpty() ? QStringLiteral("it names no territory")
                                   : QStringLiteral("type '%1' has no territory '%2'")
                                         .arg(SheetExcerpt(type), SheetExcerpt(territory));
    }

    Draft DraftOf(const TerritoryPlace& place, std::size_t zone) const
    {
        const ZoneRecord& record = At(place).zones[zone];
        return {NamelessRow(record, m_scale), record.place, m_scale};
    }

    /// The index of the zone that the row names in the territory; none if it has no such zone.
    std::optional<std::size_t> ZoneOf(const SheetRow& row, const TerritoryPlace& place) const
    {
        const double number = NumberIn(row.Cell(ZoneColumn::Number)).value_or(0);
        return number >= 1 && number <= static_cast<double>(At(place).zones.size())
                   ? static_cast<std::size_t>(number) - 1
                   : std::optional<std::size_t>();
    }

    /// The row that named the zone first, which is this one unless another did before.
    int FirstRow(const SheetRow& row, const TerritoryPlace& place, std::size_t zone)
    {
        return m_rows.insert({{place.type, place.territory, zone}, row.number}).first->second;
    }

    /// If territories share a name, a row that changes nothing may mean any of them.
    bool TakeUnchanged(const SheetRow& row, const std::vector<TerritoryPlace>& places)
    {
        return std::any_of(places.begin(), places.end(), [&](const TerritoryPlace& place) {
            const std::optional<std::size_t> zone = ZoneOf(row, place);
            return zone && !DraftOf(place, *zone).IsChangedBy(row) &&
                   FirstRow(row, place, *zone) == row.number;
        });
    }

    QString Change(const SheetRow& row, const TerritoryPlace& place)
    {
        const QString& number = row.Cell(ZoneColumn::Number);
        const std::optional<double> parsed = NumberIn(number);
        if (!parsed || *parsed != std::floor(*parsed)) {
            return QStringLiteral("number '%1' is no whole number").arg(SheetExcerpt(number));
        }
        const std::optional<std::size_t> zone = ZoneOf(row, place);
        if (!zone) {
            return QStringLiteral("territory '%1' has no zone %2")
                .arg(SheetExcerpt(At(place).name), SheetExcerpt(number));
        }
        const int firstRow = FirstRow(row, place, *zone);
        if (firstRow != row.number) {
            return QStringLiteral("it is about the same zone as row %1").arg(firstRow);
        }
        Draft draft = DraftOf(place, *zone);
        if (!draft.IsChangedBy(row)) {
            return {};
        }
        QString reason = draft.Take(row, true);
        const ZoneRecord& record = At(place).zones[*zone];
        if (reason.isEmpty() && draft.Values() == record.values && draft.Place() == record.place) {
            // No place in the scene is nearer to these metres.
            return {};
        }
        m_plan.changes.push_back({place, *zone, draft.Values(), draft.Place()});
        return reason;
    }

    QString Add(const SheetRow& row, const TerritoryPlace& place)
    {
        WorldCircle circle;
        circle.radius = static_cast<double>(m_newZone.radius);
        Draft draft({{}, {}, 0, m_newZone, circle, {}}, {}, m_scale);
        QString reason = draft.Take(row, false);
        m_plan.additions.push_back({place, draft.Values(), draft.Place()});
        return reason;
    }

    const std::vector<TypeRecord>& m_types;
    const WorldScale& m_scale;
    ZoneValues m_newZone;
    QSet<QString> m_typeNames;
    QHash<QPair<QString, QString>, std::vector<TerritoryPlace>> m_territories;
    /// The first row about each zone: type, territory, zone.
    std::map<std::tuple<std::size_t, std::size_t, std::size_t>, int> m_rows;
    SheetPlan m_plan;
};

} // namespace

SheetPlan PlanSheet(const std::vector<TypeRecord>& types, const WorldScale& scale,
                    const ZoneSheet& sheet, const ZoneValues& newZone)
{
    Planner planner(types, scale, newZone);
    std::map<int, QString> reasons;
    if (!sheet.fault.isEmpty()) {
        reasons.insert({0, sheet.fault});
    }
    for (const SheetRefusal& refusal : sheet.refusals) {
        reasons.insert({refusal.row, refusal.reason});
    }
    for (const SheetRow& row : sheet.rows) {
        const bool isReadable = reasons.find(row.number) == reasons.end();
        const QString reason = isReadable ? planner.Take(row) : QString();
        if (!reason.isEmpty()) {
            reasons.insert({row.number, reason});
        }
    }
    SheetPlan plan;
    if (reasons.empty()) {
        return planner.Plan();
    }
    for (const auto& [row, reason] : reasons) {
        plan.refusals.push_back({row, reason});
    }
    return plan;
}

void Apply(const SheetPlan& plan, std::vector<TypeRecord>& types, const WorldScale& scale)
{
    const auto zonesOf = [&types](const TerritoryPlace& place) -> std::vector<ZoneRecord>& {
        return types[place.type].territories[place.territory].zones;
    };
    for (const SheetChange& change : plan.changes) {
        ZoneRecord& zone = zonesOf(change.territory)[change.zone];
        if (zone.values.radius != change.values.radius) {
            zone.radius = scale.pixelsPerMetreX * change.values.radius;
        }
        zone.values = change.values;
        zone.place = change.place;
    }
    for (const SheetAddition& addition : plan.additions) {
        zonesOf(addition.territory)
            .push_back(
                {addition.values, addition.place, scale.pixelsPerMetreX * addition.values.radius});
    }
}
