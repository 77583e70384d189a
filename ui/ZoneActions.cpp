#include "ui/ZoneActions.h"

#include "app/ProjectSettings.h"
#include "canvas/MainScene.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "document/LiveLayers.h"
#include "document/edits/ZoneEdits.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "territories/ZonePlaces.h"
#include "ui/DockTerTypes.h"
#include "ui/QuillmapWindow.h"
#include "ui/ZoneSheets.h"
#include "ui/dialogs/DialogAlignZones.h"
#include "ui/dialogs/DialogJoinTerritories.h"
#include "ui/dialogs/DialogMoveZones.h"
#include "ui/dialogs/DialogScatter.h"
#include "ui/dialogs/DialogZonesTo.h"
#include "ui_QuillmapWindow.h"

#include <QAction>

#include <algorithm>

namespace {

/// What arranging so many zones is called in the history.
QString ArrangedText(ZoneArrangement arrangement, int count)
{
    const QString what = Edits::ZonesText(count);
    switch (arrangement) {
    case ZoneArrangement::DistributeX:
    case ZoneArrangement::DistributeZ:
        return ZoneActions::tr("Distribute %1").arg(what);
    case ZoneArrangement::Circle:
        return ZoneActions::tr("Arrange %1 on a circle").arg(what);
    default:
        return ZoneActions::tr("Align %1").arg(what);
    }
}

} // namespace

ZoneActions::ZoneActions(const EditorParts& parts, ZoneSheets& sheets)
    : m_parts(parts)
    , m_sheets(sheets)
{
    ConnectActions();
    connect(&parts.document, &Document::HistoryChanged, this, &ZoneActions::ShowState);
    connect(&parts.scene, &QGraphicsScene::selectionChanged, this, &ZoneActions::ShowState);
    connect(&parts.terTypes, &DockTerTypes::Selected, this, &ZoneActions::ShowState);
    ShowState();
}

/// Qt also triggers actions that are disabled, when code asks for it.
template <typename Deed>
void ZoneActions::Connect(QAction* action, Deed deed)
{
    connect(action, &QAction::triggered, this, [action, deed] {
        if (action->isEnabled()) {
            deed();
        }
    });
}

void ZoneActions::ConnectActions()
{
    const Ui::QuillmapWindowClass& form = m_parts.form;
    Connect(form.actionZonesMove, [this] { Move(); });
    Connect(form.actionZonesAlign, [this] { Align(); });
    Connect(form.actionZonesScatter, [this] { Scatter(); });
    Connect(form.actionZonesMoveTo, [this] { SendTo(false); });
    Connect(form.actionZonesCopyTo, [this] { SendTo(true); });
    Connect(form.actionZonesSplit, [this] { Split(); });
    Connect(form.actionTerritoriesJoin, [this] { Join(); });
    Connect(form.actionTerritoryDuplicate, [this] { Duplicate(); });
    Connect(form.actionZonesImport, [this] { m_sheets.Import(); });
    Connect(form.actionZonesExport, [this] { m_sheets.Export(); });
}

void ZoneActions::ShowState()
{
    const Ui::QuillmapWindowClass& form = m_parts.form;
    const Document& document = m_parts.document;
    const bool canEdit = document.CanTravel();
    const bool hasZones = canEdit && !m_parts.scene.selectedItems().isEmpty();
    const bool hasTerritory = canEdit && document.CurrentTerritory();
    for (QAction* action : {form.actionZonesMove, form.actionZonesAlign, form.actionZonesMoveTo,
                            form.actionZonesCopyTo, form.actionZonesSplit}) {
        action->setEnabled(hasZones);
    }
    form.actionZonesScatter->setEnabled(hasTerritory);
    form.actionTerritoryDuplicate->setEnabled(hasTerritory);
    form.actionTerritoriesJoin->setEnabled(hasTerritory && !Neighbours().isEmpty());
    form.actionZonesImport->setEnabled(canEdit);
    form.actionZonesExport->setEnabled(canEdit);
}

QVector<Territory*> ZoneActions::Neighbours() const
{
    Territory* current = m_parts.document.CurrentTerritory();
    const TerritoryType* type = current ? current->GetType() : nullptr;
    QVector<Territory*> neighbours = type ? type->Territories() : QVector<Territory*>();
    neighbours.removeOne(current);
    return neighbours;
}

