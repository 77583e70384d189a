#include "territories/ZoneSelection.h"

#include "territories/Territory.h"
#include "territories/Zone.h"

#include <QGraphicsScene>
#include <QSet>

#include <algorithm>

SelectionChange::~SelectionChange()
{
    if (m_scene) {
        m_scene->blockSignals(m_wasBlocked);
        // Nothing is sent while an outer change, or a scene that is being destroyed, blocks it.
        emit m_scene->selectionChanged();
    }
}

void SelectionChange::Set(Zone& zone, bool isSelected)
{
    QGraphicsScene* scene = zone.scene();
    if (!scene || zone.isSelected() == isSelected) {
        return;
    }
    if (!m_scene) {
        m_scene = scene;
        m_wasBlocked = scene->blockSignals(true);
    }
    zone.setSelected(isSelected);
}

void ZoneSelection::Set(QGraphicsScene& scene, const QVector<Zone*>& zones)
{
    SelectionChange change;
    const QSet<Zone*> wanted(zones.begin(), zones.end());
    const QList<QGraphicsItem*> items = scene.selectedItems();
    for (QGraphicsItem* item : items) {
        auto* zone = qgraphicsitem_cast<Zone*>(item);
        if (zone && !wanted.contains(zone)) {
            change.Set(*zone, false);
        }
    }
    for (Zone* zone : zones) {
        if (zone->scene() == &scene && !zone->isSelected()) {
            Lend(*zone);
            change.Set(*zone, true);
        }
    }
}

void ZoneSelection::Lend(Zone& zone)
{
    const bool isSelectable = (zone.flags() & QGraphicsItem::ItemIsSelectable) != 0;
    const bool isShown = zone.isVisible();
    if (isSelectable && isShown) {
        return;
    }
    m_loans.push_back({&zone, !isSelectable, !isShown});
    zone.setFlag(QGraphicsItem::ItemIsSelectable, true);
    zone.setVisible(true);
}

void ZoneSelection::Settle(const Territory* current)
{
    const auto isOver = [current](const Loan& loan) {
        Zone* zone = loan.zone;
        if (!zone || zone->isSelected()) {
            return !zone;
        }
        const Territory* holder = zone->Holder();
        if (holder && holder != current) {
            if (loan.isSelectable) {
                zone->setFlag(QGraphicsItem::ItemIsSelectable, false);
            }
            if (loan.isShown) {
                zone->setVisible(holder->IsVisible());
            }
        }
        return true;
    };
    m_loans.erase(std::remove_if(m_loans.begin(), m_loans.end(), isOver), m_loans.end());
}
