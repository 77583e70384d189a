#include "app/Leftovers.h"

#include "app/GroupRecord.h"
#include "app/HiddenNames.h"
#include "app/OutputFile.h"
#include "platform/Files.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <array>
#include <vector>

namespace {

/// Suffixes of lock files. QLockFile puts them beside the file that is locked.
const std::array<QLatin1String, 2> LockSuffixes = {QLatin1String(".rmlock"),
                                                   QLatin1String(".lock")};

/// The names of hidden things, also of those of which only the lock is left.
QStringList HiddenPaths(const QString& folder)
{
    QStringList paths;
    std::error_code error;
    for (std::filesystem::directory_iterator it(platform::ToPath(folder), error), end;
         !error && it != end; it.increment(error)) {
        // Most names are passed over here.
        const std::string name = it->path().filename().u8string();
        if (name.rfind(".quillmap-", 0) != 0) {
            continue;
        }
        QString path = folder + QLatin1Char('/') + QString::fromStdString(name);
        for (const QLatin1String& suffix : LockSuffixes) {
            if (path.endsWith(suffix)) {
                path.chop(suffix.size());
            }
        }
        paths.append(path);
    }
    paths.removeDuplicates();
    return paths;
}

/// Locks all folders of a group but the one that is locked already; false when one is in use.
bool LockOthers(const QStringList& workplaces, const QString& locked,
                std::vector<std::shared_ptr<void>>& locks)
{
    return std::all_of(workplaces.begin(), workplaces.end(), [&](const QString& workplace) {
        if (workplace == locked || !QFileInfo::exists(workplace)) {
            return true;
        }
        locks.push_back(platform::TryLock(workplace));
        return locks.back() != nullptr;
    });
}

void RemoveGroup(const QString& workplace)
{
    const QString main = MainWorkplace(workplace);
    std::vector<std::shared_ptr<void>> locks;
    if (!LockOthers({main}, workplace, locks)) {
        return;
    }
    GroupRecord record(main);
    if (record.Read()) {
        QStringList others = record.Workplaces();
        others.removeAll(main);
        if (!LockOthers(others, workplace, locks) || !record.Carry()) {
            return;
        }
        for (const QString& other : qAsConst(others)) {
            RemoveWorkplace(other);
        }
        RemoveWorkplace(main);
    }
    RemoveWorkplace(workplace);
}

} // namespace

void TidyFolder(const QString& folder)
{
    // Records lead to real paths.
    const QStringList paths = HiddenPaths(QFileInfo(folder).canonicalFilePath());
    for (const QString& path : paths) {
        const QString name = QFileInfo(path).fileName();
        const bool isGroup = IsHiddenName(name, HiddenKind::Group);
        if (!isGroup && !IsHiddenName(name, HiddenKind::File)) {
            continue;
        }
        if (const std::shared_ptr<void> lock = platform::TryLock(path)) {
            if (isGroup && !QFileInfo(path).isSymLink()) {
                RemoveGroup(path);
            } else if (!isGroup) {
                QFile::remove(path);
            }
        }
    }
}

void TidyFolderOf(const QString& file)
{
    TidyFolder(QFileInfo(FollowedPath(file)).path());
}
