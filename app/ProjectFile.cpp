#include "app/ProjectFile.h"

#include "app/BackgroundPicture.h"
#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectDocument.h"
#include "app/ProjectSettings.h"

#include <QFileInfo>
#include <QXmlStreamWriter>

namespace {

/// The place of a project, to be restored if the save fails.
struct Place
{
    QString fileName;
    QString name;
    QDir dir;
    QString backgroundFile;

    static Place Current()
    {
        const ProjectSettings& settings = ProjectSettings::Instance();
        return {settings.FileName(), settings.Name(), settings.Dir(), settings.BackgroundFile()};
    }

    void Restore() const
    {
        ProjectSettings& settings = ProjectSettings::Instance();
        settings.SetFileName(fileName);
        settings.SetName(name);
        settings.SetDir(dir);
        settings.SetBackgroundFile(backgroundFile);
    }
};

void MoveProjectTo(const QFileInfo& target)
{
    ProjectSettings& settings = ProjectSettings::Instance();
    const QDir folder = target.absoluteDir();
    if (folder.absolutePath() != settings.Dir().absolutePath()) {
        CarryBackgroundTo(folder);
    }
    settings.SetName(target.baseName());
    settings.SetFileName(target.fileName());
    settings.SetDir(folder);
}

void LogNotWritten(const QString& fileName)
{
    LogError(QStringLiteral("Failed to open file '%1' for writing.").arg(fileName));
}

} // namespace

bool SaveProjectTo(const QString& path, const ProjectParts& parts)
{
    const QString fileName = path.section(QLatin1Char('/'), -1);
    OutputFile file(path);
    if (!file.Open(QIODevice::Text)) {
        LogNotWritten(fileName);
        return false;
    }
    const Place oldPlace = Place::Current();
    OutputGroup group;
    MoveProjectTo(QFileInfo(path));

    QByteArray document;
    QXmlStreamWriter xml(&document);
    const int failures = WriteProjectDocument(xml, parts);
    if (!file.Write(document) || !file.Commit() || !group.Commit()) {
        const QString reason = file.ErrorString() + group.ErrorString();
        oldPlace.Restore();
        LogNotWritten(fileName);
        LogError(reason);
        return false;
    }
    LogSuccess(QStringLiteral("Project saved to file '%1'.").arg(fileName));
    ProjectSettings::Instance().SetModified(failures > 0);
    if (failures > 0) {
        LogError(QStringLiteral("%1 layer bitmaps could not be saved.").arg(failures));
    }
    return true;
}
