#pragma once

#include "app/FileGroup.h"
#include "app/HiddenFile.h"

#include <QFile>
#include <QString>

/// A file being written that takes its target's place only as a whole: until Commit succeeds, and
/// whenever anything failed, the old file stays as it was. Where the folder allows no replacement,
/// Commit reserves the space and overwrites the file. Devices and pipes receive the bytes at once.
class OutputFile
{
public:
    explicit OutputFile(const QString& path);
    /// Discards the new file unless it was committed.
    ~OutputFile();
    Q_DISABLE_COPY(OutputFile)

    /// Never waits: a pipe that nobody reads cannot be opened.
    /// flags: QIODevice::Text for files whose line ends are those of the system.
    bool Open(QIODevice::OpenMode flags = QIODevice::NotOpen);
    /// False unless every byte was taken; a failure is remembered until Commit.
    bool Write(const char* bytes, qint64 count);
    bool Write(const QByteArray& bytes) { return Write(bytes.constData(), bytes.size()); }
    /// Replaces the target. Returns false and replaces nothing after any failure.
    bool Commit();
    /// The reason of the first failure, in the system's words.
    QString ErrorString() const { return m_error; }

private:
    bool Take(const std::error_code& error);
    std::error_code OpenHidden();
    std::error_code PutInPlace();
    QFile& Device() { return m_isDevice ? m_device : m_hidden.Device(); }

    QString m_path;
    /// What a link at the path leads to.
    QString m_place;
    bool m_isDevice;
    QFile m_device;
    HiddenFile m_hidden;
    /// Whether the folder took no new file, so that the hidden one is elsewhere.
    bool m_isElsewhere = false;
    bool m_isWhole = false;
    QString m_error;
};

/// While it lives, the files that are committed in this thread are finished and wait for its
/// Commit, which puts them in their places together. The destructor throws away what still waits.
/// Devices, pipes, and files whose folder takes no new file do not wait.
class OutputGroup
{
public:
    OutputGroup();
    ~OutputGroup();
    Q_DISABLE_COPY(OutputGroup)

    /// False after a failure. The old files stay then, but for those that had to be overwritten.
    bool Commit();
    QString ErrorString() const;

private:
    FileGroup m_files;
    FileGroup* m_outer;
};

/// Lets the group of this thread take the file; without one, puts it in its place.
std::error_code PutInPlace(HiddenFile& file, const QString& place);

/// The path to which a link leads, whether or not it exists. Links in its folders are resolved,
/// because ".." behind a link would be misread. Empty when its folder does not exist.
QString FollowedPath(const QString& path);
