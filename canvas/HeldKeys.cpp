#include "canvas/HeldKeys.h"

#include <QGuiApplication>
#include <QKeyEvent>

HeldKeys& HeldKeys::Instance()
{
    static HeldKeys keys;
    return keys;
}

void HeldKeys::RefreshModifiers()
{
    const Qt::KeyboardModifiers modifiers = QGuiApplication::keyboardModifiers();
    shift = modifiers.testFlag(Qt::ShiftModifier);
    ctrl = modifiers.testFlag(Qt::ControlModifier);
}

bool HeldKeys::PressBracket(const QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_BraceLeft:
        shift = true;
        Q_FALLTHROUGH();
    case Qt::Key_BracketLeft:
        shrink = true;
        m_shrinkScanCode = event.nativeScanCode();
        return true;
    case Qt::Key_BraceRight:
        shift = true;
        Q_FALLTHROUGH();
    case Qt::Key_BracketRight:
        grow = true;
        m_growScanCode = event.nativeScanCode();
        return true;
    default:
        return false;
    }
}

bool HeldKeys::PressArrow(const QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_Up:
        up = true;
        return true;
    case Qt::Key_Left:
        left = true;
        return true;
    case Qt::Key_Right:
        right = true;
        return true;
    case Qt::Key_Down:
        down = true;
        return true;
    default:
        return false;
    }
}

void HeldKeys::Release(const QKeyEvent& event)
{
    const quint32 scanCode = event.nativeScanCode();
    const int key = event.key();
    if (key == Qt::Key_BraceLeft || key == Qt::Key_BraceRight) {
        shift = false;
    }
    if (key == Qt::Key_BracketLeft || key == Qt::Key_BraceLeft ||
        (scanCode != 0 && scanCode == m_shrinkScanCode)) {
        shrink = false;
    }
    if (key == Qt::Key_BracketRight || key == Qt::Key_BraceRight ||
        (scanCode != 0 && scanCode == m_growScanCode)) {
        grow = false;
    }
    up = up && key != Qt::Key_Up;
    left = left && key != Qt::Key_Left;
    right = right && key != Qt::Key_Right;
    down = down && key != Qt::Key_Down;
}

int HeldKeys::BrushStep() const
{
    if (ctrl) {
        return shift ? 60 : 25;
    }
    return shift ? 15 : 5;
}
