#include "tool/ProjectDifference.h"

#include "tool/Console.h"
#include "tool/PixelDifference.h"
#include "tool/Progress.h"

#include <QMap>

#include <algorithm>
#include <utility>

namespace {

QString Absent()
{
    return QStringLiteral("absent");
}

QString Present()
{
    return QStringLiteral("present");
}

/// The items by name. A number tells items of the same name apart: the first, the second and so on.
template <typename Item>
QMap<QPair<QString, int>, const Item*> ByName(const QVector<Item>& items)
{
    QMap<QString, int> counts;
    QMap<QPair<QString, int>, const Item*> named;
    for (const Item& item : items) {
        named.insert({item.name, counts[item.name]++}, &item);
    }
    return named;
}

/// Calls compare for items that are in both, and appends items that are in only one of them.
template <typename Item, typename Compare>
void CompareNamed(const QString& kind, const QVector<Item>& a, const QVector<Item>& b,
                  QVector<Report>& differences, Compare compare)
{
    const auto namedA = ByName(a);
    const auto namedB = ByName(b);
    for (auto it = namedA.begin(); it != namedA.end(); ++it) {
        const QString place = kind + QLatin1Char(' ') + Console::Quoted(it.key().first);
        const Item* other = namedB.value(it.key());
        if (other) {
            compare(place, *it.value(), *other);
        } else {
            AddDifference(place, Present(), Absent(), differences);
        }
    }
    for (auto it = namedB.begin(); it != namedB.end(); ++it) {
        if (!namedA.contains(it.key())) {
            const QString place = kind + QLatin1Char(' ') + Console::Quoted(it.key().first);
            AddDifference(place, Absent(), Present(), differences);
        }
    }
}

template <typename Item>
QStringList NamesOf(const QVector<Item>& items)
{
    QStringList names;
    for (const Item& item : items) {
        names.append(item.name);
    }
    return names;
}

/// Appends a difference if both hold the same names in another order. With different names the
/// order is not reported.
template <typename Item>
void CompareOrder(const QString& kind, const QVector<Item>& a, const QVector<Item>& b,
                  QVector<Report>& differences)
{
    QStringList sortedA = NamesOf(a);
    QStringList sortedB = NamesOf(b);
    sortedA.sort();
    sortedB.sort();
    if (sortedA == sortedB) {
        AddDifference(QStringLiteral("order of ") + kind, NamesOf(a).join(QStringLiteral(", ")),
                      NamesOf(b).join(QStringLiteral(", ")), differences);
    }
}

QString Names(const QVector<QString>& names)
{
    return QStringList(names.begin(), names.end()).join(QStringLiteral(", "));
}

QString ColorText(const QColor& color)
{
    return color.name(QColor::HexArgb);
}

/// Returns false after printing an error.
bool CompareLayer(const QString& place, const ProjectData& a, const LayerData& layerA,
                  const ProjectData& b, const LayerData& layerB, QVector<Report>& differences)
{
    const auto compare = [&](const char* what, const QString& textA, const QString& textB) {
        AddDifference(QStringLiteral("%1 of %2").arg(QString::fromLatin1(what), place), textA,
                      textB, differences);
    };
    compare("usage flags", QString::number(layerA.usageFlags), QString::number(layerB.usageFlags));
    compare("value flags", QString::number(layerA.valueFlags), QString::number(layerB.valueFlags));
    compare("color", ColorText(layerA.color), ColorText(layerB.color));
    compare("visibility", layerA.isVisible ? QStringLiteral("shown") : QStringLiteral("hidden"),
            layerB.isVisible ? QStringLiteral("shown") : QStringLiteral("hidden"));
    PixelDifference pixels;
    if (a.layerSize == b.layerSize &&
        !CompareBitmaps(LayerBitmap(a, layerA), LayerBitmap(b, layerB), pixels)) {
        return false;
    }
    if (!pixels.IsEmpty()) {
        differences.append(pixels.ToReport(QStringLiteral("pixels of ") + place));
    }
    return true;
}

/// All values of a zone as one text.
QString ZoneKey(const ZoneData& zone)
{
    const ZoneValues& values = zone.values;
    const SpawnCounts& counts = values.counts;
    QStringList parts = {values.Name()};
    for (const float number : {zone.x, zone.z, values.radius}) {
        parts.append(QString::number(static_cast<double>(number), 'g', 9));
    }
    for (const int number :
         {counts.staticMin, counts.staticMax, counts.dynamicMin, counts.dynamicMax, values.depth}) {
        parts.append(QString::number(number));
    }
    return parts.join(QLatin1Char('\n'));
}

void CompareZones(const QString& place, const QVector<ZoneData>& a, const QVector<ZoneData>& b,
                  QVector<Report>& differences)
{
    QMap<QString, int> surplus;
    for (const ZoneData& zone : a) {
        ++surplus[ZoneKey(zone)];
    }
    for (const ZoneData& zone : b) {
        --surplus[ZoneKey(zone)];
    }
    const auto isSame = [](const ZoneData& zoneA, const ZoneData& zoneB) {
        return ZoneKey(zoneA) == ZoneKey(zoneB);
    };
    const auto other = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), isSame).first;
    int onlyA = 0;
    int onlyB = 0;
    for (const int count : qAsConst(surplus)) {
        onlyA += qMax(count, 0);
        onlyB += qMax(-count, 0);
    }
    if (onlyA + onlyB > 0) {
        Report report;
        report.Add(QStringLiteral("place"), QStringLiteral("zones of ") + place);
        report.Add(QStringLiteral("only-a"), onlyA);
        report.Add(QStringLiteral("only-b"), onlyB);
        differences.append(report);
    } else if (other != a.end()) {
        Report report;
        report.Add(QStringLiteral("place"), QStringLiteral("order of zones of ") + place);
        report.Add(QStringLiteral("first"), static_cast<int>(other - a.begin()) + 1);
        differences.append(report);
    }
}

