#include "territories/ZoneTable.h"

#include <algorithm>

namespace {

struct ColumnName
{
    const char* key;
    const char* title;
};

/// Indexed by ZoneColumn.
constexpr std::array<ColumnName, ZoneColumns.size()> Names = {{{"type", "Type"},
                                                               {"territory", "Territory"},
                                                               {"number", "Number"},
                                                               {"usage", "Usage or event"},
                                                               {"x", "X"},
                                                               {"z", "Z"},
                                                               {"radius", "Radius"},
                                                               {"static-min", "Static min"},
                                                               {"static-max", "Static max"},
                                                               {"dynamic-min", "Dynamic min"},
                                                               {"dynamic-max", "Dynamic max"},
                                                               {"depth", "Depth"},
                                                               {"problems", "Problems"}}};

const ColumnName& NameOf(ZoneColumn column)
{
    return Names.at(static_cast<std::size_t>(column));
}

} // namespace

QString Key(ZoneColumn column)
{
    return QString::fromLatin1(NameOf(column).key);
}

QString Title(ZoneColumn column)
{
    return QString::fromLatin1(NameOf(column).title);
}

std::optional<ZoneColumn> ZoneColumnNamed(const QString& name)
{
    const QString letters = Letters(name);
    if (letters == QLatin1String("event")) {
        return ZoneColumn::Usage;
    }
    const auto* found =
        std::find_if(ZoneColumns.begin(), ZoneColumns.end(), [&letters](ZoneColumn column) {
            return letters == Letters(Key(column)) || letters == Letters(Title(column));
        });
    return found == ZoneColumns.end() ? std::optional<ZoneColumn>() : *found;
}

bool IsNumber(ZoneColumn column)
{
    return column != ZoneColumn::Type && column != ZoneColumn::Territory &&
           column != ZoneColumn::Usage && column != ZoneColumn::Problems;
}

QString CellText(const ZoneRow& row, ZoneColumn column)
{
    switch (column) {
    case ZoneColumn::Type:
        return row.type;
    case ZoneColumn::Territory:
        return row.territory;
    case ZoneColumn::Number:
        return QString::number(row.number);
    case ZoneColumn::Usage:
        return row.values.Name();
    case ZoneColumn::X:
        return MetresText(row.circle.x);
    case ZoneColumn::Z:
        return MetresText(row.circle.z);
    case ZoneColumn::Radius:
        return MetresText(row.circle.radius);
    case ZoneColumn::StaticMin:
        return QString::number(row.values.counts.staticMin);
    case ZoneColumn::StaticMax:
        return QString::number(row.values.counts.staticMax);
    case ZoneColumn::DynamicMin:
        return QString::number(row.values.counts.dynamicMin);
    case ZoneColumn::DynamicMax:
        return QString::number(row.values.counts.dynamicMax);
    case ZoneColumn::Depth:
        return QString::number(row.values.depth);
    case ZoneColumn::Problems:
        break;
    }
    return row.problems;
}

double NumberAt(const ZoneRow& row, ZoneColumn column)
{
    switch (column) {
    case ZoneColumn::Number:
        return row.number;
    case ZoneColumn::X:
        return row.circle.x;
    case ZoneColumn::Z:
        return row.circle.z;
    case ZoneColumn::Radius:
        return row.circle.radius;
    case ZoneColumn::StaticMin:
        return row.values.counts.staticMin;
    case ZoneColumn::StaticMax:
        return row.values.counts.staticMax;
    case ZoneColumn::DynamicMin:
        return row.values.counts.dynamicMin;
    case ZoneColumn::DynamicMax:
        return row.values.counts.dynamicMax;
    case ZoneColumn::Depth:
        return row.values.depth;
    case ZoneColumn::Type:
    case ZoneColumn::Territory:
    case ZoneColumn::Usage:
    case ZoneColumn::Problems:
        break;
    }
    return 0;
}

QString Letters(const QString& name)
{
    QString letters = name.toLower();
    for (const char separator : {' ', '-', '_'}) {
        letters.remove(QLatin1Char(separator));
    }
    return letters;
}

ZoneRow NamelessRow(const ZoneRecord& zone, const WorldScale& scale)
{
    return {{}, {}, 0, zone.values, InWorld(zone, scale), {}};
}

std::vector<ZoneRow> ZoneRows(const std::vector<TypeRecord>& types, const WorldScale& scale)
{
    std::vector<ZoneRow> rows;
    for (const TypeRecord& type : types) {
        for (const TerritoryRecord& territory : type.territories) {
            int number = 0;
            for (const ZoneRecord& zone : territory.zones) {
                rows.push_back(
                    {type.name, territory.name, ++number, zone.values, InWorld(zone, scale), {}});
            }
        }
    }
    return rows;
}
