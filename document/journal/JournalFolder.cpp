#include "document/journal/JournalFolder.h"

#include "app/OutputFile.h"
#include "app/WriteAll.h"
#include "platform/Files.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <filesystem>

namespace journal {

namespace {

/// The paths of the files that a journal may have.
QStringList JournalFiles(const QString& folder)
{
    QStringList paths;
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names) {
        if (IsJournalFile(name)) {
            paths.append(folder + QLatin1Char('/') + name);
        }
    }
    return paths;
}

bool IsLock(const QString& folder, const QString& path)
{
    return path.startsWith(LockPath(folder));
}

void RemoveLock(const QString& folder, std::shared_ptr<void> lock)
{
    // The file that is locked goes last: a folder without it is not looked at any more. Where a
    // lock is a file of its own, it is there still when the folder was moved.
    lock.reset();
    const QStringList paths = JournalFiles(folder);
    for (const QString& path : paths) {
        if (IsLock(folder, path) && path != LockPath(folder)) {
            QFile::remove(path);
        }
    }
    QFile::remove(LockPath(folder));
}

std::error_code CopyFile(const QString& from, const QString& folder)
{
    QFile source(from);
    QFile copy(folder + QLatin1Char('/') + QFileInfo(from).fileName());
    if (!OpenPlain(source) || !OpenNew(copy) || !CopyAll(source, copy) || !FlushAll(copy)) {
        return std::make_error_code(std::errc::io_error);
    }
    copy.setFileTime(source.fileTime(QFileDevice::FileModificationTime),
                     QFileDevice::FileModificationTime);
    return platform::Sync(copy);
}

std::error_code CopyFiles(const QString& folder, const QString& target)
{
    const QString log = LogPath(folder);
    QStringList paths = JournalFiles(folder);
    // Without the log, the copy is no journal; so that comes last.
    paths.removeAll(log);
    paths.append(log);
    for (const QString& path : qAsConst(paths)) {
        if (IsLock(folder, path) || path == NewLogPath(folder)) {
            continue;
        }
        if (const std::error_code error = CopyFile(path, target)) {
            return error;
        }
    }
    return {};
}

} // namespace

QString DataFolder(const QString& name)
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return data.isEmpty() ? QString() : data + QLatin1Char('/') + name;
}

QString SamePath(const QString& path)
{
    const QString followed = FollowedPath(path);
    return followed.isEmpty() ? QDir::cleanPath(QFileInfo(path).absoluteFilePath()) : followed;
}

std::error_code MakePrivate(const QString& folder)
{
    if (QFileInfo(folder).isDir()) {
        return {};
    }
    const QString above = QFileInfo(folder).path();
    if (above != folder) {
        if (const std::error_code error = MakePrivate(above)) {
            return error;
        }
    }
    const std::error_code error = MakeNewPrivate(folder);
    // Another session may have made it meanwhile.
    return error == std::errc::file_exists && QFileInfo(folder).isDir() ? std::error_code() : error;
}

std::error_code MakeNewPrivate(const QString& folder)
{
    std::error_code error;
    const std::filesystem::path path = platform::ToPath(folder);
    if (!std::filesystem::create_directory(path, error)) {
        return error ? error : std::make_error_code(std::errc::file_exists);
    }
    // Some disks know no permissions; a journal there is better than none.
    std::filesystem::permissions(path, std::filesystem::perms::owner_all, error);
    return {};
}

bool OpenNew(QFile& file)
{
    if (!file.open(QIODevice::ReadWrite | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        return false;
    }
    // Until then its folder keeps others away.
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return true;
}

bool OpenPlain(QFile& file)
{
    const QFileInfo info(file.fileName());
    return !info.isSymLink() && info.isFile() && file.open(QIODevice::ReadOnly);
}

std::optional<QByteArray> ReadPlain(const QString& path, qint64 maxLength)
{
    QFile file(path);
    if (!OpenPlain(file) || file.size() > maxLength) {
        return {};
    }
    // Qt takes the memory for as much as is asked for.
    return file.read(file.size());
}

QByteArray HashRest(QFile& file)
{
    constexpr qint64 blockLength = 1 << 20;
    QCryptographicHash hash(QCryptographicHash::Sha1);
    qint64 left = file.size() - file.pos();
    while (left > 0) {
        const QByteArray block = file.read(qMin(left, blockLength));
        if (block.isEmpty()) {
            return {};
        }
        hash.addData(block);
        left -= block.size();
    }
    return hash.result();
}

std::optional<JournalHeader> ReadHeader(const QString& folder)
{
    const std::optional<QByteArray> bytes = ReadPlain(SessionPath(folder), MaxSessionLength);
    return bytes ? ToHeader(*bytes) : std::nullopt;
}

bool RemoveFolder(const QString& folder, std::shared_ptr<void> lock)
{
    // Without its log, a journal is none, so that goes first.
    QFile::remove(LogPath(folder));
    const QStringList paths = JournalFiles(folder);
    for (const QString& path : paths) {
        if (!IsLock(folder, path)) {
            QFile::remove(path);
        }
    }
    RemoveLock(folder, std::move(lock));
    return QDir().rmdir(folder);
}

std::error_code MoveFolder(const QString& folder, const QString& target, std::shared_ptr<void> lock)
{
    if (const std::error_code error = MakePrivate(QFileInfo(target).path())) {
        return error;
    }
    if (QFileInfo::exists(target) || QFileInfo(target).isSymLink()) {
        return std::make_error_code(std::errc::file_exists);
    }
    std::error_code error;
    std::filesystem::rename(platform::ToPath(folder), platform::ToPath(target), error);
    if (!error) {
        RemoveLock(target, std::move(lock));
        return {};
    }
    error = MakeNewPrivate(target);
    if (error) {
        return error;
    }
    error = CopyFiles(folder, target);
    if (error) {
        RemoveFolder(target, {});
    } else {
        RemoveFolder(folder, std::move(lock));
    }
    return error;
}

} // namespace journal
