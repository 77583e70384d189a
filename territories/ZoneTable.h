#pragma once

#include "territories/TerritoryRecords.h"
#include "territories/ZoneValues.h"

#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <vector>

// The zones of a project as a table of plain values, one zone a row. The dock, the filter, files of
// rows and quillmap-tool share its columns and the texts of its cells.

enum class ZoneColumn
{
    Type,
    Territory,
    Number,
    Usage,
    X,
    Z,
    Radius,
    StaticMin,
    StaticMax,
    DynamicMin,
    DynamicMax,
    Depth,
    Problems,
};

/// All columns, in the order of the table.
constexpr std::array<ZoneColumn, 13> ZoneColumns = {
    ZoneColumn::Type,      ZoneColumn::Territory,  ZoneColumn::Number,     ZoneColumn::Usage,
    ZoneColumn::X,         ZoneColumn::Z,          ZoneColumn::Radius,     ZoneColumn::StaticMin,
    ZoneColumn::StaticMax, ZoneColumn::DynamicMin, ZoneColumn::DynamicMax, ZoneColumn::Depth,
    ZoneColumn::Problems};

/// What filters, the header of CSV and the keys of JSON call the column, such as "static-min".
QString Key(ZoneColumn column);
/// What a view calls it, such as "Static min".
QString Title(ZoneColumn column);
/// The column that a user or a file means: its key or title in any case, with or without hyphens,
/// underscores and spaces. "event" is the column of usages too.
std::optional<ZoneColumn> ZoneColumnNamed(const QString& name);
/// Whether its cells are numbers; those of the other columns are texts.
bool IsNumber(ZoneColumn column);

struct ZoneRow
{
    QString type;
    QString territory;
    /// The place in its territory from 1, in the order of the file, as `check` prints it.
    int number = 0;
    ZoneValues values;
    WorldCircle circle;
    /// What is wrong with the zone, in short; empty for nothing.
    QString problems;
};

/// What a file says of the zone, digit for digit. Texts are as they are in memory; control
/// characters are in them.
QString CellText(const ZoneRow& row, ZoneColumn column);

/// The number in a cell of a column of numbers, as it is in memory; 0 for other columns.
double NumberAt(const ZoneRow& row, ZoneColumn column);

/// The name in lower case, without spaces, hyphens and underscores. Names with the same letters are
/// taken for one another.
QString Letters(const QString& name);

/// The row of a zone of which only values and place matter: without names, number and problems.
ZoneRow NamelessRow(const ZoneRecord& zone, const WorldScale& scale);

/// The rows of all zones, by types, territories and numbers. The rows' problems are left empty.
std::vector<ZoneRow> ZoneRows(const std::vector<TypeRecord>& types, const WorldScale& scale);
