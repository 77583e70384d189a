#pragma once

#include <QFile>
#include <QString>

#include <memory>
#include <system_error>

/// A file that is made out of sight and then put in its place as a whole. While it is made it has
/// no name where the file system can do that, and a hidden one elsewhere. What never gets to its
/// place is removed, by the next one that is opened in the folder when the program was killed.
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

    /// As those of an existing file.
    void SetPermissionsOf(const QString& path);
    /// Takes the place of the file or link there, if there is any. What was written is on the disk
    /// then. After a failure the old file stays.
    std::error_code Replace(const QString& place);
    /// Gives the file a path where there is nothing yet, and leaves it to the caller to remove it.
    /// What was written is on the disk then.
    std::error_code HandOver(const QString& path);
    /// Writes over the existing file there, for folders that take no new file. When there is no
    /// room the old bytes stay; when writing fails after that, or the program is killed, the file
    /// may hold some of both. The made file may be in any folder.
    std::error_code Overwrite(const QString& place);

private:
    std::error_code OpenNamed(const QString& folder);
    std::error_code Finish();
    std::error_code Rename(const QString& path);

    QFile m_file;
    /// Empty while it has none.
    QString m_name;
    /// Of a file that has had its name from the beginning.
    std::shared_ptr<void> m_lock;
};
