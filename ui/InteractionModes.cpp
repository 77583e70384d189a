#include "ui/InteractionModes.h"

#include "canvas/BrushDock.h"
#include "canvas/MainScene.h"
#include "ui/DockTerTypes.h"
#include "ui_QuillmapWindow.h"

InteractionModes::InteractionModes(const EditorParts& parts)
    : m_parts(parts)
{
}

void InteractionModes::ShowPaintMode(bool isOn)
{
    m_parts.form.gboPaintMode->setChecked(isOn);
    m_parts.form.actionTogglePaintMode->setChecked(isOn);
    m_parts.brush.setVisible(isOn);
    EnableZoomLabels();
    m_parts.scene.clearSelection();
    // Else the space bar, once released, would bring back the mode that is left here.
    m_parts.scene.EndPan();
    m_parts.scene.ChangeMode(SceneMode::None);
}

void InteractionModes::TogglePaint(bool isOn)
{
    if (isOn) {
        m_parts.terTypes.ResetModeButtons();
    }
    ShowPaintMode(isOn);
    if (isOn) {
        m_parts.scene.ChangeMode(SceneMode::Paint);
    }
}

void InteractionModes::EnterZoneMode(SceneMode mode, bool isOn)
{
    ShowPaintMode(false);
    if (isOn) {
        m_parts.scene.ChangeMode(mode);
    }
}

void InteractionModes::Reset()
{
    ShowPaintMode(false);
}

void InteractionModes::LeavePaint()
{
    if (m_parts.form.gboPaintMode->isChecked() || m_parts.scene.Mode() == SceneMode::Paint) {
        ShowPaintMode(false);
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
