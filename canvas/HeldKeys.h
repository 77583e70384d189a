#pragma once

#include <QtGlobal>

class QKeyEvent;

/// The keys that repeat what they do while they are held, for the whole program.
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

    /// Notes the modifiers and, for the keys above, that they are held.
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
    /// Where a bracket needs a modifier, its release arrives as another key; these are the physical
    /// keys that were pressed.
    quint32 m_growScanCode = 0;
    quint32 m_shrinkScanCode = 0;
};
