#include "document/journal/Recovery.h"

#include "document/journal/JournalFolder.h"
#include "platform/Files.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace Recovery {

namespace {

QStringList Folders()
{
    QStringList folders;
    const QString root = Folder();
    if (root.isEmpty()) {
        return folders;
    }
    const QStringList names =
        QDir(root).entryList(QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        folders.append(root + QLatin1Char('/') + name);
    }
    return folders;
}

/// Null when its session lives, or when it is no journal of ours.
std::shared_ptr<void> LockOf(const QString& folder)
{
    const QString path = journal::LockPath(folder);
    return QFileInfo(path).isFile() ? platform::TryLock(path) : nullptr;
}

/// Whether the path is that of a folder directly in the folder of journals.
bool IsJournalFolder(const QString& folder)
{
    return Folders().contains(QDir::cleanPath(folder));
}

bool HasCommit(const QString& folder)
{
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    return QFileInfo(journal::LogPath(folder)).size() > 0 &&
           std::any_of(names.begin(), names.end(), journal::IsTextFile);
}

} // namespace

QString Folder()
{
    return journal::DataFolder(QStringLiteral("recovery"));
}

QStringList DeadJournals()
{
    QVector<std::pair<QDateTime, QString>> journals;
    const QStringList folders = Folders();
    for (const QString& folder : folders) {
        // A folder without a lock is being made, or what is left of one.
        QDir().rmdir(folder);
        std::shared_ptr<void> lock = LockOf(folder);
        if (lock && !HasCommit(folder)) {
            journal::RemoveFolder(folder, std::move(lock));
        } else if (lock) {
            journals.append({QFileInfo(journal::LogPath(folder)).lastModified(), folder});
        }
    }
    std::sort(journals.begin(), journals.end(),
              [](const auto& a, const auto& b) { return a.first > b.first; });
    QStringList sorted;
    for (const auto& found : qAsConst(journals)) {
        sorted.append(found.second);
    }
    return sorted;
}

std::shared_ptr<void> Lock(const QString& folder)
{
    return IsJournalFolder(folder) ? LockOf(folder) : nullptr;
}

bool Discard(const QString& folder, std::shared_ptr<void> lock)
{
    return lock && journal::RemoveFolder(QDir::cleanPath(folder), std::move(lock));
}

} // namespace Recovery
