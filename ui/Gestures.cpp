#include "ui/Gestures.h"

#include "document/Document.h"

#include <QAbstractSlider>
#include <QCoreApplication>
#include <QEvent>

Gestures::Gestures(Document& document)
    : m_document(document)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool Gestures::eventFilter(QObject* watched, QEvent* event)
{
    constexpr qint64 restMilliseconds = 1000;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::FocusOut:
        m_document.EndGesture();
        m_lastTurn.invalidate();
        break;
    case QEvent::Wheel:
    case QEvent::KeyPress:
        if (qobject_cast<QAbstractSlider*>(watched)) {
            if (!m_lastTurn.isValid() || m_lastTurn.hasExpired(restMilliseconds)) {
                m_document.EndGesture();
            }
            m_lastTurn.start();
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
