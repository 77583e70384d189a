#pragma once

#include "territories/ZoneTable.h"

#include <QString>

#include <optional>

/// What a text asks for that is typed into a field about one or several zones.
struct BulkEntry
{
    enum class Kind
    {
        Set,
        Add,
        Multiply,
    };
    Kind kind = Kind::Set;
    double number = 0;
};

/// "500" and "=-50" set, "+50" adds, "-50" subtracts, "*1.1" multiplies. A number that begins with
/// a minus is always subtracted; "=" sets it. Blanks around sign and number are ignored. Nothing
/// for any other text.
std::optional<BulkEntry> ParseBulkEntry(const QString& text);

/// The numbers that users may give a zone. An entry that leads beyond them gives the nearest one.
struct NumberRange
{
    double least = 0;
    double most = 0;
    bool isWhole = false;
};
/// column: one of the numbers from X to Depth. Places may lie far outside of the world.
NumberRange RangeOf(ZoneColumn column);

/// The zone with the number in the column, one of those from X to Depth, and all else as it is.
/// Places are those of PlaceAtX and PlaceAtZ. Counts and depths are rounded to whole numbers. The
/// number lies in the range of RangeOf.
ZoneRecord WithNumber(ZoneColumn column, double number, ZoneRecord zone, const WorldScale& scale);

/// The zone after the entry into the column, one of the numbers from X to Depth. It reckons with
/// what the file says, which is what users see. Zones move by exactly what is added to X or Z, as
/// by MovedPlace. Counts and depths are rounded to whole numbers. When the new minimum exceeds the
/// maximum, or the other way round, the one that was not entered gives way. All else stays bit for
/// bit, and so does the whole zone when nothing is added, or multiplied by one.
ZoneRecord Applied(const BulkEntry& entry, ZoneColumn column, ZoneRecord zone,
                   const WorldScale& scale);
