#include "ui/EditActions.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "ui/DockLayers.h"
#include "ui/DockTerTypes.h"
#include "ui/ProjectWork.h"
#include "ui/QuillmapWindow.h"
#include "ui_QuillmapWindow.h"

#include <QApplication>

#include <algorithm>

namespace {

/// "Undo Paint stroke on Forest", or "Undo".
void ShowStep(QAction& action, const QString& word, const QString& step, bool isEnabled)
{
    const QString text = step.isEmpty() ? word : QStringLiteral("%1 %2").arg(word, step);
    action.setText(QString(text).replace(QLatin1Char('&'), QLatin1String("&&")));
    action.setToolTip(text);
    action.setEnabled(isEnabled);
}

} // namespace

EditActions::EditActions(const EditorParts& parts)
    : m_parts(parts)
{
    const Ui::QuillmapWindowClass& form = parts.form;
    form.actionRedo->setShortcuts(
        {QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_Z), QKeySequence(Qt::CTRL + Qt::Key_Y)});
    connect(form.actionUndo, &QAction::triggered, this, &EditActions::Undo);
    connect(form.actionRedo, &QAction::triggered, &parts.document, &Document::Redo);
    connect(form.actionDelete, &QAction::triggered, this, &EditActions::Delete);
    connect(form.actionSelectAllZones, &QAction::triggered, this, &EditActions::SelectAllZones);
    connect(&parts.document, &Document::HistoryChanged, this, &EditActions::ShowHistory);
    connect(&parts.document, &Document::Travelled, this, &EditActions::ShowPlace);
    ShowHistory();
}

void EditActions::ShowHistory()
{
    Document& document = m_parts.document;
    ShowStep(*m_parts.form.actionUndo, tr("Undo"), document.History().undoText(),
             document.CanUndo());
    ShowStep(*m_parts.form.actionRedo, tr("Redo"), document.History().redoText(),
             document.CanRedo());
}

void EditActions::ShowPlace(const EditPlace& place)
{
    if (place.layer && place.layer->model()) {
        m_parts.layers.SelectItem(place.layer);
        m_parts.window.LayerSelected(place.layer);
    } else if (place.territory) {
        ShowTerritory(*place.territory);
    } else if (place.type) {
        m_parts.terTypes.SelectRow(place.type);
    }
    m_parts.window.LeavePaintWithoutLayer();
    ScrollTo(place.area);
}

/// Selected zones of many territories stay selected when some are of this one: they are what the
/// step changed.
void EditActions::ShowTerritory(const Territory& territory)
{
    const QVector<Zone*> zones = m_parts.scene.SelectedZones();
    m_parts.terTypes.SelectRow(&territory);
    const bool isOfZones =
        std::any_of(zones.cbegin(), zones.cend(),
                    [&territory](const Zone* zone) { return zone->Holder() == &territory; });
    if (isOfZones && m_parts.scene.SelectedZones() != zones) {
        m_parts.scene.SelectZones(zones);
    }
}

void EditActions::ScrollTo(const QRectF& area)
{
    const MainView& view = m_parts.view;
    const QRectF shown = view.mapToScene(view.viewport()->rect()).boundingRect();
    if (!area.isEmpty() && !shown.intersects(area)) {
        m_parts.view.centerOn(area.center());
    }
}

/// An open polygon is no step yet, and goes first. What is being typed becomes a step and is taken
/// back. If it cannot become one, it alone is dropped.
void EditActions::Undo()
{
    Document& document = m_parts.document;
    if (m_parts.scene.CancelTool()) {
        return;
    }
    const int before = document.History().index();
    if (!FinishEntries(m_parts.window) || document.History().index() != before) {
        document.Undo();
    }
}

/// What the focus is on: the zones of the map, or a row of a tree.
void EditActions::Delete()
{
    const QWidget* focus = QApplication::focusWidget();
    if (!focus) {
        return;
    }
    if (focus == &m_parts.view || focus == m_parts.view.viewport()) {
        if (!m_parts.scene.SelectedZones().isEmpty()) {
            m_parts.scene.RemoveSelection();
        }
    } else if (focus->objectName() == QLatin1String("treeLayers")) {
        m_parts.layers.Remove();
    } else if (focus->objectName() == QLatin1String("treeTerTypes")) {
        m_parts.terTypes.Remove();
    }
}

void EditActions::SelectAllZones()
{
    if (!m_parts.document.CurrentTerritory()) {
        return;
    }
    if (m_parts.scene.Mode() != SceneMode::Select) {
        m_parts.terTypes.SelectMode(true);
    }
    m_parts.view.SelectAllZones();
}
