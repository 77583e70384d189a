#include "app/BackgroundPicture.h"

#include "app/HiddenFile.h"
#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectSettings.h"
#include "app/WriteAll.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

/// Whether a picture can be put at the place as a part of the save. A link there is replaced at
/// once, because the files of a save go where links lead; so is a file that must not be
/// overwritten.
bool CanWait(const QString& place)
{
    const QFileInfo file(place);
    return !file.isSymLink() && (!file.exists() || (file.isFile() && file.isWritable()));
}

/// At no time half a picture stands at the place.
bool CopyIntoPlace(const QString& source, const QString& place)
{
    QFile from(source);
    HiddenFile to;
    if (!from.open(QIODevice::ReadOnly) || to.Open(QFileInfo(place).path()) ||
        !CopyAll(from, to.Device())) {
        return false;
    }
    to.SetPermissionsOf(source);
    return !(CanWait(place) ? PutInPlace(to, place) : to.Replace(place));
}

/// Resolves the links in the part of the path that exists.
bool IsBelow(const QDir& folder, const QString& path)
{
    const QString parent = QFileInfo(path).dir().canonicalPath();
    const QString root = folder.canonicalPath();
    return !root.isEmpty() && (parent == root || parent.startsWith(root + QLatin1Char('/')) ||
                               root == QLatin1String("/"));
}

bool Exists(const QString& path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

/// Returns whether the picture is at the place afterwards.
bool Carry(const QString& source, const QDir& folder, const QString& backgroundFile)
{
    const QString place = QStringLiteral("%1/%2").arg(folder.absolutePath(), backgroundFile);
    const QString canonicalSource = QFileInfo(source).canonicalFilePath();
    // Opening a pipe of this name would wait for a writer.
    if (!QFileInfo(canonicalSource).isFile()) {
        return false;
    }
    if (canonicalSource == QFileInfo(place).canonicalFilePath()) {
        return true;
    }
    if (backgroundFile.contains(QLatin1Char('/'))) {
        folder.mkpath(backgroundFile.section(QLatin1Char('/'), 0, -2));
    }
    if (Exists(place) && !IsBelow(folder, place)) {
        LogError(QStringLiteral("The background image was not copied to '%1': there is another "
                                "file, outside the project's folder.")
                     .arg(place));
        return false;
    }
    return CopyIntoPlace(source, place);
}

} // namespace

QString BackgroundFileFrom(const QDir& folder, const QString& picture)
{
    const QFileInfo file(picture);
    QString relative = folder.relativeFilePath(file.absoluteFilePath());
    const QFileInfo found(QStringLiteral("%1/%2").arg(folder.path(), relative));
    const QString realFolder = folder.canonicalPath();
    const QString realParent = file.dir().canonicalPath();
    const bool isBeside = realParent == realFolder;
    if (realFolder.isEmpty() || realParent.isEmpty() ||
        (!isBeside && found.canonicalFilePath() == file.canonicalFilePath())) {
        return relative;
    }
    return isBeside ? file.fileName()
                    : QDir(realFolder).relativeFilePath(QDir(realParent).filePath(file.fileName()));
}

void CarryBackgroundTo(const QDir& folder)
{
    ProjectSettings& settings = ProjectSettings::Instance();
    if (settings.BackgroundFile().isEmpty()) {
        return;
    }
    const QString source = settings.BackgroundPath();
    if (!Carry(source, folder, settings.BackgroundFile())) {
        settings.SetBackgroundFile(BackgroundFileFrom(folder, source));
    }
}
