#pragma once

#include <QObject>
#include <QString>

/// Every message to the user, from the editor and the batch run alike: written to the console with
/// the time of day in front, and handed on to whoever shows it. There is one, for the whole
/// process.
class Log : public QObject
{
    Q_OBJECT

public:
    /// Other numbers are taken for information.
    enum MessageType : int
    {
        Info = 0,
        Success = 1,
        Error = 2,
    };
    Q_ENUM(MessageType)

    static Log& Instance();

public slots:
    /// May be called from any thread. Errors go to the critical console channel, all else to debug;
    /// on the console control characters become spaces, so that each message is one line.
    void LogMessage(const QString& content, Log::MessageType type);

signals:
    /// The whole line, time included.
    void MessageReceived(QString content, Log::MessageType type);

private:
    Log() = default;
};

/// Each logs one message and then processes the pending events of the calling thread once, so that
/// a caller that is busy for long keeps the window alive. Whoever calls them can be re-entered.
void LogInfo(const QString& content);
void LogSuccess(const QString& content);
void LogError(const QString& content);
