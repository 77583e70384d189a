#include "document/versions/VersionPruning.h"

#include "document/versions/VersionFolders.h"
#include "document/versions/VersionLimits.h"
#include "platform/Files.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <functional>
#include <iterator>
#include <map>
#include <utility>
#include <vector>

namespace {

void PruneByAge(const QString& projectFolder, const VersionLimits& limits)
{
    const QStringList ids = VersionFolders::IdsIn(projectFolder);
    QVector<QDateTime> times;
    for (const QString& id : ids) {
        times.append(VersionFolders::TimeOfId(id));
    }
    const QVector<bool> stays = limits.Stays(times, QDateTime::currentDateTimeUtc());
    for (int i = 0; i < ids.size(); ++i) {
        if (!stays[i]) {
            QDir(projectFolder + QLatin1Char('/') + ids[i]).removeRecursively();
        }
    }
    // What a killed program left; a living one is done after seconds.
    constexpr qint64 secondsUntilDead = 3600;
    const QStringList unfinished = VersionFolders::UnfinishedIn(projectFolder);
    for (const QString& left : unfinished) {
        if (QFileInfo(left).lastModified().secsTo(QDateTime::currentDateTime()) >
            secondsUntilDead) {
            QDir(left).removeRecursively();
        }
    }
}

/// Which files the versions hold, and how much of it is held by nobody else.
struct Holdings
{
    using Key = std::pair<quint64, quint64>;
    struct File
    {
        qint64 bytes = 0;
        /// All names that it has, and those among them that are in the store.
        quint64 names = 0;
        quint64 ours = 0;
    };

    std::map<Key, File> files;
    std::map<QString, std::vector<Key>> versions;
    qint64 bytes = 0;

    void Add(const QString& version)
    {
        QDirIterator each(version, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                          QDirIterator::Subdirectories);
        while (each.hasNext()) {
            const QString path = each.next();
            // Where the system tells nothing of names, each file has one.
            const auto identity =
                platform::IdentityOf(path).value_or(platform::FileIdentity{0, files.size(), 1});
            const Key key{identity.device, identity.number};
            File& file = files[key];
            bytes -= BytesOf(file);
            file.bytes = each.fileInfo().size();
            file.names = identity.names;
            ++file.ours;
            bytes += BytesOf(file);
            versions[version].push_back(key);
        }
    }

    void Remove(const QString& version)
    {
        for (const Key& key : versions[version]) {
            File& file = files[key];
            bytes -= BytesOf(file);
            --file.names;
            --file.ours;
            bytes += BytesOf(file);
        }
    }

    /// The bytes that removing the version would free.
    qint64 BytesAlone(const QString& version)
    {
        const qint64 all = bytes;
        Holdings without = *this;
        without.Remove(version);
        return all - without.bytes;
    }

    static qint64 BytesOf(const File& file)
    {
        return file.ours > 0 && file.ours >= file.names ? file.bytes : 0;
    }
};

void PruneBySize(const QStringList& projectFolders, qint64 maxBytes)
{
    Holdings holdings;
    // By their IDs, which begin with the time.
    std::multimap<QString, QString> oldestFirst;
    for (const QString& folder : projectFolders) {
        const QStringList ids = VersionFolders::IdsIn(folder);
        for (const QString& id : ids) {
            const QString version = folder + QLatin1Char('/') + id;
            holdings.Add(version);
            oldestFirst.emplace(id, version);
        }
    }
    // What was replaced or discarded just now stays, whatever its size, unless nothing is kept.
    QString newest;
    if (maxBytes > 0 && !oldestFirst.empty()) {
        newest = std::prev(oldestFirst.end())->second;
        oldestFirst.erase(std::prev(oldestFirst.end()));
    }
    const auto removeWhile = [&](const std::function<bool(const QString&)>& isTooMuch) {
        for (const auto& each : oldestFirst) {
            const QString& version = each.second;
            if (isTooMuch(version) && QDir(version).removeRecursively()) {
                holdings.Remove(version);
            }
        }
    };
    // One that is too large by itself must not take all others along.
    removeWhile([&](const QString& version) { return holdings.BytesAlone(version) > maxBytes; });
    const qint64 newestBytes = newest.isEmpty() ? 0 : holdings.BytesAlone(newest);
    const qint64 most = newestBytes > maxBytes ? newestBytes + maxBytes : maxBytes;
    removeWhile([&](const QString& version) {
        return holdings.bytes > most && QFileInfo::exists(version);
    });
}

} // namespace

void PruneVersions(const QString& store, const VersionLimits& limits)
{
    const QStringList folders = VersionFolders::OfProjects(store);
    for (const QString& folder : folders) {
        PruneByAge(folder, limits);
    }
    PruneBySize(folders, limits.maxBytes);
    for (const QString& folder : folders) {
        // rmdir removes empty folders only.
        QDir().rmdir(folder);
    }
}
