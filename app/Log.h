#pragma once

#include <QObject>
#include <QString>

/// Handles all messages to the user, in the editor and in a batch run. It writes each to the
/// console, with the time of day in front, and emits it for widgets that show it. There is one log
/// in the process.
class Log : public QObject
{
    Q_OBJECT

public:
    /// Any other number means information.
    enum MessageType : int
    {
        Info = 0,
        Success = 1,
        Error = 2,
    };
    Q_ENUM(MessageType)

    static Log& Instance();

public slots:
    /// May be called from any thread. Errors go to Qt's critical channel, all other messages to its
    /// debug channel. Control characters become spaces on the console, so that each message is one
    /// line.
    void LogMessage(const QString& content, Log::MessageType type);

signals:
    /// The whole line, including the time.
    void MessageReceived(QString content, Log::MessageType type);

private:
    Log() = default;
};

/// These functions log one message and then process the pending events of the calling thread once,
/// so that the window responds during long work. The events may call the caller's own code again.
void LogInfo(const QString& content);
void LogSuccess(const QString& content);
void LogError(const QString& content);
