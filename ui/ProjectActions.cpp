#include "ui/ProjectActions.h"

#include "app/BackgroundPicture.h"
#include "app/Leftovers.h"
#include "app/Log.h"
#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "canvas/MainScene.h"
#include "document/Document.h"
#include "document/Formulas.h"
#include "document/StoredProject.h"
#include "document/edits/BackgroundEdits.h"
#include "document/edits/LayerEdits.h"
#include "document/journal/Journal.h"
#include "document/versions/VersionStore.h"
#include "layers/LayerList.h"
#include "ui/AcceptedFindings.h"
#include "ui/Bookmarks.h"
#include "ui/DialogNewProject.h"
#include "ui/DialogVersions.h"
#include "ui/DockLayerProps.h"
#include "ui/DockTerTypes.h"
#include "ui/FileDialogs.h"
#include "ui/InteractionModes.h"
#include "ui/ProjectDisplay.h"
#include "ui/QuillmapWindow.h"
#include "ui_QuillmapWindow.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopedValueRollback>

#include <utility>

namespace {

const ProjectSettings& Settings()
{
    return ProjectSettings::Instance();
}

QString Question(const QString& consequence, const QString& action)
{
    return QStringLiteral("%1\n\nAre you sure you want to %2?").arg(consequence, action);
}

/// The folder that the names in a stored document start from.
QDir FolderOf(const StoredProject& stored)
{
    if (!stored.path.isEmpty()) {
        return QFileInfo(stored.path).absoluteDir();
    }
    return stored.folder.isEmpty() ? Settings().Dir() : QDir(stored.folder);
}

/// Finishes what a killed save left first. Opening a pipe would wait for a writer, maybe for ever.
bool OpenRegular(QFile& file)
{
    TidyFolderOf(file.fileName());
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly | QIODevice::Text);
}

void LogNotRead(const QString& name)
{
    LogError(QStringLiteral("Failed to open file '%1' for reading.").arg(name));
}

} // namespace

ProjectActions::ProjectActions(const EditorParts& parts, ProjectDisplay& display,
                               InteractionModes& modes, Journal& journal)
    : m_parts(parts)
    , m_display(display)
    , m_modes(modes)
    , m_journal(journal)
    , m_work(parts)
    , m_notices(*parts.form.barNotice)
    , m_saving(parts, m_work, m_notices, [this] { ShowVersions(); })
{
}

void ProjectActions::FinishInput()
{
    m_parts.scene.LoseMouse();
    FinishEntries(m_parts.window);
}

/// Returns whether there are no unsaved changes or the user agrees to lose them.
bool ProjectActions::MayDiscard(const QString& title, const QString& action)
{
    FinishInput();
    return !Settings().IsModified() ||
           AskYesNo(&m_parts.window, title,
                    Question(QStringLiteral(
                                 "This action will remove all current data. All unsaved work will "
                                 "be lost."),
                             action));
}

bool ProjectActions::MayLoad()
{
    return MayDiscard(QStringLiteral("Load configuration"),
                      QStringLiteral("load a different configuration"));
}

void ProjectActions::New()
{
    if (m_work.IsBusy() || !MayDiscard(QStringLiteral("New project"), QStringLiteral("continue"))) {
        return;
    }
    DialogNewProject dialog(&m_parts.window);
    if (dialog.exec() == QDialog::Accepted) {
        Create(dialog);
    }
}

void ProjectActions::Create(const DialogNewProject& dialog)
{
    const ProjectWork::Scope loading(m_work, ProjectWork::Kind::Loading);
    KeepDiscarded();
    EmptyLists();
    m_parts.document.Begin({dialog.LayerSize(), dialog.LayerSize()},
                           {dialog.WorldSize(), dialog.WorldSize()},
                           QFileInfo(dialog.ProjectPath()).absoluteDir());
    m_parts.scene.ClearWorld();
    if (!dialog.BackgroundPath().isEmpty()) {
        LoadWorldImageFile(dialog.BackgroundPath());
    }
    if (!dialog.AreaFlagsPath().isEmpty()) {
        LoadAreaTypesFile(dialog.AreaFlagsPath());
    }
    const bool isSaved = m_saving.SaveTo(dialog.ProjectPath());
    if (isSaved) {
        Bookmarks::Discard(m_parts.document.Path());
        AcceptedFindings::Discard(m_parts.document.Path());
    }
    Finalize(true, -1);
    m_parts.document.BeginHistory(isSaved);
}

void ProjectActions::ShowViewing(const QString& path)
{
    m_notices.ShowViewing(Settings().Name(), [this, path] { LoadFrom(path); });
}

bool ProjectActions::StartWith(const QString& configPath)
{
    const QScopedValueRollback<bool> viewing(m_isForViewing, true);
    const bool isLoaded = LoadFrom(configPath);
    if (isLoaded) {
        m_display.EnableEditing(false);
    }
    return isLoaded;
}

bool ProjectActions::Load()
{
    if (m_work.IsBusy() || !MayLoad()) {
        return false;
    }
    const QString path = AskForFile(&m_parts.window, FilePurpose::LoadProject);
    return !path.isEmpty() && OpenFile(path);
}

