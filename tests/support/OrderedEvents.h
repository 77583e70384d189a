#pragma once

#include <QApplication>

/// Tells the thread sanitizer about the order of events between threads. Qt is not built with the
/// sanitizer, so the sanitizer does not see Qt's locks and reports data that is passed in an event
/// as a race. With these functions, posting an event or sending a signal happens before every event
/// that is received later. In other builds they do nothing.
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
