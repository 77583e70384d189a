#include "ui/NumberRows.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/ProjectNumbers.h"
#include "layers/AreaScale.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

#include <QCoreApplication>

#include <cmath>
#include <functional>
#include <limits>

namespace {

using Kind = NumberSubject::Kind;
using Column = NumbersModel::Column;

constexpr double NoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr int KmDigits = 3;
constexpr int ShareDigits = 2;
constexpr int MetreDigits = 1;

QString Text(const char* text)
{
    return QCoreApplication::translate("DockStatistics", text);
}

AreaScale Scale()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    return {settings.LayerSize(), {settings.WorldWidth(), settings.WorldHeight()}};
}

QVector<Column> AreaColumns()
{
    return {{Text("Pixels"), Text("Pixels that count in the map: every grey but 0"), 0},
            {Text("km²"), Text("Square kilometres"), KmDigits},
            {Text("% of world"), Text("Share of the world's area"), ShareDigits}};
}

QVector<Column> BoundsColumns()
{
    return {{Text("X min"), Text("Left edge, in metres"), MetreDigits},
            {Text("X max"), Text("Right edge, in metres"), MetreDigits},
            {Text("Z min"), Text("Lower edge, in metres"), MetreDigits},
            {Text("Z max"), Text("Upper edge, in metres"), MetreDigits}};
}

QVector<double> AreaNumbers(const PixelNumbers& numbers)
{
    const AreaScale scale = Scale();
    return {double(numbers.pixels), scale.SquareKm(numbers.pixels), scale.Percent(numbers.pixels)};
}

QVector<double> BoundsNumbers(const PixelNumbers& numbers)
{
    const QRectF metres = Scale().InWorld(numbers.bounds);
    return numbers.bounds.isEmpty()
               ? QVector<double>{NoNumber, NoNumber, NoNumber, NoNumber}
               : QVector<double>{metres.left(), metres.right(), metres.top(), metres.bottom()};
}

void AddFlags(NumberRows& table, const QString& title, const QVector<QString>& names, Kind kind,
              const std::function<std::optional<PixelNumbers>(int)>& numbersOf)
{
    constexpr int bits = 32;
    for (int bit = 0; bit < std::max(bits, names.size()); ++bit) {
        const std::optional<PixelNumbers> numbers = numbersOf(bit);
        if (bit >= names.size() && (!numbers || numbers->pixels == 0)) {
            continue;
        }
        const QVector<double> cells =
            numbers ? AreaNumbers(*numbers) + BoundsNumbers(*numbers) : QVector<double>();
        table.rows.append({{title, AreaFlagTypes::BitName(bit, names)}, cells});
        table.subjects.append({kind, bit, {}});
    }
}

NumbersModel::Row ZoneRow(const QString& what, const QString& name,
                          const std::optional<ZoneSums>& sums)
{
    if (!sums) {
        return {{what, name}, {}};
    }
    return {{what, name},
            {double(sums->zones), double(sums->creaturesMin), double(sums->creaturesMax),
             sums->squareKm, sums->MinPerSquareKm().value_or(NoNumber),
             sums->MaxPerSquareKm().value_or(NoNumber)}};
}

/// Nothing before all of its territories are counted.
std::optional<ZoneNumbers> NumbersOfType(const TerritoryType& type, const ProjectNumbers& numbers)
{
    ZoneNumbers sum;
    const QVector<Territory*> territories = type.Territories();
    for (const Territory* territory : territories) {
        const std::optional<ZoneNumbers> zones = numbers.Zones(*territory);
        if (!zones) {
            return {};
        }
        sum += *zones;
    }
    return sum;
}

bool IsAbout(const NumberSubject& subject, const TerritoryType& type, const Territory& territory,
             const Zone& zone)
{
    switch (subject.kind) {
    case Kind::AllZones:
        return true;
    case Kind::Type:
        return type.Id() == subject.id;
    case Kind::Territory:
        return territory.Id() == subject.id;
    case Kind::ZoneUsage:
        return zone.Values().Name() == subject.zoneUsage;
    default:
        return false;
    }
}

QRectF AreaOfZones(const NumberSubject& subject, const Document& document)
{
    QRectF area;
    const QVector<TerritoryType*> types = document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            for (const Zone* zone : territory->Zones()) {
                const QRectF rect = zone->sceneBoundingRect();
                // Files may hold places that are no numbers.
                if (IsAbout(subject, *type, *territory, *zone) &&
                    std::isfinite(rect.center().x()) && std::isfinite(rect.center().y())) {
                    area |= rect;
                }
            }
        }
    }
    return area;
}

} // namespace