bool ProjectActions::LoadFrom(const QString& path)
{
    return !m_work.IsBusy() && MayLoad() && OpenFile(path);
}

bool ProjectActions::OpenFile(const QString& path)
{
    const QString oldName = Settings().FileName();
    const QDir oldDir = Settings().Dir();
    const QFileInfo place(path);
    m_parts.document.SetPlace(place.absoluteDir(), place.fileName());
    const ProjectWork::Scope loading(m_work, ProjectWork::Kind::Loading);
    QFile file(Settings().ProjectFilePath());
    if (!OpenRegular(file)) {
        m_parts.document.SetPlace(oldDir, oldName);
        LogNotRead(place.fileName());
        return false;
    }
    m_parts.document.SetName(QFileInfo(file).baseName());
    m_parts.window.SetTitle(Settings().Name());
    return ReadFrom(file, LoadProjectMask, QFileInfo(file).absoluteFilePath());
}

bool ProjectActions::OpenStored(const StoredProject& stored, bool asCopy)
{
    if (m_work.IsBusy() || !MayLoad()) {
        return false;
    }
    const ProjectWork::Scope loading(m_work, ProjectWork::Kind::Loading);
    const bool hasFile = !asCopy && !stored.path.isEmpty();
    const QFileInfo file(stored.path);
    m_parts.document.SetPlace(FolderOf(stored), hasFile ? file.fileName() : QString());
    m_parts.document.SetName(hasFile ? file.baseName() : QString());
    m_parts.window.SetTitle(Settings().Name());
    QByteArray text = stored.text;
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    const bool isRead = ReadFrom(device, stored.masks, QString());
    if (isRead && !stored.formulas.isEmpty()) {
        m_parts.document.LayerFormulas().Read(
            ReadFormulas(stored.formulas), FormulaPath(stored.path).section(QLatin1Char('/'), -1));
    }
    if (isRead && hasFile) {
        m_parts.document.SetPath(stored.path, stored.files);
    }
    if (isRead) {
        m_parts.document.BeginHistory(false);
    }
    return isRead;
}

/// path: the file that is read; empty when it is not the project's own.
bool ProjectActions::ReadFrom(QIODevice& file, const MaskSource& masks, const QString& path)
{
    BeginReplacing();
    ProjectReader reader(file);
    m_reader = &reader;
    const bool isRead = !m_isStopped && m_parts.document.Read(reader, masks);
    m_reader = nullptr;
    if (isRead) {
        ReadFormulasOf(file);
    }
    m_parts.terTypes.ExpandAll();
    ReadReport report{Settings().FileName(), isRead, reader.HoldsProject(), reader.Fault(), {}, 0};
    // A state that was kept elsewhere has its bitmaps there.
    const bool hasBitmapFiles = qobject_cast<QFile*>(&file) != nullptr;
    const QStringList leftOut = m_parts.document.Layers().LeftOut();
    for (const QString& name : leftOut) {
        report.leftOut.append({name, hasBitmapFiles ? WhyNoProjectMask(name) : QString()});
    }
    report.layerCount = leftOut.size() + m_parts.document.Layers().Layers().size();
    Finalize(isRead, isRead ? reader.SelectedRow() : -1);
    if (!m_isStopped) {
        if (isRead && m_isForViewing) {
            ShowViewing(path);
        }
        m_notices.ShowRead(report);
    }
    if (report.IsWhole()) {
        m_parts.document.SetPath(path);
    } else if (isRead && !path.isEmpty()) {
        // "Save now" must not write over what was not read.
        m_parts.document.NoteFiles(path);
    }
    return isRead;
}

/// The formulas of a project lie beside its document; those of a state that was kept elsewhere are
/// in its text.
void ProjectActions::ReadFormulasOf(QIODevice& file)
{
    if (const auto* buffer = qobject_cast<QBuffer*>(&file)) {
        // The reader of the rest of the text reports its faults.
        m_parts.document.LayerFormulas().Read({ReadFormulas(buffer->data(), false).records, {}},
                                              QString());
    } else {
        const QString path = FormulaPath(Settings().ProjectFilePath());
        m_parts.document.LayerFormulas().Read(ReadFormulaFile(path), QFileInfo(path).fileName());
    }
}

/// Clears everything that the file replaces, and shows that work is under way.
void ProjectActions::BeginReplacing()
{
    m_isStopped = false;
    KeepDiscarded();
    EmptyLists();
    m_display.BeginLoading();
}

void ProjectActions::EmptyLists()
{
    m_modes.Reset();
    m_parts.terTypes.ShowMode(SceneMode::None);
    m_parts.terTypes.ClearSelection();
    m_parts.scene.ChangeLayer(nullptr);
    m_parts.document.Clear();
    m_notices.Withdraw();
    m_parts.layerProps.SetLayer(nullptr, false);
    m_parts.scene.ClearLayers();
}

