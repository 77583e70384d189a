#pragma once

#include "document/Edit.h"

#include <memory>
#include <vector>

class Zone;

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
