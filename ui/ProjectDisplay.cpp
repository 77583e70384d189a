#include "ui/ProjectDisplay.h"

#include "app/ProjectSettings.h"
#include "canvas/BrushDock.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "ui/DockLayerProps.h"
#include "ui/DockLayers.h"
#include "ui/DockStatus.h"
#include "ui/DockTerTypes.h"
#include "ui/InteractionModes.h"
#include "ui/LayerComposition.h"
#include "ui/QuillmapWindow.h"
#include "ui_QuillmapWindow.h"

#include <QSignalBlocker>

#include <initializer_list>

ProjectDisplay::ProjectDisplay(const EditorParts& parts, LayerComposition& composition,
                               InteractionModes& modes)
    : m_parts(parts)
    , m_composition(composition)
    , m_modes(modes)
{
}

void ProjectDisplay::EnableEditing(bool isEnabled)
{
    Ui::QuillmapWindowClass& form = m_parts.form;
    for (QAction* action : {form.actionSave, form.actionQuickSave, form.actionSaveAll,
                            form.actionLoadWorld, form.actionImportAreas, form.actionImportMap}) {
        action->setEnabled(isEnabled);
    }
    for (QWidget* widget : std::initializer_list<QWidget*>{
             &m_parts.layers, &m_parts.terTypes, &m_parts.view, form.gboPaintMode,
             form.gboWorldScale, form.gboWorldRSteps, form.gboWorldPos, form.gboBgOver}) {
        widget->setEnabled(isEnabled);
    }
    m_parts.view.setInteractive(isEnabled);
    m_parts.document.SetEditable(isEnabled);
    if (!isEnabled) {
        // Selecting a layer enables the dock again.
        m_parts.layerProps.setEnabled(false);
    }
    if (isEnabled) {
        m_parts.window.addAction(form.actionTogglePaintMode);
    } else {
        m_parts.window.removeAction(form.actionTogglePaintMode);
    }
}

void ProjectDisplay::BeginLoading()
{
    EnableEditing(false);
    m_parts.status.SetProgressVisible(true);
    m_parts.status.SetBusy();
    // Do not repaint the lists for each row that is added.
    m_parts.layers.setUpdatesEnabled(false);
    m_parts.terTypes.setUpdatesEnabled(false);
}

void ProjectDisplay::EndLoading()
{
    m_parts.layers.setUpdatesEnabled(true);
    m_parts.terTypes.setUpdatesEnabled(true);
    m_parts.layerProps.Refresh();
    m_parts.status.SetProgressVisible(false);
    EnableEditing(true);
}

void ProjectDisplay::Show(int selectedRow)
{
    ShowWorld();
    SelectLayer(selectedRow);
}

void ProjectDisplay::ShowWorld()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    m_parts.view.SetSceneSize(settings.LayerWidth(), settings.LayerHeight());
    m_parts.scene.ClearLayers();
    ShowBackground();
    ShowBackgroundColor();
    m_parts.window.UpdateWorldScale();
}

void ProjectDisplay::ShowBackground()
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    m_parts.scene.ClearWorld();
    if (!settings.BackgroundFile().isEmpty()) {
        m_parts.scene.ChangeWorld(settings.BackgroundPath());
    }
}

void ProjectDisplay::ShowBackgroundColor()
{
    const QColor color = ProjectSettings::Instance().BackgroundColor();
    m_parts.scene.ChangeWorldRGBA(color);
    // It is no edit of the user's.
    const QSignalBlocker blocker(m_parts.form.gboBgOver);
    m_parts.form.gboBgOver->SetColor(color);
}

void ProjectDisplay::SelectLayer(int row)
{
    if (Layer* layer = m_parts.layers.SelectRow(row)) {
        m_parts.brush.SetPaintColor(layer->Color().rgb());
        m_parts.document.SetCurrentLayer(layer);
        m_modes.EnablePaint(true);
    } else {
        m_parts.document.SetCurrentLayer(nullptr);
        m_modes.EnablePaint(false);
    }
    m_parts.brush.Refresh();
    m_modes.Reset();
    m_parts.layers.UpdateHideAll();
    m_composition.Recompose();
}
