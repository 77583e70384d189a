#include "platform/Files.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace platform {
namespace {

std::error_code LastError()
{
    return {errno, std::generic_category()};
}

/// Closes what was opened with a plain system call.
class Descriptor
{
public:
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    ~Descriptor()
    {
        if (m_number >= 0) {
            close(m_number);
        }
    }
    Q_DISABLE_COPY(Descriptor)

    operator int() const { return m_number; }

private:
    int m_number;
};

/// Through this name a file without one is linked.
QByteArray OpenFileName(const QFile& file)
{
    return "/proc/self/fd/" + QByteArray::number(file.handle());
}

bool IsSame(const struct stat& one, const struct stat& other)
{
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

} // namespace

std::filesystem::path ToPath(const QString& path)
{
    return QFile::encodeName(path).constData();
}

std::error_code OpenNew(QFile& file)
{
    return file.open(QIODevice::ReadWrite | QIODevice::NewOnly) ? std::error_code() : ErrorOf(file);
}

std::error_code ErrorOf(const QFileDevice& file)
{
    return file.error() == QFileDevice::NoError || errno == 0
               ? std::make_error_code(std::errc::io_error)
               : LastError();
}

std::error_code OpenUnnamed(QFile& file, const QString& folder)
{
    if (faccessat(AT_FDCWD, "/proc/self/fd", X_OK, AT_EACCESS) != 0) {
        return std::make_error_code(std::errc::operation_not_supported);
    }
    constexpr mode_t everyone = 0666;
    const int descriptor =
        open(QFile::encodeName(folder).constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, everyone);
    if (descriptor < 0) {
        return LastError();
    }
    flock(descriptor, LOCK_EX | LOCK_NB);
    if (!file.open(descriptor, QIODevice::ReadWrite, QFileDevice::AutoCloseHandle)) {
        close(descriptor);
        return std::make_error_code(std::errc::io_error);
    }
    return {};
}

std::error_code NameUnnamed(QFile& file, const QString& path)
{
    const int result = linkat(AT_FDCWD, OpenFileName(file).constData(), AT_FDCWD,
                              QFile::encodeName(path).constData(), AT_SYMLINK_FOLLOW);
    return result == 0 ? std::error_code() : LastError();
}

std::shared_ptr<void> TryLock(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    auto file = std::make_shared<Descriptor>(
        open(name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat opened = {};
    struct stat named = {};
    const bool isLocked = *file >= 0 && fstat(*file, &opened) == 0 && opened.st_uid == geteuid() &&
                          flock(*file, LOCK_EX | LOCK_NB) == 0;
    // The one who had the lock before may have removed the file.
    if (!isLocked || lstat(name.constData(), &named) != 0 || !IsSame(opened, named)) {
        return {};
    }
    return file;
}

std::error_code Reserve(QFile& file, qint64 length)
{
    if (length == 0) {
        return {};
    }
    return {posix_fallocate(file.handle(), 0, length), std::generic_category()};
}

std::error_code Sync(QFile& file)
{
    // Some file systems and devices have nothing to wait for.
    if (fsync(file.handle()) == 0 || errno == EINVAL || errno == ENOSYS || errno == ENOTSUP) {
        return {};
    }
    return LastError();
}

std::optional<FileIdentity> IdentityOf(const QString& path)
{
    struct stat file = {};
    if (lstat(QFile::encodeName(path).constData(), &file) != 0) {
        return std::nullopt;
    }
    return FileIdentity{file.st_dev, file.st_ino, file.st_nlink};
}

bool CanBeReplaced(const QString& path)
{
    const QByteArray fileName = QFile::encodeName(path);
    const QByteArray folderName = QFile::encodeName(QFileInfo(path).path());
    struct statx file = {};
    struct statx folder = {};
    if (statx(AT_FDCWD, fileName.constData(), AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS, &file) != 0 ||
        statx(AT_FDCWD, folderName.constData(), 0, STATX_BASIC_STATS, &folder) != 0 ||
        faccessat(AT_FDCWD, folderName.constData(), W_OK | X_OK, AT_EACCESS) != 0) {
        return false;
    }
    constexpr quint64 frozen = STATX_ATTR_APPEND | STATX_ATTR_IMMUTABLE;
    // In a folder with the sticky bit, such as /tmp, only an owner replaces a file.
    const bool isForOwners = (folder.stx_mode & S_ISVTX) != 0;
    const bool isOwner = file.stx_uid == geteuid() || folder.stx_uid == geteuid();
    // A file that is mounted on its own is on another device.
    return S_ISREG(file.stx_mode) && file.stx_dev_major == folder.stx_dev_major &&
           file.stx_dev_minor == folder.stx_dev_minor && (isOwner || !isForOwners) &&
           ((file.stx_attributes | folder.stx_attributes) & frozen) == 0;
}

std::error_code OpenDevice(QFile& file)
{
    const int descriptor = open(QFile::encodeName(file.fileName()).constData(),
                                O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        return LastError();
    }
    // Only opening does not wait; writing does, as usual.
    const int flags = fcntl(descriptor, F_GETFL);
    if (fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) != 0 ||
        !file.open(descriptor, QIODevice::WriteOnly, QFileDevice::AutoCloseHandle)) {
        close(descriptor);
        return std::make_error_code(std::errc::io_error);
    }
    return {};
}

} // namespace platform
