#pragma once

#include "app/Log.h"

#include <QObject>
#include <QStringList>

/// Collects the messages that are logged while it exists, as type and text without the time:
/// "Error: Failed to ...".
class LogSpy : public QObject
{
    Q_OBJECT

public:
    LogSpy();

    const QStringList& Messages() const { return m_messages; }
    /// Returns the messages so far and forgets them.
    QStringList Take();

private:
    void Collect(const QString& line, Log::MessageType type);

    QStringList m_messages;
};
