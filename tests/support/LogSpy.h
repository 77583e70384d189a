#pragma once

#include "app/Log.h"

#include <QObject>
#include <QStringList>

/// Collects what is logged while it lives, each message as its type and text without the time:
/// "Error: Failed to ...".
class LogSpy : public QObject
{
    Q_OBJECT

public:
    LogSpy();

    const QStringList& Messages() const { return m_messages; }
    /// The messages so far, which it forgets.
    QStringList Take();

private:
    void Collect(const QString& line, Log::MessageType type);

    QStringList m_messages;
};
