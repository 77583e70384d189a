#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

/// The files that hold the open project on disk, and what they were like when it was loaded or
/// saved last. A file that is not known belongs to somebody else.
class KnownFiles
{
public:
    /// What a file was like at some moment.
    struct Stamp
    {
        /// -1 when there is no file.
        qint64 length = -1;
        /// When it was changed last, in milliseconds since 1970.
        qint64 time = 0;

        bool operator==(const Stamp& other) const
        {
            return length == other.length && time == other.time;
        }
        bool operator!=(const Stamp& other) const { return !(*this == other); }
    };

    /// The file as it is now.
    static Stamp StampOf(const QString& path);

    /// Another project is opened.
    void Clear();
    /// The project is in other files from now on. Those of before stay its own.
    void ClearStamps() { m_stamps.clear(); }
    /// From now on the file is known as it is at this moment, also when there is none.
    void Note(const QString& path);

    /// The files that were noted since Clear.
    const QSet<QString>& OwnPaths() const { return m_own; }
    QStringList Paths() const { return m_stamps.keys(); }
    bool Knows(const QString& path) const { return m_stamps.contains(path); }
    /// The file as it was when it was noted; one without a file when it is not known.
    Stamp Known(const QString& path) const { return m_stamps.value(path); }
    /// Whether a known file was replaced, changed, removed or made since it was noted. Tells by its
    /// length and its time. False for a file that is not known.
    bool HasChanged(const QString& path) const;

private:
    QHash<QString, Stamp> m_stamps;
    QSet<QString> m_own;
};
