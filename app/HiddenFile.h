#pragma once

#include <QFile>
#include <QString>

#include <memory>
#include <system_error>

/// True if the folder refuses the file, as opposed to a full or broken disk.
bool IsRefusal(const std::error_code& error);
bool CanBeOverwritten(const QString& place);
/// Overwrites the existing file in place with the bytes of the other one, which was opened. A full
/// disk leaves the old bytes; a later error or a kill may leave a mixture.
std::error_code OverwriteFile(QFile& made, const QString& place);

/// A file that is made out of sight and then put in its place as a whole. Until then it has no name
/// where the file system can do that, and a hidden name elsewhere. The destructor removes an
/// uncommitted file. After a kill, the next HiddenFile that is opened in the folder removes it.
class HiddenFile
{
public:
    HiddenFile() = default;
    ~HiddenFile();
    Q_DISABLE_COPY(HiddenFile)

    /// Makes the empty file in the folder in which its place is.
    std::error_code Open(const QString& folder);
    /// For writing, from Open until the file is put in its place.
    QFile& Device() { return m_file; }

    /// Takes the permissions of an existing file over.
    void SetPermissionsOf(const QString& path);
    /// Replaces the file or link at the place, if there is one, after the bytes have reached the
    /// disk. A failure leaves the old file.
    std::error_code Replace(const QString& place);
    /// Gives the file a path where there is nothing yet, and leaves it to the caller to remove it.
    /// What was written is on the disk then.
    std::error_code HandOver(const QString& path);
    /// Overwrites the existing file in place, for folders that take no new file. This file may be
    /// in any folder.
    std::error_code Overwrite(const QString& place) { return OverwriteFile(m_file, place); }

private:
    std::error_code OpenNamed(const QString& folder);
    std::error_code Finish();
    std::error_code Rename(const QString& path);

    QFile m_file;
    /// The hidden name; empty while the file has none.
    QString m_name;
    /// Locks a file that had a name from the beginning.
    std::shared_ptr<void> m_lock;
};
