#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

/// The files that hold the open project on disk, and what they were like when it was loaded or
/// saved last. A file that is not known belongs to somebody else.
class KnownFiles
{
public:
    void Clear() { m_stamps.clear(); }
    /// From now on the file is known as it is at this moment, also when there is none.
    void Note(const QString& path);

    QStringList Paths() const { return m_stamps.keys(); }
    bool Knows(const QString& path) const { return m_stamps.contains(path); }
    /// Whether a known file was replaced, changed, removed or made since it was noted. Tells by its
    /// length and its time. False for a file that is not known.
    bool HasChanged(const QString& path) const;

private:
    struct Stamp
    {
        /// -1 when there is no file.
        qint64 length = -1;
        /// Milliseconds.
        qint64 time = 0;
    };

    static Stamp StampOf(const QString& path);

    QHash<QString, Stamp> m_stamps;
};
