#pragma once

#include "canvas/SceneMode.h"
#include "ui/EditorParts.h"

#include <QtGlobal>

/// Switches what the mouse does on the map, and keeps the controls that show it together: the paint
/// mode box and its action, the brush dock and the zone buttons.
class InteractionModes
{
public:
    explicit InteractionModes(const EditorParts& parts);
    ~InteractionModes();
    Q_DISABLE_COPY(InteractionModes)

    /// Paint mode on or off; on unchecks the zone buttons.
    void TogglePaint(bool isOn);
    /// Leaves paint mode and, when it is on, enters the mode.
    void EnterZoneMode(SceneMode mode, bool isOn);
    /// No mode at all.
    void Reset();
    /// No mode, if it is paint mode that is on.
    void LeavePaint();
    /// Whether there is something to paint.
    void EnablePaint(bool isEnabled);
    void EnableZoomLabels();

private:
    /// The controls only.
    void ShowPaint(bool isOn);
    void ShowRestoredMode(SceneMode mode);
    /// Shows whether paint mode is on, and ends the mode before.
    void ChangePaint(bool isOn);

    EditorParts m_parts;
};
