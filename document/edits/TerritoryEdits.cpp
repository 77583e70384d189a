#include "document/edits/TerritoryEdits.h"

#include "document/Document.h"
#include "document/edits/EditGroup.h"
#include "document/edits/Presence.h"
#include "document/edits/ZoneEdits.h"
#include "document/edits/ZonePresence.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

#include <algorithm>
#include <utility>

namespace {

QString Text(const char* text)
{
    return Document::tr(text);
}

class MoveZonesEdit : public Edit
{
public:
    MoveZonesEdit(const QString& text, std::vector<Edits::ZoneMove> moves, bool areNudges)
        : Edit(text)
        , m_moves(std::move(moves))
        , m_areNudges(areNudges)
    {
    }

    bool Changes() const override
    {
        return std::any_of(m_moves.begin(), m_moves.end(),
                           [](const Edits::ZoneMove& move) { return move.before != move.after; });
    }
    bool SetsModified() const override { return !m_areNudges; }
    EditPlace Place() const override
    {
        return {m_moves.front().zone->Holder(), AreaOfZones(m_moves)};
    }
    int id() const override { return m_areNudges ? MoveZonesKind : NoKind; }
    bool mergeWith(const QUndoCommand* command) override
    {
        const auto& later = *static_cast<const MoveZonesEdit*>(command);
        const auto isSameZone = [](const Edits::ZoneMove& a, const Edits::ZoneMove& b) {
            return a.zone == b.zone;
        };
        if (!IsSameGesture(later) ||
            !std::equal(m_moves.begin(), m_moves.end(), later.m_moves.begin(), later.m_moves.end(),
                        isSameZone)) {
            return false;
        }
        for (std::size_t i = 0; i < m_moves.size(); ++i) {
            m_moves[i].after = later.m_moves[i].after;
        }
        setObsolete(!Changes());
        return true;
    }

protected:
    void Do(Document& document) override { Move(document, &Edits::ZoneMove::after); }
    void Undo(Document& document) override { Move(document, &Edits::ZoneMove::before); }

private:
    void Move(Document& document, QPointF Edits::ZoneMove::*place)
    {
        QVector<Territory*> holders;
        for (const Edits::ZoneMove& move : m_moves) {
            move.zone->setPos(move.*place);
            Territory* holder = move.zone->Holder();
            if (!holders.contains(holder)) {
                holders.append(holder);
            }
        }
        for (Territory* holder : qAsConst(holders)) {
            emit document.ZonesChanged(holder);
        }
    }

    std::vector<Edits::ZoneMove> m_moves;
    bool m_areNudges;
};

using CheckMarks = QVector<QPair<QStandardItem*, Qt::CheckState>>;

void SetCheckMarks(Document& document, const CheckMarks& marks)
{
    for (const auto& [row, state] : marks) {
        row->setCheckState(state);
        if (auto* territory = dynamic_cast<Territory*>(row)) {
            document.FollowCheckMark(*territory);
            emit document.TerritoryChanged(territory);
        }
    }
}

/// The names of the properties in the texts of steps.
QString PropertyText(Property property)
{
    switch (property) {
    case Property::ZoneRadius:
        return Text("Change radius of zone");
    case Property::ZoneUsage:
        return Text("Change usage of zone");
    case Property::ZoneEvent:
        return Text("Change event of zone");
    case Property::ZoneDepth:
        return Text("Change depth of zone");
    default:
        return Text("Change counts of zone");
    }
}

} // namespace

std::unique_ptr<Edit> Edits::AddType(const TerritoryTypeList& list,
                                     std::unique_ptr<TerritoryType> type)
{
    const QString text = Text("Add territory type %1").arg(type->text());
    return std::make_unique<Presence<TerritoryType>>(text, std::move(type),
                                                     list.model()->rowCount());
}

std::unique_ptr<Edit> Edits::RemoveType(TerritoryType& type)
{
    return std::make_unique<Presence<TerritoryType>>(
        Text("Remove territory type %1").arg(type.text()), type);
}

std::unique_ptr<Edit> Edits::AddTerritory(TerritoryType& type, std::unique_ptr<Territory> territory)
{
    const QString text = Text("Add territory %1").arg(territory->text());
    return std::make_unique<Presence<Territory>>(text, std::move(territory), type.rowCount(),
                                                 &type);
}

std::unique_ptr<Edit> Edits::RemoveTerritory(Territory& territory)
{
    return std::make_unique<Presence<Territory>>(Text("Remove territory %1").arg(territory.text()),
                                                 territory, territory.GetType());
}