void CompareTypes(const ProjectData& a, const ProjectData& b, QVector<Report>& differences)
{
    const auto compareTerritory = [&](const QString& place, const TerritoryData& territoryA,
                                      const TerritoryData& territoryB) {
        AddDifference(QStringLiteral("color of ") + place,
                      ColorText(QColor::fromRgba(territoryA.color)),
                      ColorText(QColor::fromRgba(territoryB.color)), differences);
        AddDifference(QStringLiteral("visibility of ") + place,
                      territoryA.isVisible ? QStringLiteral("shown") : QStringLiteral("hidden"),
                      territoryB.isVisible ? QStringLiteral("shown") : QStringLiteral("hidden"),
                      differences);
        CompareZones(place, territoryA.zones, territoryB.zones, differences);
    };
    const auto compareType = [&](const QString& place, const TerritoryTypeData& typeA,
                                 const TerritoryTypeData& typeB) {
        CompareOrder(QStringLiteral("territories of ") + place, typeA.territories,
                     typeB.territories, differences);
        CompareNamed(place + QStringLiteral(", territory"), typeA.territories, typeB.territories,
                     differences, compareTerritory);
    };
    CompareOrder(QStringLiteral("territory types"), a.types, b.types, differences);
    CompareNamed(QStringLiteral("territory type"), a.types, b.types, differences, compareType);
}

} // namespace

void AddDifference(const QString& place, const QString& a, const QString& b,
                   QVector<Report>& differences)
{
    if (a != b) {
        Report report;
        report.Add(QStringLiteral("place"), place);
        report.Add(QStringLiteral("a"), a);
        report.Add(QStringLiteral("b"), b);
        differences.append(report);
    }
}

bool CompareDocuments(const ProjectData& a, const ProjectData& b, QVector<Report>& differences)
{
    const auto compare = [&differences](const char* place, const QString& textA,
                                        const QString& textB) {
        AddDifference(QString::fromLatin1(place), textA, textB, differences);
    };
    compare("layer size", SizeText(a.layerSize), SizeText(b.layerSize));
    compare("world size", SizeText(a.worldSize), SizeText(b.worldSize));
    compare("background", a.backgroundFile, b.backgroundFile);
    compare("background color", ColorText(a.backgroundColor), ColorText(b.backgroundColor));
    compare("usage flag types", Names(a.flagTypes.usages), Names(b.flagTypes.usages));
    compare("value flag types", Names(a.flagTypes.values), Names(b.flagTypes.values));
    bool isGood = true;
    Progress progress(QStringLiteral("Comparing layers"), a.layers.size());
    CompareNamed(QStringLiteral("layer"), a.layers, b.layers, differences,
                 [&](const QString& place, const LayerData& layerA, const LayerData& layerB) {
                     isGood = isGood && CompareLayer(place, a, layerA, b, layerB, differences);
                     progress.Step();
                 });
    CompareOrder(QStringLiteral("layers"), a.layers, b.layers, differences);
    CompareTypes(a, b, differences);
    return isGood;
}
