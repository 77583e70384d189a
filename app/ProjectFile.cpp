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

/// Whether there is a file of formulas that cannot be used. Another version of the program may have
/// written it, or somebody by hand.
bool IsStrange(const QString& formulaPath)
{
    return QFileInfo(formulaPath).isFile() && !ReadFormulaFile(formulaPath).fault.isEmpty();
}

/// Copies the file to "NAME.derived.xml~". False after a logged error.
bool KeepCopy(const QString& formulaPath)
{
    const QString kept = formulaPath + QLatin1Char('~');
    const bool isFree = !QFileInfo::exists(kept) || QFile::remove(kept);
    if (!isFree || !QFile::copy(formulaPath, kept)) {
        LogError(QStringLiteral("Failed to copy file '%1' to '%2'.")
                     .arg(QFileInfo(formulaPath).fileName(), QFileInfo(kept).fileName()));
        return false;
    }
    return true;
}

/// False when there are formulas that cannot be written; without any the file goes after the save.
bool WriteFormulaFile(OutputFile& file, const QString& path, const FormulaRecords& records,
                      bool isOrphan)
{
    return records.empty() ||
           ((!(isOrphan || IsStrange(path)) || KeepCopy(path)) && file.Open(QIODevice::Text) &&
            file.Write(FormulaDocument(records)) && file.Commit());
}

void RemoveFormulaFile(const QString& path, bool isOrphan)
{
    if (!QFileInfo(path).isFile() || IsStrange(path) || (isOrphan && !KeepCopy(path))) {
        return;
    }
    if (!QFile::remove(path)) {
        LogError(QStringLiteral("Failed to remove file '%1'.").arg(QFileInfo(path).fileName()));
    }
}

} // namespace

bool SaveProjectTo(const QString& path, const ProjectParts& parts)
{
    const QString fileName = path.section(QLatin1Char('/'), -1);
    // Its document was lost, or is not here: no version of it is kept before this save.
    const bool isOrphan = !QFileInfo::exists(path) && QFileInfo(FormulaPath(path)).isFile();
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
    const FormulaRecords formulas = parts.formulas ? parts.formulas() : FormulaRecords();
    OutputFile formulaFile(FormulaPath(path));
    if (!WriteFormulaFile(formulaFile, FormulaPath(path), formulas, isOrphan) ||
        !file.Write(document) || !file.Commit() || !group.Commit()) {
        const QString reason = formulaFile.ErrorString() + file.ErrorString() + group.ErrorString();
        oldPlace.Restore();
        LogNotWritten(fileName);
        if (!reason.isEmpty()) {
            LogError(reason);
        }
        return false;
    }
    if (parts.formulas && formulas.empty()) {
        RemoveFormulaFile(FormulaPath(path), isOrphan);
    }
    LogSuccess(QStringLiteral("Project saved to file '%1'.").arg(fileName));
    ProjectSettings::Instance().SetModified(failures > 0);
    if (failures > 0) {
        LogError(QStringLiteral("%1 layer bitmaps could not be saved.").arg(failures));
    }
    return true;
}
