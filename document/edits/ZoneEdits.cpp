#include "document/edits/ZoneEdits.h"

#include "app/Names.h"
#include "document/Document.h"
#include "document/edits/EditGroup.h"
#include "document/edits/Presence.h"
#include "document/edits/TerritoryEdits.h"
#include "document/edits/ZonePresence.h"
#include "territories/TerritoryColors.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

#include <QSet>

#include <algorithm>
#include <utility>

namespace {

QString Text(const char* text)
{
    return Document::tr(text);
}

void AddUnique(QVector<Territory*>& territories, Territory* territory)
{
    if (!territories.contains(territory)) {
        territories.append(territory);
    }
}

void Announce(Document& document, const QVector<Territory*>& territories)
{
    for (Territory* territory : territories) {
        emit document.ZonesChanged(territory);
    }
}

/// Where a zone is and what it says.
struct ZoneState
{
    ZoneValues values;
    QPointF place;

    bool operator==(const ZoneState& other) const
    {
        return values == other.values && place == other.place;
    }
};

class ChangeZonesEdit : public Edit
{
public:
    ChangeZonesEdit(const QString& text, const std::vector<Edits::ZoneChange>& changes)
        : Edit(text)
    {
        for (const Edits::ZoneChange& change : changes) {
            Zone& zone = *change.zone;
            ZoneState after{change.values, QPointF(InSinglePrecision(change.place.x()),
                                                   InSinglePrecision(change.place.y()))};
            after.values.depth = qBound(Zone::MinDepth, after.values.depth, Zone::MaxDepth);
            ZoneState before{zone.Values(), zone.pos()};
            if (!(before == after) && zone.Holder()) {
                m_entries.push_back({&zone, std::move(before), std::move(after)});
            }
        }
    }

    bool Changes() const override { return !m_entries.empty(); }
    EditPlace Place() const override
    {
        return {m_entries.front().zone->Holder(), AreaOfZones(m_entries)};
    }

protected:
    void Do(Document& document) override { Put(document, &Entry::after); }
    void Undo(Document& document) override { Put(document, &Entry::before); }

private:
    struct Entry
    {
        Zone* zone;
        ZoneState before;
        ZoneState after;
    };

    void Put(Document& document, ZoneState Entry::*state)
    {
        QVector<Territory*> territories;
        for (const Entry& entry : m_entries) {
            entry.zone->SetValues((entry.*state).values);
            entry.zone->setPos((entry.*state).place);
            AddUnique(territories, entry.zone->Holder());
        }
        Announce(document, territories);
    }

    std::vector<Entry> m_entries;
};

/// Zones of other territories become those of the target.
class MoveZonesToEdit : public Edit
{
public:
    MoveZonesToEdit(const QString& text, Territory& target, const QVector<Zone*>& zones)
        : Edit(text)
        , m_target(&target)
    {
        for (Zone* zone : zones) {
            if (zone->Holder() && zone->Holder() != &target) {
                m_entries.push_back({zone, zone->Holder(), zone->GetTerritory(), zone->Color()});
            }
        }
    }

    bool Changes() const override { return !m_entries.empty(); }
    EditPlace Place() const override
    {
        return {m_entries.front().zone->Holder(), AreaOfZones(m_entries)};
    }

protected:
    void Do(Document& document) override
    {
        ClearSelection(document);
        for (const Entry& entry : m_entries) {
            Put(document, *entry.zone, *m_target);
            entry.zone->SetTerritory(m_target);
            entry.zone->SetColor(m_target->Color());
        }
        Announce(document, Concerned());
    }
    void Undo(Document& document) override
    {
        ClearSelection(document);
        for (const Entry& entry : m_entries) {
            Put(document, *entry.zone, *entry.holder);
            entry.zone->SetTerritory(entry.territory);
            entry.zone->SetColor(entry.color);
        }
        Announce(document, Concerned());
    }

private:
    struct Entry
    {
        Zone* zone;
        /// As it was before.
        Territory* holder;
        Territory* territory;
        QColor color;
    };

    /// Zones that get another holder may be of a territory that cannot be edited then. The
    /// selection would tell of each of them as it leaves.
    static void ClearSelection(Document& document)
    {
        if (QGraphicsScene* scene = document.ZoneScene()) {
            scene->clearSelection();
        }
    }

    static void Put(Document& document, Zone& zone, Territory& territory)
    {
        zone.Holder()->RemoveZone(zone.Id());
        territory.AddZone(&zone);
        FitToHolder(document, zone);
    }

    QVector<Territory*> Concerned() const
    {
        QVector<Territory*> territories{m_target};
        for (const Entry& entry : m_entries) {
            AddUnique(territories, entry.holder);
        }
        return territories;
    }

