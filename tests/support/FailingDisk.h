#pragma once

#include <QByteArray>
#include <QString>

#include <sys/types.h>

/// While it lives, this process cannot make a file longer than this many bytes: what goes beyond
/// is a short or a failed write, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(quint64 byteCount);
    ~FileSizeLimit();
    Q_DISABLE_COPY(FileSizeLimit)

private:
    quint64 m_limitBefore;
};

/// While it lives, this process cannot rename files: finished files cannot be put in their places.
class RenamesFail
{
public:
    RenamesFail();
    ~RenamesFail();
    Q_DISABLE_COPY(RenamesFail)
};

/// While it lives, the folder takes no new file, not even from root, who is nobody for so long.
class ReadOnlyFolder
{
public:
    explicit ReadOnlyFolder(const QString& path);
    ~ReadOnlyFolder();
    Q_DISABLE_COPY(ReadOnlyFolder)

private:
    QByteArray m_path;
    uid_t m_userBefore;
};

/// A disk of its own, of this many bytes, on an empty folder. Only root can make one.
class SmallDisk
{
public:
    SmallDisk(const QString& folder, int byteCount);
    ~SmallDisk();
    Q_DISABLE_COPY(SmallDisk)

    bool IsThere() const { return m_isThere; }

private:
    QByteArray m_folder;
    bool m_isThere;
};
