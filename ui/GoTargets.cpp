#include "ui/GoTargets.h"

#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "ui/Bookmarks.h"
#include "ui/SceneScale.h"

#include <QCoreApplication>
#include <QMap>
#include <QSet>

#include <algorithm>

namespace {

QString Text(const char* text)
{
    return QCoreApplication::translate("GoTargets", text);
}

std::optional<QPointF> MiddleOf(const QRectF& area)
{
    return area.isEmpty() ? std::nullopt : std::optional<QPointF>(area.center());
}

std::optional<QPointF> MiddleOfTerritory(const Territory& territory)
{
    QRectF area;
    for (const Zone* zone : territory.Zones()) {
        area |= zone->sceneBoundingRect();
    }
    return MiddleOf(area);
}

void AddTerritories(const Document& document, QVector<GoTarget>& targets)
{
    const QVector<TerritoryType*> types = document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            targets.append(
                {territory->text(), {}, Text("territory of %1").arg(type->text()), [territory] {
                     return MiddleOfTerritory(*territory);
                 }});
        }
    }
}

void AddLayers(const Document& document, QVector<GoTarget>& targets)
{
    const QVector<Layer*> layers = document.Layers().Layers();
    for (const Layer* layer : layers) {
        targets.append({layer->text(), {}, Text("layer"), [layer] {
                            return MiddleOf(QRectF(raster::SetBounds(layer->Image())));
                        }});
    }
}

/// Upper and lower case do not tell names apart for who types one.
void LabelThem(QVector<GoTarget>& targets)
{
    QMap<QString, int> counts;
    for (const GoTarget& target : qAsConst(targets)) {
        ++counts[target.name.toCaseFolded()];
    }
    QSet<QString> labels;
    for (GoTarget& target : targets) {
        const bool isAlone = counts.value(target.name.toCaseFolded()) == 1;
        const QString base =
            isAlone ? target.name : QStringLiteral("%1 (%2)").arg(target.name, target.kind);
        target.label = base;
        for (int i = 2; labels.contains(target.label.toCaseFolded()); ++i) {
            target.label = QStringLiteral("%1 %2").arg(base, QString::number(i));
        }
        labels.insert(target.label.toCaseFolded());
    }
}

} // namespace

QVector<GoTarget> FindGoTargets(const Document& document, const Bookmarks& bookmarks,
                                const SceneScale& scale)
{
    QVector<GoTarget> targets;
    AddTerritories(document, targets);
    AddLayers(document, targets);
    const QVector<Bookmark> all = bookmarks.All();
    for (const Bookmark& bookmark : all) {
        const QPointF place = scale.ToScene(bookmark.place);
        targets.append({bookmark.name,
                        {},
                        Text("bookmark"),
                        [place] { return std::optional<QPointF>(place); },
                        bookmark.zoom});
    }
    const auto isNameless = [](const GoTarget& target) { return target.name.isEmpty(); };
    targets.erase(std::remove_if(targets.begin(), targets.end(), isNameless), targets.end());
    LabelThem(targets);
    return targets;
}