    Territory* m_target;
    std::vector<Entry> m_entries;
};

/// "Territory 5", shown, in a colour that no other territory has.
std::unique_ptr<Territory> NewTerritory(const TerritoryType& type, int alpha)
{
    QVector<QColor> taken;
    const QStandardItemModel* model = type.model();
    for (int row = 0; model && row < model->rowCount(); ++row) {
        if (const auto* other = dynamic_cast<const TerritoryType*>(model->item(row))) {
            const QVector<Territory*> territories = other->Territories();
            for (const Territory* territory : territories) {
                taken.append(territory->Color());
            }
        }
    }
    QColor color = ColorOfItsOwn(taken);
    color.setAlpha(alpha);
    auto territory = std::make_unique<Territory>();
    territory->SetRgba(color.rgba());
    territory->setCheckState(Qt::Checked);
    territory->SetVisible(true);
    return territory;
}

std::unique_ptr<Zone> NewZoneIn(Territory& territory, const ZoneValues& values, QPointF place)
{
    auto zone = std::make_unique<Zone>(&territory);
    zone->SetValues(values);
    zone->setPos(place);
    return zone;
}

} // namespace

QString Edits::ZonesText(int count)
{
    return count == 1 ? Text("zone") : Text("%1 zones").arg(count);
}

std::unique_ptr<Edit> Edits::ChangeZones(const QString& text,
                                         const std::vector<ZoneChange>& changes)
{
    return std::make_unique<ChangeZonesEdit>(text, changes);
}

std::unique_ptr<Edit> Edits::MoveZonesTo(Territory& target, const QVector<Zone*>& zones)
{
    const auto count = std::count_if(zones.begin(), zones.end(), [&target](const Zone* zone) {
        return zone->Holder() != &target;
    });
    return std::make_unique<MoveZonesToEdit>(
        Text("Move %1 to %2").arg(ZonesText(static_cast<int>(count)), target.text()), target,
        zones);
}

std::unique_ptr<Edit> Edits::CopyZonesTo(Territory& target, const QVector<Zone*>& zones)
{
    std::vector<NewZone> copies;
    for (const Zone* zone : zones) {
        copies.push_back({&target, zone->Values(), zone->pos()});
    }
    return AddZones(Text("Copy %1 to %2").arg(ZonesText(zones.size()), target.text()), copies);
}

std::unique_ptr<Edit> Edits::JoinTerritories(Territory& target, const QVector<Territory*>& others)
{
    QVector<Territory*> joined;
    QVector<Zone*> zones;
    for (Territory* other : others) {
        if (other != &target && other->GetType() && !joined.contains(other)) {
            joined.append(other);
            zones += QVector<Zone*>(other->Zones().cbegin(), other->Zones().cend());
        }
    }
    const QString what =
        joined.size() == 1 ? joined.first()->text() : Text("%1 territories").arg(joined.size());
    const QString text = Text("Join %1 into %2").arg(what, target.text());
    auto group = std::make_unique<EditGroup>(text);
    group->SetPlace({&target, AreaOf(target) | AreaOf(zones)});
    group->Add(std::make_unique<MoveZonesToEdit>(text, target, zones));
    // The last row goes first and comes back last, so each comes back to its row.
    std::sort(joined.begin(), joined.end(),
              [](const Territory* a, const Territory* b) { return a->row() > b->row(); });
    for (Territory* other : qAsConst(joined)) {
        group->Add(std::make_unique<Presence<Territory>>(text, *other, other->GetType()));
    }
    return group;
}

std::unique_ptr<Edit> Edits::SplitZones(const QVector<Zone*>& zones)
{
    const QString text = Text("Split %1 off").arg(ZonesText(zones.size()));
    const Territory& source = *zones.first()->Holder();
    TerritoryType& type = *source.GetType();
    std::unique_ptr<Territory> territory = NewTerritory(type, source.Color().alpha());
    Territory& target = *territory;
    auto group = std::make_unique<EditGroup>(text);
    group->SetPlace({zones.first()->Holder(), AreaOf(zones)});
    group->Add(
        std::make_unique<Presence<Territory>>(text, std::move(territory), type.rowCount(), &type));
    group->Add(std::make_unique<MoveZonesToEdit>(text, target, zones));
    return group;
}

std::unique_ptr<Edit> Edits::DuplicateTerritory(Territory& source)
{
    TerritoryType& type = *source.GetType();
    std::unique_ptr<Territory> copy = NewTerritory(type, source.Color().alpha());
    QSet<QString> names;
    const QVector<Territory*> territories = type.Territories();
    for (const Territory* territory : territories) {
        names.insert(territory->text());
    }
    copy->setText(FreeNames(names).Take(source.text()));
    for (const Zone* zone : source.Zones()) {
        copy->AddZone(NewZoneIn(*copy, zone->Values(), zone->pos()).release());
    }
    copy->SetZonesEditable(false);
    return std::make_unique<Presence<Territory>>(Text("Duplicate territory %1").arg(source.text()),
                                                 std::move(copy), type.rowCount(), &type);
}

std::unique_ptr<Edit> Edits::AddShownType(const TerritoryTypeList& list)
{
    auto type = std::make_unique<TerritoryType>();
    type->setCheckState(Qt::Checked);
    return AddType(list, std::move(type));
}

std::unique_ptr<Edit> Edits::AddShownTerritory(TerritoryType& type)
{
    constexpr int opaque = 255;
    return AddTerritory(type, NewTerritory(type, opaque));
}

std::unique_ptr<Edit> Edits::AddZones(const QString& text, const std::vector<NewZone>& zones)
{
    auto edit = std::make_unique<ZonePresence>(text);
    for (const NewZone& zone : zones) {
        edit->Add(NewZoneIn(*zone.territory, zone.values, zone.place), *zone.territory);
    }
    return edit;
}
