#pragma once

#include <QFileDevice>
#include <QString>

#include <memory>

/// A file being written that takes its target's place only as a whole: until Commit succeeds, and
/// whenever anything failed, the old file stays as it was. So a file in a folder that takes no new
/// file cannot be written. A target that exists and is no regular file (a device, a pipe) is
/// written in place.
class OutputFile
{
public:
    explicit OutputFile(const QString& path);
    /// Not committed means thrown away.
    ~OutputFile();
    Q_DISABLE_COPY(OutputFile)

    /// flags may hold QIODevice::Text. Never waits: a pipe that nobody reads cannot be opened.
    bool Open(QIODevice::OpenMode flags = QIODevice::NotOpen);
    /// False unless every byte was taken; a failure is remembered until Commit.
    bool Write(const char* bytes, qint64 count);
    bool Write(const QByteArray& bytes) { return Write(bytes.constData(), bytes.size()); }
    /// Puts the finished file in its place; false, and nothing is put there, after any failure.
    bool Commit();
    /// The reason of the last failure, in the toolkit's or the system's words.
    QString ErrorString() const;

private:
    bool Flush();

    std::unique_ptr<QFileDevice> m_device;
    /// Of opening a target that is written in place.
    QString m_openError;
    bool m_isWhole = true;
};
