#include "document/versions/VersionFolders.h"

#include <QDir>
#include <QUuid>

#include <algorithm>

namespace {

constexpr QDir::Filters Folders = QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks;
const QString TimeFormat = QStringLiteral("yyyyMMdd-HHmmss-zzz");
const QString UnfinishedPrefix = QStringLiteral(".new-");

QString Unique()
{
    return QUuid::createUuid().toString(QUuid::Id128);
}

QStringList WithFolder(const QString& folder, QStringList names)
{
    for (QString& name : names) {
        name.prepend(folder + QLatin1Char('/'));
    }
    return names;
}

} // namespace

namespace VersionFolders {

QStringList OfProjects(const QString& store)
{
    return WithFolder(store, QDir(store).entryList(Folders));
}

QStringList IdsIn(const QString& projectFolder)
{
    QStringList ids = QDir(projectFolder).entryList(Folders, QDir::Name | QDir::Reversed);
    ids.erase(std::remove_if(ids.begin(), ids.end(),
                             [](const QString& id) { return !TimeOfId(id).isValid(); }),
              ids.end());
    return ids;
}

QString NewId(const QDateTime& time)
{
    constexpr int randomLength = 8;
    return time.toUTC().toString(TimeFormat) + QLatin1Char('-') + Unique().left(randomLength);
}

QDateTime TimeOfId(const QString& id)
{
    QDateTime time = QDateTime::fromString(id.left(TimeFormat.size()), TimeFormat);
    time.setTimeSpec(Qt::UTC);
    return time;
}

QString NewUnfinished()
{
    return UnfinishedPrefix + Unique();
}

QStringList UnfinishedIn(const QString& projectFolder)
{
    return WithFolder(projectFolder, QDir(projectFolder)
                                         .entryList({UnfinishedPrefix + QLatin1Char('*')},
                                                    Folders | QDir::Hidden));
}

} // namespace VersionFolders
