#include "app/Log.h"

#include <QCoreApplication>
#include <QTime>
#include <QtDebug>

Log& Log::Instance()
{
    static Log log;
    return log;
}

namespace {

/// A line on the console, whatever names from files put into it: a line break could forge another
/// message, and escape sequences could change what is shown.
QString WithoutControlCharacters(QString text)
{
    for (QChar& character : text) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph) {
            character = QLatin1Char(' ');
        }
    }
    return text;
}

} // namespace

void Log::LogMessage(const QString& content, Log::MessageType type)
{
    const QString line =
        QTime::currentTime().toString(QStringLiteral("HH:mm:ss")) + QStringLiteral(" - ") + content;
    const QByteArray console = WithoutControlCharacters(line).toUtf8();
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
