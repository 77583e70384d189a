#include "platform/Files.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include <algorithm>

namespace platform {

std::filesystem::path ToPath(const QString& path)
{
    return std::filesystem::u8path(path.toUtf8().constData());
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
    auto lock = std::make_shared<QLockFile>(name);
    // However old it is, it counts until its process has ended.
    lock->setStaleLockTime(0);
    if (!lock->tryLock(0)) {
        return {};
    }
    // This is left of a process that was killed while it removed the lock of a dead one.
    QFile::remove(name + QStringLiteral(".rmlock"));
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
