#pragma once

#include "tests/support/TerritoryDocks.h"

#include <QStringList>

/// Both docks, with a current territory of one zone. The zone is shown.
class ShownZoneFixture : public TerritoryDocks
{
public:
    ShownZoneFixture();

    /// The minimum and maximum of static, dynamic and all creatures.
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
