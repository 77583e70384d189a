#pragma once

#include "territories/TerritoryRecords.h"
#include "territories/ZoneSheet.h"

#include <QPointF>

#include <cstddef>
#include <vector>

/// A territory of a project's records, by indices.
struct TerritoryPlace
{
    std::size_t type = 0;
    std::size_t territory = 0;
};

/// A zone that a sheet changes.
struct SheetChange
{
    TerritoryPlace territory;
    /// Counted from 0.
    std::size_t zone = 0;
    /// All values and the place (scene units) after the change. What the sheet does not change is,
    /// bit for bit, what the record holds.
    ZoneValues values;
    QPointF place;
};

/// A zone that a sheet adds at the end of a territory.
struct SheetAddition
{
    TerritoryPlace territory;
    ZoneValues values;
    /// Scene units.
    QPointF place;
};

/// What a sheet does to a project: everything, or nothing if a row is refused.
struct SheetPlan
{
    std::vector<SheetChange> changes;
    std::vector<SheetAddition> additions;
    /// Those of the sheet too, by ascending rows; at most one a row.
    std::vector<SheetRefusal> refusals;

    bool IsRefused() const { return !refusals.empty(); }
    bool IsEmpty() const { return changes.empty() && additions.empty(); }
};

/// A row names its zone by type, territory and number. A row without a number adds a zone. Cells
/// that are empty or missing leave a value as it is; a new zone takes the values of newZone
/// instead, but it needs X and Z. Zones that no row names stay. The column of problems is ignored.
///
/// A row that changes or adds something must hold numbers that the editor's own controls accept
/// (ZoneValues::MinRadius and so on), and no minimum above its maximum. A row that says what the
/// file says already is taken whatever it holds.
SheetPlan PlanSheet(const std::vector<TypeRecord>& types, const WorldScale& scale,
                    const ZoneSheet& sheet, const ZoneValues& newZone);

/// Carries out the plan, which must have been made for these records.
void Apply(const SheetPlan& plan, std::vector<TypeRecord>& types, const WorldScale& scale);
