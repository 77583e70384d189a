#include "tests/support/LogSpy.h"

#include <QMetaEnum>

LogSpy::LogSpy()
{
    connect(&Log::Instance(), &Log::MessageReceived, this, &LogSpy::Collect);
}

QStringList LogSpy::Take()
{
    QStringList messages;
    messages.swap(m_messages);
    return messages;
}

void LogSpy::Collect(const QString& line, Log::MessageType type)
{
    const auto typeName = QString::fromLatin1(QMetaEnum::fromType<Log::MessageType>().key(type));
    const QString text = line.mid(static_cast<int>(qstrlen("HH:mm:ss - ")));
    m_messages.append(QStringLiteral("%1: %2").arg(typeName, text));
}
