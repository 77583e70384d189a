#pragma once

#include "territories/ZoneTable.h"

#include <QString>

#include <array>
#include <vector>

class QFile;

// Rows of zones as text, for spreadsheets, scripts and the clipboard. SheetPlan.h tells what a
// sheet means for a project.

enum class SheetFormat
{
    /// Separated by tabs, quoted as in CSV.
    Tabs,
    /// With commas and the quotes of RFC 4180; lines end with a line feed.
    Csv,
    /// An object whose "zones" is an array of objects, one a row.
    Json,
};

/// With a header, which names the columns by their keys. Numbers of JSON that are not finite are
/// null.
QString WriteSheet(const std::vector<ZoneRow>& rows, SheetFormat format);

/// Why a row of a sheet cannot be taken.
struct SheetRefusal
{
    /// As spreadsheets count, where the header is row 1; in JSON the entry, from 1. 0 for the
    /// sheet.
    int row = 0;
    /// All reasons, separated by semicolons, such as "radius 20000000 is above 32768".
    QString reason;

    /// Such as "row 7: radius 20000000 is above 32768".
    QString Text() const;
};

struct SheetRow
{
    /// As SheetRefusal counts.
    int number = 0;
    /// By ZoneColumn. An empty cell is one that the sheet leaves out.
    std::array<QString, ZoneColumns.size()> cells;

    const QString& Cell(ZoneColumn column) const
    {
        return cells.at(static_cast<std::size_t>(column));
    }
};

struct ZoneSheet
{
    std::vector<SheetRow> rows;
    /// At most one a row. The rows are incomplete if there is any.
    std::vector<SheetRefusal> refusals;
    /// Why the text is no sheet at all; empty if it is one.
    QString fault;
};

/// The first characters of a text of a sheet, for a message about it.
QString SheetExcerpt(const QString& text);

/// Reads text of any of the formats, which it tells apart by the text's first characters and the
/// separator of the header. Columns may have any order, and any may be missing. A header or a key
/// that names no column is refused, and so are semicolons between cells. Rows without any text are
/// passed over. A byte order mark is allowed.
ZoneSheet ReadSheet(const QString& text);

/// Reads an open file to its end. It is no sheet when it cannot be read to there, is larger than
/// 64 MiB, or is no UTF-8.
ZoneSheet ReadSheetFile(QFile& file);
