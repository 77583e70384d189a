#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

#include <sys/types.h>

/// While this object exists, files of this process cannot exceed this many bytes. Writes beyond are
/// short or fail, as on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(quint64 byteCount);
    ~FileSizeLimit();
    Q_DISABLE_COPY(FileSizeLimit)

private:
    quint64 m_limitBefore;
};

/// While this object exists, this process cannot rename files, so finished files cannot replace
/// their targets.
class RenamesFail
{
public:
    RenamesFail();
    ~RenamesFail();
    Q_DISABLE_COPY(RenamesFail)
};

/// Ends this process before it gives, changes or removes the name of a file or folder for the
/// number-th time from now on, counted from 0, like a kill in that moment.
void DieBeforeStep(int number);
/// What it then ends with.
constexpr int DeadExitCode = 99;
/// Runs the function in a process of its own that ends like that. False when it came to its end
/// before; then it must have returned true.
bool IsKilled(int number, const std::function<bool()>& run);

/// While it lives, no file can be made without a name, as on some file systems.
class NoUnnamedFiles
{
public:
    NoUnnamedFiles();
    ~NoUnnamedFiles();
    Q_DISABLE_COPY(NoUnnamedFiles)
};

/// While it lives, a folder has these permissions, and root is nobody.
class FolderOfMode
{
public:
    FolderOfMode(const QString& path, mode_t mode);
    ~FolderOfMode();
    Q_DISABLE_COPY(FolderOfMode)

private:
    QByteArray m_path;
    uid_t m_userBefore;
};

/// While it lives, the folder takes no new file, not even from root.
class ReadOnlyFolder : public FolderOfMode
{
public:
    explicit ReadOnlyFolder(const QString& path)
        : FolderOfMode(path, 0555)
    {
    }
};

/// While it lives, the folder takes new files, but root, who made it, does not own the files in it.
class StickyFolder : public FolderOfMode
{
public:
    explicit StickyFolder(const QString& path)
        : FolderOfMode(path, 01777)
    {
    }
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

/// Writes a file "filler" into the folder until there is no room on its disk.
void FillUp(const QString& folder);