QVector<Column> LayerNumberColumns()
{
    QVector<Column> columns{{Text("Layer"), {}}};
    columns += AreaColumns();
    columns.append({Text("Greys"), Text("Pixels that count in the map but are not drawn"), 0});
    return columns + BoundsColumns();
}

QVector<Column> FlagNumberColumns()
{
    return QVector<Column>{{Text("Kind"), {}}, {Text("Flag"), {}}} + AreaColumns() +
           BoundsColumns();
}

QVector<Column> ZoneNumberColumns()
{
    return {
        {Text("Of"), {}},
        {Text("Name"), {}},
        {Text("Zones"), {}, 0},
        {Text("Creatures min"), Text("Static and dynamic minimum together"), 0},
        {Text("Creatures max"), Text("Static and dynamic maximum together"), 0},
        {Text("km² of circles"),
         Text("The areas of the circles. Ground that several circles cover counts once for each."),
         KmDigits},
        {Text("Min per km²"), Text("Creatures min for each km² of circles"), ShareDigits},
        {Text("Max per km²"), Text("Creatures max for each km² of circles"), ShareDigits}};
}

NumberRows LayerNumberRows(const Document& document, const ProjectNumbers& numbers)
{
    NumberRows table;
    const QVector<Layer*> layers = document.Layers().Layers();
    for (const Layer* layer : layers) {
        const std::optional<PixelNumbers> counted = numbers.Layers().OfLayer(layer->Id());
        QVector<double> cells;
        if (counted) {
            cells = AreaNumbers(*counted);
            cells.append(double(counted->greys));
            cells += BoundsNumbers(*counted);
        }
        table.rows.append({{layer->text()}, cells});
        table.subjects.append({Kind::Layer, layer->Id(), {}});
    }
    return table;
}

NumberRows FlagNumberRows(const ProjectNumbers& numbers)
{
    NumberRows table;
    const AreaFlagTypes& types = ProjectSettings::Instance().FlagTypes();
    const LayerNumbers& layers = numbers.Layers();
    AddFlags(table, Text("Usage"), types.usages, Kind::Usage,
             [&layers](int bit) { return layers.OfUsage(bit); });
    AddFlags(table, Text("Value"), types.values, Kind::Value,
             [&layers](int bit) { return layers.OfValue(bit); });
    return table;
}

NumberRows ZoneNumberRows(const Document& document, const ProjectNumbers& numbers)
{
    NumberRows table;
    const auto add = [&table](Kind kind, int id, const QString& what, const QString& name,
                              const std::optional<ZoneSums>& sums, const QString& usage = {}) {
        table.rows.append(ZoneRow(what, name, sums));
        table.subjects.append({kind, id, usage});
    };
    const auto sumsOf = [](const std::optional<ZoneNumbers>& zones) {
        return zones ? std::optional<ZoneSums>(zones->All()) : std::nullopt;
    };
    add(Kind::AllZones, -1, Text("Project"), Text("All zones"), {});
    ZoneNumbers all;
    bool isAllKnown = true;
    const QVector<TerritoryType*> types = document.Types().Types();
    for (const TerritoryType* type : types) {
        const std::optional<ZoneNumbers> ofType = NumbersOfType(*type, numbers);
        isAllKnown = isAllKnown && ofType.has_value();
        all += ofType.value_or(ZoneNumbers());
        add(Kind::Type, type->Id(), Text("Type"), type->text(), sumsOf(ofType));
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            add(Kind::Territory, territory->Id(), Text("Territory"),
                QStringLiteral("%1 / %2").arg(type->text(), territory->text()),
                sumsOf(numbers.Zones(*territory)));
        }
    }
    if (isAllKnown) {
        table.rows.first() = ZoneRow(Text("Project"), Text("All zones"), all.All());
        const std::vector<ZoneNumbers::UsageSums> usages = all.Usages();
        for (const ZoneNumbers::UsageSums& usage : usages) {
            add(Kind::ZoneUsage, -1, Text("Usage"), usage.name, usage.sums, usage.name);
        }
    }
    return table;
}

QRectF AreaOf(const NumberSubject& subject, const Document& document, const ProjectNumbers& numbers)
{
    std::optional<PixelNumbers> counted;
    switch (subject.kind) {
    case Kind::Layer:
        counted = numbers.Layers().OfLayer(subject.id);
        break;
    case Kind::Usage:
        counted = numbers.Layers().OfUsage(subject.id);
        break;
    case Kind::Value:
        counted = numbers.Layers().OfValue(subject.id);
        break;
    default:
        return AreaOfZones(subject, document);
    }
    return counted ? QRectF(counted->bounds) : QRectF();
}
