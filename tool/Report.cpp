#include "tool/Report.h"

#include "tool/Console.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

QString Text(const QJsonValue& value)
{
    if (value.isBool()) {
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    }
    if (value.isDouble()) {
        return QString::number(value.toDouble(), 'g', 15);
    }
    if (value.isArray()) {
        QStringList texts;
        const QJsonArray array = value.toArray();
        for (const QJsonValue& entry : array) {
            texts.append(Text(entry));
        }
        return texts.isEmpty() ? QStringLiteral("none") : texts.join(QStringLiteral(" + "));
    }
    return value.toString();
}

} // namespace

void Report::Add(const QString& name, const QJsonValue& value)
{
    m_facts.append({name, value, false, {}});
}

void Report::Add(const QString& name, const QVector<Report>& entries)
{
    m_facts.append({name, {}, true, entries});
}

QJsonObject Report::ToJson() const
{
    QJsonObject object;
    for (const Fact& fact : m_facts) {
        if (fact.isList) {
            QJsonArray array;
            for (const Report& entry : fact.entries) {
                array.append(entry.ToJson());
            }
            object.insert(fact.name, array);
        } else {
            object.insert(fact.name, fact.value);
        }
    }
    return object;
}

QString Report::Line() const
{
    QString line;
    for (int i = 0; i < m_facts.size(); ++i) {
        const Fact& fact = m_facts.at(i);
        const QString text = Text(fact.value);
        line += i == 0
                    ? text
                    : QStringLiteral("%1 %2 %3")
                          .arg(i == 1 ? QStringLiteral(":") : QStringLiteral(","), fact.name, text);
    }
    return line;
}

void Report::PrintText() const
{
    for (const Fact& fact : m_facts) {
        const QString name = fact.name + QStringLiteral(": ");
        if (fact.isList) {
            Console::Print(name + QString::number(fact.entries.size()));
            for (const Report& entry : fact.entries) {
                Console::Print(QStringLiteral("  ") + entry.Line());
            }
        } else {
            Console::Print(name + Text(fact.value));
        }
    }
}

void Report::Print(bool asJson) const
{
    if (asJson) {
        Console::PrintData(QJsonDocument(ToJson()).toJson());
    } else {
        PrintText();
    }
}
