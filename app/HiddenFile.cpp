#include "app/HiddenFile.h"

#include "app/HiddenNames.h"
#include "app/Leftovers.h"
#include "app/WriteAll.h"
#include "platform/Files.h"

#include <QFileInfo>

#include <filesystem>

bool IsRefusal(const std::error_code& error)
{
    return error == std::errc::permission_denied || error == std::errc::operation_not_permitted ||
           // A file that is mounted on its own.
           error == std::errc::device_or_resource_busy;
}

bool CanBeOverwritten(const QString& place)
{
    return QFileInfo(place).isFile() &&
           QFile(place).open(QIODevice::ReadWrite | QIODevice::ExistingOnly);
}

std::error_code OverwriteFile(QFile& made, const QString& place)
{
    QFile target(place);
    if (!FlushAll(made) || (!made.isOpen() && !made.open(QIODevice::ReadOnly)) || !made.seek(0)) {
        return platform::ErrorOf(made);
    }
    if (!target.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered)) {
        return platform::ErrorOf(target);
    }
    // The bytes are copied as they are.
    made.setTextModeEnabled(false);
    const qint64 oldLength = target.size();
    if (const std::error_code error = platform::Reserve(target, made.size())) {
        target.resize(oldLength);
        return error;
    }
    if (!target.seek(0) || !CopyAll(made, target) || !target.resize(made.size())) {
        return platform::ErrorOf(target);
    }
    return platform::Sync(target);
}

HiddenFile::~HiddenFile()
{
    if (!m_name.isEmpty()) {
        m_file.close();
        QFile::remove(m_name);
    }
}

std::error_code HiddenFile::Open(const QString& folder)
{
    TidyFolder(folder);
    return platform::OpenUnnamed(m_file, folder) ? OpenNamed(folder) : std::error_code();
}

std::error_code HiddenFile::OpenNamed(const QString& folder)
{
    HiddenThing made = MakeHidden(
        folder, HiddenKind::File,
        [this](const QString& path) {
            m_file.setFileName(path);
            return platform::OpenNew(m_file);
        },
        [this](const QString& path) {
            m_file.close();
            QFile::remove(path);
        });
    m_name = made.path;
    m_lock = std::move(made.lock);
    return made.error;
}

void HiddenFile::SetPermissionsOf(const QString& path)
{
    m_file.setPermissions(QFile::permissions(path));
}

std::error_code HiddenFile::Finish()
{
    return FlushAll(m_file) ? platform::Sync(m_file) : platform::ErrorOf(m_file);
}

std::error_code HiddenFile::Rename(const QString& path)
{
    std::error_code error;
    std::filesystem::rename(platform::ToPath(m_name), platform::ToPath(path), error);
    if (!error) {
        m_name.clear();
    }
    return error;
}

std::error_code HiddenFile::HandOver(const QString& path)
{
    std::error_code error = Finish();
    if (!error && m_name.isEmpty()) {
        return platform::NameUnnamed(m_file, path);
    }
    // Some systems rename no open file.
    m_file.close();
    return error ? error : Rename(path);
}

std::error_code HiddenFile::Replace(const QString& place)
{
    std::error_code error = HandOver(place);
    if (error != std::errc::file_exists || !m_name.isEmpty()) {
        return error;
    }
    // Only a file with a name can replace another one. It stays open, and so locked.
    const QString name = HiddenPath(QFileInfo(place).path(), HiddenKind::File);
    error = platform::NameUnnamed(m_file, name);
    if (!error) {
        m_name = name;
        error = Rename(place);
    }
    return error;
}
