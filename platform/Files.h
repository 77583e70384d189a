#pragma once

#include <QtGlobal>

#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

class QFile;
class QFileDevice;
class QString;

/// What differs between systems in making files. What the system refuses comes back as its error.
namespace platform {

/// The path as the standard library takes it.
std::filesystem::path ToPath(const QString& path);

/// Makes the file, which must not exist yet, and opens it for reading and writing.
std::error_code OpenNew(QFile& file);
/// Why Qt's last operation on the file failed; where the system does not say that in a code, it is
/// an input or output error.
std::error_code ErrorOf(const QFileDevice& file);

/// Opens a new file that has no name in the folder, and so goes with the process unless it is given
/// one. It is locked like a file that TryLock was called for, until it is closed. Fails with
/// operation_not_supported where there are no such files.
std::error_code OpenUnnamed(QFile& file, const QString& folder);
/// Gives a file of OpenUnnamed its name. Fails with file_exists where that is taken.
std::error_code NameUnnamed(QFile& file, const QString& path);

/// Tells that the maker of a hidden file or folder is alive: held until the result is destroyed or
/// the process ends in whatever way. Null while another one holds it, when the file is of another
/// user, and where there are no locks. The path exists.
std::shared_ptr<void> TryLock(const QString& path);

/// Takes room for the first so many bytes of an open file, so that writing them does not fail for
/// want of it. What they held stays. After a failure the file may be longer than before.
std::error_code Reserve(QFile& file, qint64 length);
/// Returns when what was written is on the disk, as far as the system can tell.
std::error_code Sync(QFile& file);

/// Tells whether two names are names of one file.
struct FileIdentity
{
    quint64 device = 0;
    quint64 number = 0;
    /// How many names the file has.
    quint64 names = 1;
};
/// Nothing where the system tells nothing, and for a path without a file. Links are not followed.
std::optional<FileIdentity> IdentityOf(const QString& path);
/// Whether a new file can take this file's place in its folder, so that another name of the old one
/// keeps the old bytes. False where that is not certain.
bool CanBeReplaced(const QString& path);

/// Opens a pipe or a device for writing. A pipe that nobody reads is not waited for, it fails.
std::error_code OpenDevice(QFile& file);

} // namespace platform
