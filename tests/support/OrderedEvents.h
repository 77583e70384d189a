#pragma once

#include <QApplication>

/// What the toolkit's locks order among threads, told to the thread sanitizer too: the toolkit is
/// not built with it, so that it takes whatever is handed over in an event for a race. Each event
/// that is posted or signal that is sent happens before each event that is received after it. In
/// other builds these do nothing.
namespace ordered_events {

void Release();
void Acquire();

} // namespace ordered_events

/// An application whose events are ordered, on all threads.
class OrderedApplication : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        ordered_events::Acquire();
        const bool isHandled = QApplication::notify(receiver, event);
        ordered_events::Release();
        return isHandled;
    }
};
