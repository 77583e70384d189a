#pragma once

#include "territories/TerritoryRecords.h"
#include "territories/ZoneTable.h"

#include <QPointF>
#include <QString>

#include <optional>

/// What a zone is like after a user has typed into one of its cells.
struct ZoneCell
{
    /// Why the text cannot be taken, such as "radius 20000000 is above 32768"; empty if it can.
    QString refusal;
    ZoneValues values;
    /// Scene units.
    QPointF place;
};

/// Takes a text for one cell of a zone, as sheets do: only what CellFault allows. A minimum above
/// the maximum raises it, and a maximum below the minimum lowers it. The other values and
/// coordinates stay as they are, whatever they are. A text that says what the file says already
/// changes nothing. The columns of names, numbers and problems refuse every text.
ZoneCell TakeCell(const ZoneRecord& zone, ZoneColumn column, const QString& text,
                  const WorldScale& scale);

/// Why no user may write the text into the usage or a number from X to Depth; empty if they may.
/// Numbers lie in the range of RangeOf, and no event is called almost like a usage.
QString CellFault(ZoneColumn column, const QString& text);
/// Why no zone can be put at a place in metres; empty if one can.
QString PlaceFault(const WorldScale& scale);

/// The number that a cell holds; none for what is no finite number.
std::optional<double> NumberIn(const QString& text);
