#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QFile>
#include <QString>

/// Appends records to the log of a journal. A function that returns false has failed; the file's
/// Error tells why.
class RecordLog
{
public:
    /// session: the bytes of the session file, which every hash covers.
    RecordLog(const QString& path, const QByteArray& session);

    /// Makes the file.
    bool Create();
    /// Adds a record; large amounts are written at once, the rest at the next commit.
    bool Append(char type, const QByteArray& content);
    /// The same, for a whole record.
    bool AppendRecord(const QByteArray& record);
    /// Adds the record of a commit, given without its hash, and waits for the disk.
    bool Commit(const QByteArray& content);
    /// Reads a record that was written.
    QByteArray Read(qint64 offset, qint64 length);

    /// The length of all records, in bytes.
    qint64 Length() const { return m_written + m_pending.size(); }
    const QString& Error() const { return m_error; }

    /// Closes the file; Reopen goes on with it, under the same name or another.
    void Close() { m_file.close(); }
    bool Reopen(const QString& path);

private:
    bool Take(bool isDone);
    void AddBytes(const QByteArray& bytes);
    bool Write();
    void BeginHash();

    QFile m_file;
    QByteArray m_session;
    QByteArray m_pending;
    qint64 m_written = 0;
    /// The hash of the bytes after the last commit.
    QCryptographicHash m_hash{QCryptographicHash::Sha1};
    QString m_error;
};
