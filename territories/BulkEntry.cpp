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

ZoneRecord Applied(const BulkEntry& entry, ZoneColumn column, ZoneRecord zone,
                   const WorldScale& scale)
{
    const double changed = Changed(CellText(NamelessRow(zone, scale), column).toDouble(), entry);
    // Files may hold places that are no numbers.
    if (std::isnan(changed) || KeepsAll(entry)) {
        return zone;
    }
    const double value = InRange(changed, RangeOf(column));
    const bool isMove = entry.kind == BulkEntry::Kind::Add && value == changed;
    SpawnCounts& counts = zone.values.counts;
    switch (column) {
    case ZoneColumn::X:
        zone.place = isMove ? MovedPlace(zone.place, entry.number, 0, scale)
                            : PlaceAtX(zone.place, value, scale);
        break;
    case ZoneColumn::Z:
        zone.place = isMove ? MovedPlace(zone.place, 0, entry.number, scale)
                            : PlaceAtZ(zone.place, value, scale);
        break;
    case ZoneColumn::Radius:
        zone.values.radius = static_cast<float>(value);
        zone.radius = scale.pixelsPerMetreX * zone.values.radius;
        break;
    case ZoneColumn::StaticMin:
        counts.staticMin = Whole(value);
        counts.staticMax = std::max(counts.staticMax, counts.staticMin);
        break;
    case ZoneColumn::StaticMax:
        counts.staticMax = Whole(value);
        counts.staticMin = std::min(counts.staticMin, counts.staticMax);
        break;
    case ZoneColumn::DynamicMin:
        counts.dynamicMin = Whole(value);
        counts.dynamicMax = std::max(counts.dynamicMax, counts.dynamicMin);
        break;
    case ZoneColumn::DynamicMax:
        counts.dynamicMax = Whole(value);
        counts.dynamicMin = std::min(counts.dynamicMin, counts.dynamicMax);
        break;
    case ZoneColumn::Depth:
        zone.values.depth = Whole(value);
        break;
    default:
        break;
    }
    return zone;
}
