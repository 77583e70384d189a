#pragma once

#include <QtGlobal>

class QKeyEvent;

/// Tracks, for the whole program, the keys that repeat their action while they are held.
struct HeldKeys
{
    static HeldKeys& Instance();

    bool shift = false;
    bool ctrl = false;
    bool grow = false;
    bool shrink = false;
    bool up = false;
    bool left = false;
    bool down = false;
    bool right = false;

    /// RefreshModifiers reads the modifiers; PressBracket and PressArrow record that their keys are
    /// held.
    void RefreshModifiers();
    bool PressBracket(const QKeyEvent& event);
    bool PressArrow(const QKeyEvent& event);
    void Release(const QKeyEvent& event);
    void ReleaseAll() { *this = HeldKeys(); }

    /// The brush's size changes by this many pixels a step.
    int BrushStep() const;
    /// Zones move by this many scene units a step.
    int SelectionStep() const { return (shift ? 5 : 1) * (ctrl ? 10 : 1); }

private:
    /// The scan codes of the pressed brackets. On keyboards where a bracket needs a modifier, the
    /// release may arrive as another key.
    quint32 m_growScanCode = 0;
    quint32 m_shrinkScanCode = 0;
};
