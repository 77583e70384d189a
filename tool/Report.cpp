#include "tool/Report.h"

#include "layers/AreaFlagTypes.h"
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

void Report::Add(const QString& name, const Report& part)
{
    m_facts.append({name, {}, false, {part}});
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
            for (const Report& entry : fact.parts) {
                array.append(entry.ToJson());
            }
            object.insert(fact.name, array);
        } else {
            object.insert(fact.name,
                          fact.parts.isEmpty() ? fact.value : fact.parts.first().ToJson());
        }
    }
    return object;
}

QString Report::Line(int first) const
{
    QStringList texts;
    const QVector<Fact> facts = m_facts.mid(first);
    for (const Fact& fact : facts) {
        texts.append(fact.name + QLatin1Char(' ') + Text(fact.value));
    }
    return texts.join(QStringLiteral(", "));
}

void Report::PrintText() const
{
    for (const Fact& fact : m_facts) {
        const QString name = fact.name + QStringLiteral(": ");
        if (fact.isList) {
            Console::Print(name + QString::number(fact.parts.size()));
            for (const Report& entry : fact.parts) {
                Console::Print(QStringLiteral("  %1: %2")
                                   .arg(Text(entry.m_facts.first().value), entry.Line(1)));
            }
        } else {
            Console::Print(name +
                           (fact.parts.isEmpty() ? Text(fact.value) : fact.parts.first().Line(0)));
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

QJsonArray FlagNames(quint32 flags, const QVector<QString>& names)
{
    return QJsonArray::fromStringList(AreaFlagTypes::BitNames(flags, names));
}
