#pragma once

#include "tests/support/TerritoryDocks.h"

#include <QStringList>

/// Both docks with a current territory of one zone, which is shown.
class ShownZoneFixture : public TerritoryDocks
{
public:
    ShownZoneFixture();

    /// Static, dynamic and both together, the least and the most of each.
    QStringList Totals() const;
    int CheckedUsage() const;
    int Value(const char* box) const;

    TerritoryType* type;
    Territory* territory;
    Zone* zone;
};

void SetCounts(Zone* zone, int staticMin, int staticMax, int dynamicMin, int dynamicMax);
/// The same four: "1 2 3 4".
QString CountsText(const SpawnCounts& counts);
