#pragma once

#include "document/Edit.h"
#include "territories/ZoneValues.h"

#include <QPointF>
#include <QString>
#include <QVector>

#include <memory>
#include <vector>

class TerritoryType;
class TerritoryTypeList;
class Zone;

/// The edits of many zones at once, one for each user action. The zones may be of several
/// territories. Each edit is one step.
namespace Edits {

/// "zone", or "3 zones".
QString ZonesText(int count);

/// What a zone is to be like.
struct ZoneChange
{
    Zone* zone = nullptr;
    ZoneValues values;
    /// Scene units.
    QPointF place;
};
/// The zones may be of any territories. The depth is brought into its range.
std::unique_ptr<Edit> ChangeZones(const QString& text, const std::vector<ZoneChange>& changes);

/// The zones stay where they are and take the target's colour. Those that the target holds already
/// are passed over. Among the zones of the target they come in the order of their ids, as ever.
std::unique_ptr<Edit> MoveZonesTo(Territory& target, const QVector<Zone*>& zones);
/// Copies at the same places, with the same values, in the target's colour.
std::unique_ptr<Edit> CopyZonesTo(Territory& target, const QVector<Zone*>& zones);
/// Moves all zones of the others into the target, and removes the others.
std::unique_ptr<Edit> JoinTerritories(Territory& target, const QVector<Territory*>& others);
/// Moves the zones into a new territory, the last one of the type of the first zone's territory. It
/// is visible and has a colour of its own. There must be a zone, and territories must hold them.
std::unique_ptr<Edit> SplitZones(const QVector<Zone*>& zones);
/// A new territory, the last one of the type, with copies of all zones of the source. It is visible
/// and has a colour of its own.
std::unique_ptr<Edit> DuplicateTerritory(Territory& source);

/// A new type whose box is ticked, at the end of the list.
std::unique_ptr<Edit> AddShownType(const TerritoryTypeList& list);
/// A new territory without zones, the last one of the type. It is visible and has a colour of its
/// own.
std::unique_ptr<Edit> AddShownTerritory(TerritoryType& type);

struct NewZone
{
    Territory* territory = nullptr;
    ZoneValues values;
    /// Scene units.
    QPointF place;
};
std::unique_ptr<Edit> AddZones(const QString& text, const std::vector<NewZone>& zones);

} // namespace Edits
