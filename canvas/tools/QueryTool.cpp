#include "canvas/tools/QueryTool.h"

#include "app/Tracked.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "territories/Territory.h"
#include "territories/Zone.h"

#include <QGraphicsSceneMouseEvent>

void QueryTool::Press(QGraphicsSceneMouseEvent& event)
{
    if (event.button() != Qt::LeftButton) {
        return;
    }
    auto* zone = qgraphicsitem_cast<Zone*>(Parts().scene.itemAt(event.scenePos(), QTransform()));
    Territory* territory = zone ? zone->Holder() : nullptr;
    if (!territory) {
        return;
    }
    // The answer unlocks the territory's zones and clears the selection, so the zone comes after.
    const Tracked<Zone> tracked(zone);
    emit Parts().view.TerritorySelected(territory);
    if (tracked) {
        zone->setSelected(true);
    }
}
