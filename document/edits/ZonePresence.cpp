#include "document/edits/ZonePresence.h"

#include "document/Document.h"
#include "territories/Zone.h"
#include "territories/ZoneSelection.h"

#include <QGraphicsScene>
#include <QSet>

#include <utility>

namespace {

void PutIn(Document& document, std::unique_ptr<Zone> zone, Territory& territory)
{
    Zone* present = zone.release();
    territory.AddZone(present);
    FitToHolder(document, *present);
    if (QGraphicsScene* scene = document.ZoneScene()) {
        scene->addItem(present);
    }
}

std::unique_ptr<Zone> TakeOut(Zone& zone, Territory& territory, SelectionChange& selection)
{
    selection.Set(zone, false);
    if (QGraphicsScene* scene = zone.scene()) {
        scene->removeItem(&zone);
    }
    territory.RemoveZone(zone.Id());
    return std::unique_ptr<Zone>(&zone);
}

} // namespace

void FitToHolder(Document& document, Zone& zone)
{
    const Territory& territory = *zone.Holder();
    const bool isCurrent = document.CurrentTerritory() == &territory;
    zone.setFlag(QGraphicsItem::ItemIsMovable, isCurrent);
    zone.setFlag(QGraphicsItem::ItemIsSelectable, isCurrent);
    // The current territory is shown, whatever its check mark says.
    zone.setVisible(isCurrent || territory.IsVisible());
}

QRectF AreaOf(const Zone& zone)
{
    return zone.boundingRect().translated(zone.pos());
}

QRectF AreaOf(const QVector<Zone*>& zones)
{
    QRectF area;
    for (const Zone* zone : zones) {
        area |= AreaOf(*zone);
    }
    return area;
}

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
    return {m_entries.front().territory, AreaOfZones(m_entries)};
}

void ZonePresence::SetPresent(Document& document, bool isPresent)
{
    QSet<Territory*> territories;
    {
        SelectionChange selection;
        for (Entry& entry : m_entries) {
            if (isPresent) {
                PutIn(document, std::move(entry.kept), *entry.territory);
            } else {
                entry.kept = TakeOut(*entry.zone, *entry.territory, selection);
            }
            territories.insert(entry.territory);
        }
    }
    for (Territory* territory : qAsConst(territories)) {
        emit document.ZonesChanged(territory);
    }
}
