#pragma once

#include "document/Edit.h"

#include <QRectF>
#include <QVector>

#include <memory>
#include <vector>

class Zone;

/// Makes the zone editable and visible as the zones of its holder are.
void FitToHolder(Document& document, Zone& zone);

/// Where it is on the map, in scene units.
QRectF AreaOf(const Zone& zone);
QRectF AreaOf(const QVector<Zone*>& zones);
/// The same for the zones of entries.
template <typename Entries>
QRectF AreaOfZones(const Entries& entries)
{
    QRectF area;
    for (const auto& entry : entries) {
        area |= AreaOf(*entry.zone);
    }
    return area;
}

/// Adds or removes zones. Those that are not on the map are kept here.
class ZonePresence : public Edit
{
public:
    using Edit::Edit;
    ~ZonePresence() override;

    /// All zones of an edit are added, or all are removed.
    void Add(std::unique_ptr<Zone> zone, Territory& territory);
    void Remove(Zone& zone);

    bool Changes() const override { return !m_entries.empty(); }
    EditPlace Place() const override;

protected:
    void Do(Document& document) override { SetPresent(document, m_doesAdd); }
    void Undo(Document& document) override { SetPresent(document, !m_doesAdd); }

private:
    struct Entry
    {
        Zone* zone;
        Territory* territory;
        /// While the zone is in no territory.
        std::unique_ptr<Zone> kept;
    };

    void SetPresent(Document& document, bool isPresent);

    std::vector<Entry> m_entries;
    bool m_doesAdd = false;
};