std::unique_ptr<Edit> Edits::SetTerritoryColor(Territory& territory, const QColor& color)
{
    Territory* changed = &territory;
    return std::make_unique<ChangeValue<QRgb>>(
        Text("Change colour of %1").arg(territory.text()), Property::TerritoryColor, changed,
        territory.Color().rgb(), color.rgb(), [changed](Document& document, QRgb rgb) {
            changed->SetColor(QColor(rgb));
            emit document.TerritoryChanged(changed);
        });
}

std::unique_ptr<Edit> Edits::SetTerritoryOpacity(Territory& territory, int alpha)
{
    Territory* changed = &territory;
    return std::make_unique<ChangeValue<int>>(
        Text("Change opacity of %1").arg(territory.text()), Property::TerritoryOpacity, changed,
        territory.Color().alpha(), alpha, [changed](Document& document, int value) {
            changed->SetAlpha(value);
            emit document.TerritoryChanged(changed);
        });
}

std::unique_ptr<Edit> Edits::SetRowChecked(QStandardItem& row, bool isChecked)
{
    QVector<QStandardItem*> rows = {&row};
    for (int i = 0; i < row.rowCount(); ++i) {
        rows.append(row.child(i));
    }
    CheckMarks before;
    CheckMarks after;
    for (QStandardItem* item : qAsConst(rows)) {
        before.append({item, item->checkState()});
        after.append({item, isChecked ? Qt::Checked : Qt::Unchecked});
    }
    auto* territory = dynamic_cast<Territory*>(&row);
    const EditPlace place =
        territory ? EditPlace(territory) : EditPlace(dynamic_cast<TerritoryType*>(&row));
    return std::make_unique<ChangeValue<CheckMarks>>(
        (isChecked ? Text("Show %1") : Text("Hide %1")).arg(row.text()), Property::Discrete, place,
        before, after, SetCheckMarks);
}

std::unique_ptr<Edit> Edits::InsertZone(Territory& territory, QPointF place,
                                        const ZoneValues& values)
{
    return AddZones(Text("Add zone to %1").arg(territory.text()), {{&territory, values, place}});
}

std::unique_ptr<Edit> Edits::PasteZones(Territory& territory, const QVector<Zone*>& zones,
                                        QPointF offset)
{
    auto edit = std::make_unique<ZonePresence>(
        Text("Paste %1 into %2").arg(ZonesText(zones.size()), territory.text()));
    for (const Zone* zone : zones) {
        std::unique_ptr<Zone> copy(zone->Copy());
        copy->setPos(copy->pos() + offset);
        copy->SetTerritory(&territory);
        copy->SetColor(territory.Color());
        edit->Add(std::move(copy), territory);
    }
    return edit;
}

std::unique_ptr<Edit> Edits::CopyToNewTerritory(Territory& source, const QVector<Zone*>& zones)
{
    auto territory = std::make_unique<Territory>();
    territory->SetRgba(source.Color().rgba());
    for (const Zone* zone : zones) {
        territory->AddZone(zone->Copy());
    }
    TerritoryType& type = *source.GetType();
    return std::make_unique<Presence<Territory>>(
        Text("Create territory from %1").arg(ZonesText(zones.size())), std::move(territory),
        type.rowCount(), &type);
}

std::unique_ptr<Edit> Edits::RemoveZones(const QVector<Zone*>& zones)
{
    auto edit = std::make_unique<ZonePresence>(Text("Remove %1").arg(ZonesText(zones.size())));
    for (Zone* zone : zones) {
        edit->Remove(*zone);
    }
    return edit;
}

std::unique_ptr<Edit> Edits::MoveZones(const std::vector<ZoneMove>& moves, bool areNudges)
{
    const int count = static_cast<int>(moves.size());
    return std::make_unique<MoveZonesEdit>(Text("Move %1").arg(ZonesText(count)), moves, areNudges);
}

std::unique_ptr<Edit> Edits::ChangeZone(Zone& zone, const ZoneValues& values, Property property)
{
    Zone* changed = &zone;
    auto edit = std::make_unique<ChangeValue<ZoneValues>>(
        PropertyText(property), property, EditPlace(zone.Holder(), AreaOf(zone)), zone.Values(),
        values, [changed](Document& document, const ZoneValues& value) {
            changed->SetValues(value);
            emit document.ZonesChanged(changed->Holder());
        });
    edit->SetObject(changed);
    return edit;
}
