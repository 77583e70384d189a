#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// A file being made, in any order of its parts.
class NewFile
{
public:
    explicit NewFile(const QString& path)
        : m_file(path)
    {
    }

    bool Open();
    /// False unless every byte was taken.
    bool WriteAt(qint64 offset, const void* bytes, qint64 count);
    /// Why something failed.
    QString Error() const { return m_file.errorString(); }

private:
    QFile m_file;
};