/// places: for each zone, in scene units.
void ZoneActions::PutAt(const QString& text, const QVector<Zone*>& zones,
                        const std::vector<QPointF>& places)
{
    std::vector<Edits::ZoneChange> changes;
    auto place = places.begin();
    for (Zone* zone : zones) {
        changes.push_back({zone, zone->Values(), *place++});
    }
    std::unique_ptr<Edit> edit = Edits::ChangeZones(text, changes);
    if (edit->Changes()) {
        m_parts.document.Do(std::move(edit));
    }
}

void ZoneActions::Move()
{
    const QVector<Zone*> zones = m_parts.scene.SelectedZones();
    DialogMoveZones dialog(zones.size(), &m_parts.window);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const WorldScale scale(ProjectSettings::Instance());
    std::vector<QPointF> places;
    for (const Zone* zone : zones) {
        places.push_back(MovedPlace(zone->pos(), dialog.MetresX(), dialog.MetresZ(), scale));
    }
    PutAt(tr("Move %1").arg(Edits::ZonesText(zones.size())), zones, places);
}

void ZoneActions::Align()
{
    const QVector<Zone*> zones = m_parts.scene.SelectedZones();
    const WorldScale scale(ProjectSettings::Instance());
    std::vector<QPointF> centres;
    for (const Zone* zone : zones) {
        const WorldCircle circle = InWorld(zone->Record(), scale);
        centres.emplace_back(circle.x, circle.z);
    }
    DialogAlignZones dialog(centres, &m_parts.window);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const std::vector<QPointF> arranged = Arranged(centres, dialog.Arrangement(), dialog.Radius());
    std::vector<QPointF> places;
    auto centre = arranged.begin();
    for (const Zone* zone : zones) {
        places.push_back(PlaceAtMetres(zone->pos(), centre->x(), centre->y(), scale));
        ++centre;
    }
    PutAt(ArrangedText(dialog.Arrangement(), zones.size()), zones, places);
}

void ZoneActions::Scatter()
{
    Document& document = m_parts.document;
    // No layer changes while the dialog reads the masks.
    document.Live().Finish();
    document.LayerFormulas().TellChanges();
    DialogScatter dialog(document, m_parts.scene, &m_parts.window);
    Territory* territory = document.CurrentTerritory();
    if (dialog.exec() != QDialog::Accepted || !territory) {
        return;
    }
    std::vector<Edits::NewZone> zones;
    for (const QPointF& place : dialog.Places()) {
        zones.push_back({territory, document.ZoneTemplate(), place});
    }
    const auto count = static_cast<int>(zones.size());
    document.Do(
        Edits::AddZones(tr("Add %1 to %2").arg(Edits::ZonesText(count), territory->text()), zones));
    SelectNewest(*territory, count);
}

/// Zones that were made last have the highest ids.
void ZoneActions::SelectNewest(const Territory& holder, int count)
{
    const QList<Zone*> zones = holder.Zones().values();
    m_parts.scene.SelectZones(zones.mid(zones.size() - count).toVector());
}

void ZoneActions::SendTo(bool doesCopy)
{
    const QVector<Zone*> zones = m_parts.scene.SelectedZones();
    DialogZonesTo dialog(m_parts.document, zones, doesCopy, &m_parts.window);
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    Territory& target = *dialog.Target();
    if (doesCopy) {
        m_parts.document.Do(Edits::CopyZonesTo(target, zones));
        SelectNewest(target, zones.size());
    } else {
        m_parts.document.Do(Edits::MoveZonesTo(target, zones));
        m_parts.scene.SelectZones(zones);
    }
}

void ZoneActions::Split()
{
    const QVector<Zone*> zones = m_parts.scene.SelectedZones();
    const TerritoryType* type = zones.first()->Holder()->GetType();
    m_parts.document.Do(Edits::SplitZones(zones));
    m_parts.terTypes.ShowNew(*type->child(type->rowCount() - 1));
    m_parts.scene.SelectZones(zones);
}

void ZoneActions::Join()
{
    Territory* target = m_parts.document.CurrentTerritory();
    DialogJoinTerritories dialog(*target, Neighbours(), &m_parts.window);
    if (dialog.exec() == QDialog::Accepted) {
        m_parts.document.Do(Edits::JoinTerritories(*target, dialog.Chosen()));
    }
}

void ZoneActions::Duplicate()
{
    Territory* source = m_parts.document.CurrentTerritory();
    const TerritoryType* type = source->GetType();
    m_parts.document.Do(Edits::DuplicateTerritory(*source));
    m_parts.terTypes.ShowNew(*type->child(type->rowCount() - 1));
}
