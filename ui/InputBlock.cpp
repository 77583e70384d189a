#include "ui/InputBlock.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>

InputBlock::InputBlock()
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool InputBlock::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Shortcut) {
        // A shortcut goes to an action, not to a widget.
        return !qobject_cast<QDialog*>(QApplication::activeModalWidget());
    }
    const auto* widget = qobject_cast<const QWidget*>(watched);
    if (!widget || qobject_cast<const QDialog*>(widget->window())) {
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::NativeGesture:
    case QEvent::Gesture:
        return true;
    default:
        return false;
    }
}
