#include "app/Log.h"

#include "app/ControlCharacters.h"

#include <QCoreApplication>
#include <QTime>
#include <QtDebug>

Log& Log::Instance()
{
    static Log log;
    return log;
}

void Log::LogMessage(const QString& content, Log::MessageType type)
{
    const QString line =
        QTime::currentTime().toString(QStringLiteral("HH:mm:ss")) + QStringLiteral(" - ") + content;
    const QByteArray console = ToConsoleLine(line).toUtf8();
    if (type == Error) {
        qCritical("%s", console.constData());
    } else {
        qDebug("%s", console.constData());
    }
    emit MessageReceived(line, type);
}

namespace {

void LogAndProcessEvents(const QString& content, Log::MessageType type)
{
    Log::Instance().LogMessage(content, type);
    QCoreApplication::processEvents();
}

} // namespace

void LogInfo(const QString& content)
{
    LogAndProcessEvents(content, Log::Info);
}

void LogSuccess(const QString& content)
{
    LogAndProcessEvents(content, Log::Success);
}

void LogError(const QString& content)
{
    LogAndProcessEvents(content, Log::Error);
}
