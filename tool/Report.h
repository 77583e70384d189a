#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QVector>

/// Named facts in order, to be printed as text or as JSON.
class Report
{
public:
    void Add(const QString& name, const QJsonValue& value);
    /// A part has one line in the text.
    void Add(const QString& name, const Report& part);
    /// Each entry's first fact is its title.
    void Add(const QString& name, const QVector<Report>& entries);

    /// The facts of the other one, behind its own.
    void Append(const Report& more) { m_facts += more.m_facts; }

    void Print(bool asJson) const;

private:
    QJsonObject ToJson() const;
    void PrintText() const;
    /// The facts from this one on, with commas between.
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
