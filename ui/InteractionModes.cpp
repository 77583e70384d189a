#include "ui/InteractionModes.h"

#include "canvas/BrushDock.h"
#include "canvas/MainScene.h"
#include "ui/DockTerTypes.h"
#include "ui_QuillmapWindow.h"

InteractionModes::InteractionModes(const EditorParts& parts)
    : m_parts(parts)
{
    m_parts.scene.SetPanEnded([this](SceneMode mode) { ShowRestoredMode(mode); });
}

InteractionModes::~InteractionModes()
{
    m_parts.scene.SetPanEnded({});
}

void InteractionModes::ShowPaint(bool isOn)
{
    m_parts.form.gboPaintMode->setChecked(isOn);
    m_parts.form.actionTogglePaintMode->setChecked(isOn);
    m_parts.brush.setVisible(isOn);
}

void InteractionModes::ShowRestoredMode(SceneMode mode)
{
    ShowPaint(mode == SceneMode::Paint);
    m_parts.terTypes.ShowMode(mode);
}

void InteractionModes::ChangePaint(bool isOn)
{
    ShowPaint(isOn);
    EnableZoomLabels();
    m_parts.scene.clearSelection();
    m_parts.scene.ChangeMode(SceneMode::None);
}

void InteractionModes::TogglePaint(bool isOn)
{
    if (isOn) {
        m_parts.terTypes.ShowMode(SceneMode::Paint);
    }
    ChangePaint(isOn);
    if (isOn) {
        m_parts.scene.ChangeMode(SceneMode::Paint);
    }
}

void InteractionModes::EnterZoneMode(SceneMode mode, bool isOn)
{
    ChangePaint(false);
    if (isOn) {
        m_parts.scene.ChangeMode(mode);
    }
}

void InteractionModes::Reset()
{
    // What the mode before worked on is gone, so that panning must not bring it back.
    m_parts.scene.EndPan();
    ChangePaint(false);
}

void InteractionModes::LeavePaint()
{
    if (m_parts.form.gboPaintMode->isChecked() || m_parts.scene.Mode() == SceneMode::Paint) {
        // With nothing to paint, panning must not bring the mode back.
        m_parts.scene.EndPan();
        ChangePaint(false);
    }
}

void InteractionModes::EnablePaint(bool isEnabled)
{
    m_parts.form.actionTogglePaintMode->setEnabled(isEnabled);
    m_parts.form.gboPaintMode->setEnabled(isEnabled);
}

void InteractionModes::EnableZoomLabels()
{
    m_parts.form.lblZoom->setEnabled(true);
    m_parts.form.lblZoomValue->setEnabled(true);
}
