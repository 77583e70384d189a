#include "platform/Files.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include <algorithm>

namespace platform {
namespace {

/// Removes a lock file whose maker was killed before it wrote into it who it is. QLockFile would
/// count it for ever. A living maker writes at once, and a system lock keeps the file from being
/// removed meanwhile.
void RemoveUnsigned(QLockFile& lock, const QString& name)
{
    qint64 process = 0;
    QString host;
    QString program;
    const QFileInfo file(name);
    if (file.exists() && file.lastModified().secsTo(QDateTime::currentDateTime()) >= 1 &&
        !lock.getLockInfo(&process, &host, &program)) {
        lock.removeStaleLockFile();
    }
}

} // namespace

std::filesystem::path ToPath(const QString& path)
{
    return std::filesystem::u8path(path.toUtf8().constData());
}

std::error_code OpenNew(QFile& file)
{
    if (file.open(QIODevice::ReadWrite | QIODevice::NewOnly)) {
        return {};
    }
    // Qt tells the reason in words only. The standard library gives the code of it when it is to
    // make a folder there.
    std::error_code error;
    const std::filesystem::path path = ToPath(file.fileName());
    if (std::filesystem::create_directory(path, error)) {
        std::filesystem::remove(path, error);
    }
    return error ? error : ErrorOf(file);
}

std::error_code ErrorOf(const QFileDevice& file)
{
    // Qt has a code of its own for a full disk only.
    const bool isFull = file.error() == QFileDevice::ResourceError;
    return std::make_error_code(isFull ? std::errc::no_space_on_device : std::errc::io_error);
}

std::error_code OpenUnnamed(QFile& /*file*/, const QString& /*folder*/)
{
    return std::make_error_code(std::errc::operation_not_supported);
}

std::error_code NameUnnamed(QFile& /*file*/, const QString& /*path*/)
{
    return std::make_error_code(std::errc::operation_not_supported);
}

std::shared_ptr<void> TryLock(const QString& path)
{
    const QString name = path + QStringLiteral(".lock");
    const QString removalName = name + QStringLiteral(".rmlock");
    QLockFile removal(removalName);
    RemoveUnsigned(removal, removalName);
    auto lock = std::make_shared<QLockFile>(name);
    RemoveUnsigned(*lock, name);
    // However old it is, it counts until its process has ended.
    lock->setStaleLockTime(0);
    if (!lock->tryLock(0)) {
        return {};
    }
    // This is left of a process that was killed while it removed the lock of a dead one.
    QFile::remove(removalName);
    return lock;
}

std::error_code Reserve(QFile& file, qint64 length)
{
    constexpr qint64 blockSize = 1 << 16;
    const QByteArray zeros(blockSize, '\0');
    bool isReserved = file.seek(file.size());
    while (isReserved && file.size() < length) {
        isReserved = file.write(zeros.constData(), std::min(blockSize, length - file.size())) > 0;
    }
    return isReserved && file.flush() ? std::error_code()
                                      : std::make_error_code(std::errc::no_space_on_device);
}

std::error_code Sync(QFile& file)
{
    return file.flush() ? std::error_code() : std::make_error_code(std::errc::io_error);
}

std::optional<FileIdentity> IdentityOf(const QString& /*path*/)
{
    return std::nullopt;
}

bool CanBeReplaced(const QString& /*path*/)
{
    return false;
}

std::error_code OpenDevice(QFile& file)
{
    if (QFileInfo(file).isDir()) {
        return std::make_error_code(std::errc::is_a_directory);
    }
    return file.open(QIODevice::WriteOnly) ? std::error_code()
                                           : std::make_error_code(std::errc::permission_denied);
}

} // namespace platform
