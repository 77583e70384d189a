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

    /// Switches paint mode on or off. Switching it on unchecks the zone buttons.
    void TogglePaint(bool isOn);
    /// Leaves paint mode, and enters the zone mode if isOn is true.
    void EnterZoneMode(SceneMode mode, bool isOn);
    /// Leaves all modes.
    void Reset();
    /// Leaves paint mode if it is on.
    void LeavePaint();
    /// isEnabled: whether there is a layer to paint.
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
