#include "ui/TerritoryActions.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/ZoneLabels.h"
#include "document/Document.h"
#include "document/edits/ZoneEdits.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "ui/DockTerTypes.h"
#include "ui_QuillmapWindow.h"

#include <QSettings>

namespace {

QSettings Settings()
{
    return QSettings(QStringLiteral("Halvern Works"), QStringLiteral("Quillmap"));
}

const QString LabelsKey = QStringLiteral("zoneLabels");

} // namespace

TerritoryActions::TerritoryActions(const EditorParts& parts)
    : m_parts(parts)
{
    const Ui::QuillmapWindowClass& form = parts.form;
    connect(form.actionTypeNew, &QAction::triggered, this, &TerritoryActions::AddType);
    connect(form.actionTerritoryNew, &QAction::triggered, this, &TerritoryActions::AddTerritory);
    connect(&parts.document, &Document::HistoryChanged, this, &TerritoryActions::ShowState);
    connect(&parts.terTypes, &DockTerTypes::Selected, this, &TerritoryActions::ShowState);
    ConnectSolo();
    const bool areLabelsShown = Settings().value(LabelsKey, true).toBool();
    form.actionZoneLabels->setChecked(areLabelsShown);
    parts.view.Labels().SetShown(areLabelsShown);
    connect(form.actionZoneLabels, &QAction::toggled, this, &TerritoryActions::ShowLabels);
    ShowState();
}

/// Zones that come back from the history may be as they were seen when they left.
void TerritoryActions::ConnectSolo()
{
    Document& document = m_parts.document;
    connect(m_parts.form.actionTerritorySolo, &QAction::triggered, this, [this](bool isOn) {
        m_parts.document.SetSoloTerritory(isOn ? m_parts.document.CurrentTerritory() : nullptr);
        ShowSolo();
    });
    connect(&document, &Document::SoloTerritoryChanged, this, &TerritoryActions::ShowSolo);
    connect(&document, &Document::ZonesChanged, this, &TerritoryActions::ShowZonesOf);
    connect(&document, &Document::TerritoryChanged, this, &TerritoryActions::ShowZonesOf);
    connect(&document, &Document::TypeChanged, this, &TerritoryActions::ShowSolo);
    // Zones of other territories are seen while they are selected.
    connect(&m_parts.scene, &QGraphicsScene::selectionChanged, this, [this] {
        if (m_parts.document.SoloTerritory()) {
            ShowSolo();
        }
    });
    connect(&document, &Document::AboutToClear, this,
            [this] { m_parts.document.SetSoloTerritory(nullptr); });
}

void TerritoryActions::ShowState()
{
    const bool canEdit = m_parts.document.CanTravel();
    const Ui::QuillmapWindowClass& form = m_parts.form;
    form.actionTypeNew->setEnabled(canEdit);
    form.actionTerritoryNew->setEnabled(canEdit && m_parts.terTypes.CurrentType());
    form.actionTerritorySolo->setEnabled(
        canEdit && (m_parts.document.CurrentTerritory() || form.actionTerritorySolo->isChecked()));
}

void TerritoryActions::AddType()
{
    const TerritoryTypeList& list = m_parts.document.Types();
    if (m_parts.document.CanTravel()) {
        m_parts.document.Do(Edits::AddShownType(list));
        m_parts.terTypes.ShowNew(*list.model()->item(list.model()->rowCount() - 1));
    }
}

void TerritoryActions::AddTerritory()
{
    TerritoryType* type = m_parts.terTypes.CurrentType();
    if (type && m_parts.document.CanTravel()) {
        m_parts.document.Do(Edits::AddShownTerritory(*type));
        m_parts.terTypes.ShowNew(*type->child(type->rowCount() - 1));
    }
}

void TerritoryActions::ShowSolo()
{
    m_parts.form.actionTerritorySolo->setChecked(m_parts.document.SoloTerritory());
    const QVector<TerritoryType*> types = m_parts.document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            ShowZonesOf(territory);
        }
    }
}

void TerritoryActions::ShowZonesOf(const Territory* territory) const
{
    const Territory* solo = m_parts.document.SoloTerritory();
    const bool areSeen = !solo || solo == territory;
    for (Zone* zone : territory->Zones()) {
        const bool isSeen = areSeen || zone->isSelected();
        if (isSeen != (zone->opacity() > 0)) {
            // It is no part of the project.
            zone->setOpacity(isSeen ? 1 : 0); // NOLINT
        }
    }
}

void TerritoryActions::ShowLabels(bool areShown)
{
    m_parts.view.Labels().SetShown(areShown);
    QSettings settings = Settings();
    settings.setValue(LabelsKey, areShown);
}
