#pragma once

#include "document/Edit.h"
#include "document/edits/ChangeValue.h"
#include "territories/ZoneValues.h"

#include <QColor>
#include <QPointF>
#include <QString>
#include <QVector>

#include <memory>
#include <vector>

class QStandardItem;
class TerritoryTypeList;
class Zone;

/// The edits of territory types, territories and zones, one for each user action.
/// Renaming is Edits::Rename.
namespace Edits {

std::unique_ptr<Edit> AddType(const TerritoryTypeList& list, std::unique_ptr<TerritoryType> type);
std::unique_ptr<Edit> RemoveType(TerritoryType& type);
std::unique_ptr<Edit> AddTerritory(TerritoryType& type, std::unique_ptr<Territory> territory);
std::unique_ptr<Edit> RemoveTerritory(Territory& territory);
/// Keeps the alpha.
std::unique_ptr<Edit> SetTerritoryColor(Territory& territory, const QColor& color);
/// alpha: 0 to 255.
std::unique_ptr<Edit> SetTerritoryOpacity(Territory& territory, int alpha);
/// The check mark of a type or a territory, which shows or hides it. The territories of a type
/// follow it.
std::unique_ptr<Edit> SetRowChecked(QStandardItem& row, bool isChecked);

/// A zone at the place (scene units) with the values; the edit is "Add zone to …".
std::unique_ptr<Edit> InsertZone(Territory& territory, QPointF place, const ZoneValues& values);
/// Copies of the zones, moved by the offset (scene units), in the territory and in its colour.
std::unique_ptr<Edit> PasteZones(Territory& territory, const QVector<Zone*>& zones, QPointF offset);
/// A new territory beside the source with copies of the zones, in its colour.
std::unique_ptr<Edit> CopyToNewTerritory(Territory& source, const QVector<Zone*>& zones);
std::unique_ptr<Edit> RemoveZones(const QVector<Zone*>& zones);

/// Where a zone was and is, in scene units.
struct ZoneMove
{
    Zone* zone = nullptr;
    QPointF before;
    QPointF after;
};
/// The zones may be at the new place already. Nudges are moves by keys. They do not make the
/// project modified, and all nudges of one gesture are one step.
std::unique_ptr<Edit> MoveZones(const std::vector<ZoneMove>& moves, bool areNudges);
/// property: what the new values differ in.
std::unique_ptr<Edit> ChangeZone(Zone& zone, const ZoneValues& values, Property property);

} // namespace Edits
