#pragma once

#include "app/Finding.h"
#include "territories/TerritoryRecords.h"
#include "territories/ZoneValues.h"

#include <QSize>
#include <QString>

// Rules of one territory and of one zone. See ZonePairs.h for those of two zones.

/// type and territory: places in the document and in the type, from 0.
FindingSpot TerritorySpot(int type, const QString& typeName, int territory, const QString& name);
/// zone: its place in the territory, from 0. The spot's text counts from 1.
FindingSpot ZoneSpot(const FindingSpot& territory, int zone);

/// Appends a territory that is hidden and exported.
void CheckTerritory(const FindingSpot& territory, bool isVisible, Findings& findings);

/// Appends what is wrong with the values and the place of a zone. circle: as files hold it (see
/// AsWritten), with the radius of the zone; the radius of the values is not looked at. worldSize:
/// metres; in a world without a size no place is judged.
void CheckZone(const FindingSpot& zone, const ZoneValues& values, const WorldCircle& circle,
               QSize worldSize, Findings& findings);

/// The usage that the name of an event resembles, such as "HuntingGround" for "hunting ground";
/// empty if it resembles none or is one itself.
QString ResembledUsage(const QString& name);

/// The findings of one zone in a few words each, such as "minimum above maximum, outside"; each
/// once, in the order of the findings.
QString ZoneProblems(const Findings& findings);
