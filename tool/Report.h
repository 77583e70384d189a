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
    /// Each entry's first fact is its title.
    void Add(const QString& name, const QVector<Report>& entries);

    QJsonObject ToJson() const;
    void PrintText() const;
    void Print(bool asJson) const;

private:
    /// All facts on one line.
    QString Line() const;

    struct Fact
    {
        QString name;
        QJsonValue value;
        bool isList = false;
        QVector<Report> entries;
    };

    QVector<Fact> m_facts;
};