void ProjectActions::Finalize(bool isSuccessful, int selected)
{
    m_display.EndLoading();
    // Prune only after reading, because the source may be one of the versions.
    PruneVersions();
    if (isSuccessful) {
        m_display.Show(selected);
        m_parts.document.BeginHistory(true);
        return;
    }
    EmptyLists();
    m_modes.EnablePaint(false);
    if (!m_isStopped) {
        LogError(QStringLiteral("Failed to parse input."));
    }
}

void ProjectActions::ShowVersions()
{
    if (m_work.IsBusy()) {
        return;
    }
    StoredProject stored;
    {
        // Its work on pictures ends with it.
        DialogVersions dialog(VersionStore(), m_parts.document.Path(), &m_parts.window);
        if (dialog.exec() != QDialog::Accepted || !dialog.Selected()) {
            return;
        }
        stored = dialog.Selected()->Stored();
    }
    if (stored.text.isEmpty()) {
        LogError(QStringLiteral("The earlier version cannot be read any more."));
    } else {
        OpenStored(stored, true);
    }
}

void ProjectActions::KeepDiscarded()
{
    if (!m_journal.OldestUnsaved().isValid()) {
        return;
    }
    const QString problem =
        VersionStore().KeepDiscarded(m_parts.document.Path(), [this](const QString& target) {
            return m_journal.MoveTo(target);
        });
    m_hasKeptDiscarded = true;
    m_notices.ShowUnkept(problem);
}

void ProjectActions::PruneVersions()
{
    if (std::exchange(m_hasKeptDiscarded, false)) {
        VersionStore().Prune();
    }
}

void ProjectActions::LoadWorldImage()
{
    if (m_work.IsBusy()) {
        return;
    }
    const QString path = AskForFile(&m_parts.window, FilePurpose::BackgroundPicture);
    if (!path.isEmpty()) {
        LoadWorldImageFile(path, true);
    }
}

void ProjectActions::LoadWorldImageFile(const QString& path, bool setsModified)
{
    m_parts.document.Do(Edits::SetBackgroundPicture(path, setsModified));
    m_parts.scene.ChangeWorld(Settings().BackgroundPath());
}

void ProjectActions::ImportAreaTypes()
{
    const AreaFlagTypes& types = Settings().FlagTypes();
    const bool hasTypes = !types.usages.isEmpty() || !types.values.isEmpty();
    const QString title = QStringLiteral("Import area flag types");
    if (m_work.IsBusy() ||
        (hasTypes &&
         !AskYesNo(&m_parts.window, title,
                   Question(QStringLiteral("This action will replace all area flag types and "
                                           "resets flags on all layers."),
                            QStringLiteral("continue"))))) {
        return;
    }
    const QString path = AskForFile(&m_parts.window, FilePurpose::AreaFlagTypes);
    if (!path.isEmpty()) {
        LoadAreaTypesFile(path);
    }
}

bool ProjectActions::LoadAreaTypesFile(const QString& path)
{
    const ProjectWork::Scope loading(m_work, ProjectWork::Kind::Loading);
    QFile file(path);
    if (!OpenRegular(file)) {
        LogNotRead(QFileInfo(path).absoluteFilePath());
        return false;
    }
    AreaFlagTypes types = Settings().FlagTypes();
    const bool isWhole = types.ReadFile(path);
    // A malformed file gives the types before the fault, and the flags of the layers stay.
    m_parts.document.Do(Edits::ImportFlagTypes(m_parts.document.Layers(), types, isWhole));
    m_parts.layerProps.Refresh();
    return true;
}

void ProjectActions::ImportAreaMap()
{
    if (m_work.IsBusy()) {
        return;
    }
    const QString title = QStringLiteral("Import area map");
    const bool isWanted = MayDiscard(title, QStringLiteral("continue"));
    const QString path = isWanted ? AskForFile(&m_parts.window, FilePurpose::AreaMap) : QString();
    if (path.isEmpty()) {
        return;
    }
    const ProjectWork::Scope loading(m_work, ProjectWork::Kind::Loading);
    QFile file(path);
    if (!OpenRegular(file)) {
        LogNotRead(path);
        return;
    }
    // A map is binary: bytes that look like line ends must not be converted.
    file.setTextModeEnabled(false);
    ReadMap(file);
}

void ProjectActions::ReadMap(QFile& file)
{
    // A map has no project document. The next save must not write to the former project's.
    m_parts.document.SetPlace(Settings().Dir(), QString());
    m_parts.document.SetName(QFileInfo(file).baseName());
    m_parts.window.SetTitle(Settings().Name());
    BeginReplacing();
    const bool isRead = !m_isStopped && m_parts.document.ReadMap(file);
    if (!isRead && !m_isStopped) {
        LogError(QStringLiteral("Reading map file failed."));
    }
    Finalize(isRead, -1);
    if (isRead) {
        // The layers exist nowhere else yet.
        m_parts.document.BeginHistory(false);
    }
}

void ProjectActions::StopLoading()
{
    m_isStopped = true;
    if (m_reader) {
        m_reader->Stop();
    }
}
