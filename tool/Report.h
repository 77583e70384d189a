#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QVector>

/// Named facts in order, to be printed as text or as JSON.
class Report
{
public:
    void Add(const QString& name, const QJsonValue& value);
    /// A part is printed on one line of the text.
    void Add(const QString& name, const Report& part);
    /// The first fact of each entry is its title.
    void Add(const QString& name, const QVector<Report>& entries);

    /// Adds the facts of the other report at the end.
    void Append(const Report& more) { m_facts += more.m_facts; }

    void Print(bool asJson) const;

private:
    QJsonObject ToJson() const;
    void PrintText() const;
    /// The facts from index first on, with commas between.
    QString Line(int first) const;

    struct Fact
    {
        QString name;
        QJsonValue value;
        bool isList = false;
        /// The facts of a part, or the entries of a list.
        QVector<Report> parts;
    };

    QVector<Fact> m_facts;
};

/// What the flags are called (AreaFlagTypes::BitNames), as a fact.
QJsonArray FlagNames(quint32 flags, const QVector<QString>& names);
