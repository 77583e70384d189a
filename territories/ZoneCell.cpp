#include "territories/ZoneCell.h"

#include "territories/BulkEntry.h"
#include "territories/ZoneSheet.h"
#include "territories/rules/ZoneRules.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

/// What is wrong with the text of a column of numbers; empty if nothing is.
QString NumberFault(ZoneColumn column, const QString& text)
{
    constexpr int digits = 15;
    const NumberRange range = RangeOf(column);
    const std::optional<double> number = NumberIn(text);
    if (text.isEmpty()) {
        return QStringLiteral("%1 is missing").arg(Key(column));
    }
    if (!number || (range.isWhole && *number != std::floor(*number))) {
        return (range.isWhole ? QStringLiteral("%1 '%2' is no whole number")
                              : QStringLiteral("%1 '%2' is no number"))
            .arg(Key(column), SheetExcerpt(text));
    }
    if (*number >= range.least && *number <= range.most) {
        return {};
    }
    const bool isAbove = *number > range.most;
    return QStringLiteral("%1 %2 is %3 %4")
        .arg(Key(column), SheetExcerpt(text),
             isAbove ? QStringLiteral("above") : QStringLiteral("below"),
             QString::number(isAbove ? range.most : range.least, 'g', digits));
}

/// What is wrong with the text of the usage; empty if nothing is. An event that is called almost
/// like a usage is none that anybody means.
QString UsageFault(const QString& text)
{
    if (!text.isEmpty() && text.trimmed().isEmpty()) {
        return QStringLiteral("%1 cannot be '%2'").arg(Key(ZoneColumn::Usage), text);
    }
    const QString usage = ResembledUsage(text);
    return usage.isEmpty()
               ? QString()
               : QStringLiteral("%1 '%2' is written '%3', and no event may be called so")
                     .arg(Key(ZoneColumn::Usage), SheetExcerpt(text), usage);
}

} // namespace

ZoneCell TakeCell(const ZoneRecord& zone, ZoneColumn column, const QString& text,
                  const WorldScale& scale)
{
    ZoneCell cell{{}, zone.values, zone.place};
    const QString typed = text.trimmed();
    const QString shown = CellText(NamelessRow(zone, scale), column);
    if (text == shown || typed == shown) {
        return cell;
    }
    if (typed.isEmpty() || column == ZoneColumn::Type || column == ZoneColumn::Territory ||
        column == ZoneColumn::Number || column == ZoneColumn::Problems) {
        cell.refusal = QStringLiteral("%1 cannot be '%2'").arg(Key(column), typed);
        return cell;
    }
    cell.refusal = CellFault(column, typed);
    if (cell.refusal.isEmpty() && (column == ZoneColumn::X || column == ZoneColumn::Z)) {
        cell.refusal = PlaceFault(scale);
    }
    if (!cell.refusal.isEmpty()) {
        return cell;
    }
    if (column == ZoneColumn::Usage) {
        cell.values.SetName(typed);
        return cell;
    }
    const BulkEntry entry{BulkEntry::Kind::Set, NumberIn(typed).value_or(0)};
    const ZoneRecord changed = Applied(entry, column, zone, scale);
    return {{}, changed.values, changed.place};
}

QString CellFault(ZoneColumn column, const QString& text)
{
    return column == ZoneColumn::Usage ? UsageFault(text) : NumberFault(column, text);
}

QString PlaceFault(const WorldScale& scale)
{
    const float factors[] = {scale.pixelsPerMetreX, scale.pixelsPerMetreZ, scale.metresPerPixelX,
                             scale.metresPerPixelZ};
    return std::all_of(std::begin(factors), std::end(factors),
                       [](float factor) { return std::isfinite(factor); })
               ? QString()
               : QStringLiteral("it has no place, because the world has no size");
}

std::optional<double> NumberIn(const QString& text)
{
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? number : std::optional<double>();
}
