#include "document/edits/ZonePresence.h"

#include "document/Document.h"
#include "territories/Zone.h"

#include <QGraphicsScene>
#include <QSet>

#include <utility>

namespace {

void PutIn(Document& document, std::unique_ptr<Zone> zone, Territory& territory)
{
    const bool isCurrent = document.CurrentTerritory() == &territory;
    zone->setFlag(QGraphicsItem::ItemIsMovable, isCurrent);
    zone->setFlag(QGraphicsItem::ItemIsSelectable, isCurrent);
    // The current territory is shown, whatever its check mark says.
    zone->setVisible(isCurrent || territory.IsVisible());
    Zone* present = zone.release();
    territory.AddZone(present);
    if (QGraphicsScene* scene = document.ZoneScene()) {
        scene->addItem(present);
    }
}

std::unique_ptr<Zone> TakeOut(Zone& zone, Territory& territory)
{
    zone.setSelected(false);
    if (QGraphicsScene* scene = zone.scene()) {
        scene->removeItem(&zone);
    }
    territory.RemoveZone(zone.Id());
    return std::unique_ptr<Zone>(&zone);
}

} // namespace

ZonePresence::~ZonePresence() = default;

void ZonePresence::Add(std::unique_ptr<Zone> zone, Territory& territory)
{
    m_doesAdd = true;
    Zone* added = zone.get();
    m_entries.push_back({added, &territory, std::move(zone)});
}

void ZonePresence::Remove(Zone& zone)
{
    if (zone.Holder()) {
        m_entries.push_back({&zone, zone.Holder(), nullptr});
    }
}

EditPlace ZonePresence::Place() const
{
    QRectF area;
    for (const Entry& entry : m_entries) {
        area |= entry.zone->boundingRect().translated(entry.zone->pos());
    }
    return {m_entries.front().territory, area};
}

void ZonePresence::SetPresent(Document& document, bool isPresent)
{
    QSet<Territory*> territories;
    for (Entry& entry : m_entries) {
        if (isPresent) {
            PutIn(document, std::move(entry.kept), *entry.territory);
        } else {
            entry.kept = TakeOut(*entry.zone, *entry.territory);
        }
        territories.insert(entry.territory);
    }
    for (Territory* territory : qAsConst(territories)) {
        emit document.ZonesChanged(territory);
    }
}
