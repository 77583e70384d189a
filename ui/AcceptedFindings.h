#pragma once

#include "document/Problems.h"

#include <QObject>
#include <QPair>
#include <QSet>
#include <QString>

#include <vector>

class Document;

/// The findings that the user accepted because they are meant so, kept in the user's settings for
/// each project. They are known by rule, place and text. While the project is open, a finding that
/// is renamed, or whose numbers change, stays accepted: it is known by its thing too. The settings
/// hold the texts of the project's files, so that they still fit when edits are discarded.
class AcceptedFindings : public QObject
{
    Q_OBJECT

public:
    /// Both outlive this object.
    AcceptedFindings(const Document& document, const Problems& problems);

    /// A new project takes the place of the one at this path.
    static void Discard(const QString& path);

    bool Contains(const Problem& problem) const;
    /// Of the present findings, those that are not accepted.
    int OpenCount() const { return m_openCount; }
    int OpenErrorCount() const { return m_openErrorCount; }
    void Set(const ProblemList& problems, bool areAccepted);

signals:
    /// Other findings are accepted, or there are other findings.
    void Changed();

private:
    /// What the user sees of a finding.
    struct Key
    {
        QString rule;
        QString place;
        QString text;
    };
    friend bool operator==(const Key& a, const Key& b)
    {
        return a.rule == b.rule && a.place == b.place && a.text == b.text;
    }
    friend uint qHash(const Key& key, uint seed)
    {
        return ::qHash(key.rule, seed) ^ (31 * ::qHash(key.place, seed)) ^
               (17 * ::qHash(key.text, seed));
    }

    static Key KeyOf(const Problem& problem);
    void FollowProblems();
    void Carry(const ProblemList& accepted, const std::vector<Problems::Part>& parts);
    void Count();
    /// Whether the project is in a file whose accepted findings the settings may hold. They are
    /// read if that was not done before.
    bool HasFile();
    void Read(const QString& path);
    /// After the project was saved.
    void WriteAll();
    void Write(const QSet<Key>& keys);

    const Document& m_document;
    const Problems& m_problems;
    QSet<Key> m_keys;
    /// The present findings that are accepted.
    ProblemList m_present;
    /// The present findings that are not, as far as they are about the same things, which may be
    /// gone.
    QSet<QPair<Key, const void*>> m_open;
    int m_openCount = 0;
    int m_openErrorCount = 0;
    /// What the settings hold.
    QString m_path;
    QSet<Key> m_written;
};
