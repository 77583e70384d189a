#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

/// How the folders of versions are named: "KEY/ID" below the store's folder.
namespace VersionFolders {

/// The paths of the projects' folders.
QStringList OfProjects(const QString& store);
/// The IDs in a project's folder, the newest first.
QStringList IdsIn(const QString& projectFolder);

/// IDs sort by the time.
QString NewId(const QDateTime& time);
/// Invalid when the text is no ID.
QDateTime TimeOfId(const QString& id);

/// The name of a version that is being made. It is no ID.
QString NewUnfinished();
/// The paths of all unfinished versions in a project's folder.
QStringList UnfinishedIn(const QString& projectFolder);

} // namespace VersionFolders
