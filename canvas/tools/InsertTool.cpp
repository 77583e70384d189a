#include "canvas/tools/InsertTool.h"

#include "canvas/MainScene.h"
#include "document/Document.h"
#include "document/edits/TerritoryEdits.h"

#include <QGraphicsSceneMouseEvent>

void InsertTool::Press(QGraphicsSceneMouseEvent& event)
{
    Document& document = Parts().document;
    Territory* territory = document.CurrentTerritory();
    if (event.button() != Qt::LeftButton || !territory) {
        return;
    }
    if (document.Do(Edits::InsertZone(*territory, event.scenePos(), document.ZoneTemplate()))) {
        emit Parts().scene.ZoneInserted(territory->Zones().last());
    }
}
