#include "territories/BulkEntry.h"

#include "territories/ZonePlaces.h"

#include <algorithm>
#include <cmath>

namespace {

/// Metres. Far beyond any world.
constexpr double FarthestPlace = 1e9;

double Changed(double value, const BulkEntry& entry)
{
    switch (entry.kind) {
    case BulkEntry::Kind::Add:
        return value + entry.number;
    case BulkEntry::Kind::Multiply:
        return value * entry.number;
    case BulkEntry::Kind::Set:
        break;
    }
    return entry.number;
}

bool KeepsAll(const BulkEntry& entry)
{
    return (entry.kind == BulkEntry::Kind::Add && entry.number == 0) ||
           (entry.kind == BulkEntry::Kind::Multiply && entry.number == 1);
}

double InRange(double value, const NumberRange& range)
{
    return std::clamp(value, range.least, range.most);
}

int Whole(double value)
{
    return static_cast<int>(std::lround(value));
}

} // namespace

std::optional<BulkEntry> ParseBulkEntry(const QString& text)
{
    QString number = text.trimmed();
    if (number.isEmpty()) {
        return std::nullopt;
    }
    const QChar first = number.at(0);
    BulkEntry entry;
    bool isSigned = true;
    if (first == QLatin1Char('+') || first == QLatin1Char('-')) {
        entry.kind = BulkEntry::Kind::Add;
        isSigned = false;
    } else if (first == QLatin1Char('*')) {
        entry.kind = BulkEntry::Kind::Multiply;
    }
    if (entry.kind != BulkEntry::Kind::Set || first == QLatin1Char('=')) {
        number = number.mid(1).trimmed();
    }
    const bool hasSign = number.startsWith(QLatin1Char('-')) || number.startsWith(QLatin1Char('+'));
    bool isNumber = false;
    entry.number = number.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(entry.number) || (hasSign && !isSigned)) {
        return std::nullopt;
    }
    if (first == QLatin1Char('-')) {
        entry.number = -entry.number;
    }
    return entry;
}

NumberRange RangeOf(ZoneColumn column)
{
    switch (column) {
    case ZoneColumn::X:
    case ZoneColumn::Z:
        return {-FarthestPlace, FarthestPlace, false};
    case ZoneColumn::Radius:
        return {static_cast<double>(ZoneValues::MinRadius),
                static_cast<double>(ZoneValues::MaxRadius), false};
    case ZoneColumn::Depth:
        return {ZoneValues::MinDepth, ZoneValues::MaxDepth, true};
    default:
        return {0, ZoneValues::MaxCount, true};
    }
}

ZoneRecord WithNumber(ZoneColumn column, double number, ZoneRecord zone, const WorldScale& scale)
{
    SpawnCounts& counts = zone.values.counts;
    switch (column) {
    case ZoneColumn::X:
        zone.place = PlaceAtX(zone.place, number, scale);
        break;
    case ZoneColumn::Z:
        zone.place = PlaceAtZ(zone.place, number, scale);
        break;
    case ZoneColumn::Radius:
        zone.values.radius = static_cast<float>(number);
        zone.radius = scale.pixelsPerMetreX * zone.values.radius;
        break;
    case ZoneColumn::StaticMin:
        counts.staticMin = Whole(number);
        break;
    case ZoneColumn::StaticMax:
        counts.staticMax = Whole(number);
        break;
    case ZoneColumn::DynamicMin:
        counts.dynamicMin = Whole(number);
        break;
    case ZoneColumn::DynamicMax:
        counts.dynamicMax = Whole(number);
        break;
    case ZoneColumn::Depth:
        zone.values.depth = Whole(number);
        break;
    default:
        break;
    }
    return zone;
}

ZoneRecord Applied(const BulkEntry& entry, ZoneColumn column, ZoneRecord zone,
                   const WorldScale& scale)
{
    const double changed = Changed(CellText(NamelessRow(zone, scale), column).toDouble(), entry);
    // Files may hold places that are no numbers.
    if (std::isnan(changed) || KeepsAll(entry)) {
        return zone;
    }
    const double value = InRange(changed, RangeOf(column));
    const bool isX = column == ZoneColumn::X;
    if ((isX || column == ZoneColumn::Z) && entry.kind == BulkEntry::Kind::Add &&
        value == changed) {
        zone.place = MovedPlace(zone.place, isX ? entry.number : 0, isX ? 0 : entry.number, scale);
        return zone;
    }
    zone = WithNumber(column, value, zone, scale);
    SpawnCounts& counts = zone.values.counts;
    if (column == ZoneColumn::StaticMin) {
        counts.staticMax = std::max(counts.staticMax, counts.staticMin);
    } else if (column == ZoneColumn::StaticMax) {
        counts.staticMin = std::min(counts.staticMin, counts.staticMax);
    } else if (column == ZoneColumn::DynamicMin) {
        counts.dynamicMax = std::max(counts.dynamicMax, counts.dynamicMin);
    } else if (column == ZoneColumn::DynamicMax) {
        counts.dynamicMin = std::min(counts.dynamicMin, counts.dynamicMax);
    }
    return zone;
}
