#include "ui/ProjectActions.h"

#include "app/BackgroundPicture.h"
#include "app/Leftovers.h"
#include "app/Log.h"
#include "app/OutputFile.h"
#include "app/ProjectDocument.h"
#include "app/ProjectFile.h"
#include "app/ProjectReader.h"
#include "app/ProjectSettings.h"
#include "canvas/BrushDock.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "document/StoredProject.h"
#include "document/edits/BackgroundEdits.h"
#include "document/edits/LayerEdits.h"
#include "document/journal/Journal.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "ui/DialogNewProject.h"
#include "ui/DialogVersions.h"
#include "ui/DockLayerProps.h"
#include "ui/DockLayers.h"
#include "ui/DockStatus.h"
#include "ui/DockTerTypeProps.h"
#include "ui/DockTerTypes.h"
#include "ui/FileDialogs.h"
#include "ui/InputBlock.h"
#include "ui/InteractionModes.h"
#include "ui/LayerComposition.h"
#include "ui/NameList.h"
#include "ui/QuillmapWindow.h"
#include "ui/widgets/NoticeBar.h"
#include "ui_QuillmapWindow.h"

#include <QAbstractItemDelegate>
#include <QAbstractItemView>
#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

namespace {

const QString UnkeptNotice = QStringLiteral("unkept-version");

const ProjectSettings& Settings()
{
    return ProjectSettings::Instance();
}

QString Question(const QString& consequence, const QString& action)
{
    return QStringLiteral("%1\n\nAre you sure you want to %2?").arg(consequence, action);
}

/// Takes over a name that is being typed into a tree. Later it would be changed unseen, as when the
/// window loses the focus in the middle of a save.
void FinishRenaming(const EditorParts& parts)
{
    const auto views = parts.window.findChildren<QAbstractItemView*>();
    for (QAbstractItemView* view : views) {
        if (QWidget* editor = view->indexWidget(view->currentIndex())) {
            emit view->itemDelegate()->commitData(editor);
            emit view->itemDelegate()->closeEditor(editor);
        }
    }
}

/// The folder that the names in a stored document start from.
QDir FolderOf(const StoredProject& stored)
{
    if (!stored.path.isEmpty()) {
        return QFileInfo(stored.path).absoluteDir();
    }
    return stored.folder.isEmpty() ? Settings().Dir() : QDir(stored.folder);
}

/// Returns whether there are no unsaved changes or the user agrees to lose them. Ends a stroke, a
/// drag or a rename that is under way, which counts as a change.
bool MayDiscard(const EditorParts& parts, const QString& title, const QString& action)
{
    parts.scene.LoseMouse();
    FinishRenaming(parts);
    return !Settings().IsModified() ||
           AskYesNo(&parts.window, title,
                    Question(QStringLiteral(
                                 "This action will remove all current data. All unsaved work will "
                                 "be lost."),
                             action));
}

bool MayLoad(const EditorParts& parts)
{
    return MayDiscard(parts, QStringLiteral("Load configuration"),
                      QStringLiteral("load a different configuration"));
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

/// While this object exists, no other action begins and no input changes the project.
class ProjectActions::Busy
{
public:
    Busy(ProjectActions& actions, Work work)
        : m_actions(actions)
        , m_workBefore(actions.m_work)
    {
        FinishRenaming(actions.m_parts);
        Begin(work);
    }
    ~Busy() { Begin(m_workBefore); }
    Q_DISABLE_COPY(Busy)

private:
    void Begin(Work work)
    {
        m_actions.m_work = work;
        m_actions.m_parts.document.SetFilesBusy(work != Work::None);
    }

    ProjectActions& m_actions;
    Work m_workBefore;
    InputBlock m_inputBlock;
};

ProjectActions::ProjectActions(const EditorParts& parts, LayerComposition& composition,
                               InteractionModes& modes, Journal& journal)
    : m_parts(parts)
    , m_composition(composition)
    , m_modes(modes)
    , m_journal(journal)
    , m_notices(*parts.form.barNotice)
{
}

void ProjectActions::New()
{
    if (IsBusy() ||
        !MayDiscard(m_parts, QStringLiteral("New project"), QStringLiteral("continue"))) {
        return;
    }
    DialogNewProject dialog(&m_parts.window);
    if (dialog.exec() == QDialog::Accepted) {
        Create(dialog);
    }
}

void ProjectActions::Create(const DialogNewProject& dialog)
{
    const Busy loading(*this, Work::Loading);
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
    const bool isSaved = SaveTo(dialog.ProjectPath());
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
    return LoadFrom(configPath);
}

bool ProjectActions::Load()
{
    if (IsBusy() || !MayLoad(m_parts)) {
        return false;
    }
    const QString path = AskForFile(&m_parts.window, FilePurpose::LoadProject);
    return !path.isEmpty() && OpenFile(path);
}

bool ProjectActions::LoadFrom(const QString& path)
{
    return !IsBusy() && MayLoad(m_parts) && OpenFile(path);
}

bool ProjectActions::OpenFile(const QString& path)
{
    const QString oldName = Settings().FileName();
    const QDir oldDir = Settings().Dir();
    const QFileInfo place(path);
    m_parts.document.SetPlace(place.absoluteDir(), place.fileName());
    const Busy loading(*this, Work::Loading);
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
    if (IsBusy() || !MayLoad(m_parts)) {
        return false;
    }
    const Busy loading(*this, Work::Loading);
    const bool hasFile = !asCopy && !stored.path.isEmpty();
    const QFileInfo file(stored.path);
    m_parts.document.SetPlace(FolderOf(stored), hasFile ? file.fileName() : QString());
    m_parts.document.SetName(hasFile ? file.baseName() : QString());
    m_parts.window.SetTitle(Settings().Name());
    QByteArray text = stored.text;
    QBuffer device(&text);
    device.open(QIODevice::ReadOnly);
    const bool isRead = ReadFrom(device, stored.masks, QString());
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

/// Clears everything that the file replaces, and shows that work is under way.
void ProjectActions::BeginReplacing()
{
    m_isStopped = false;
    KeepDiscarded();
    EmptyLists();
    EnableEditing(false);
    m_parts.view.setEnabled(false);
    m_parts.status.SetProgressVisible(true);
    m_parts.status.SetBusy();
    // Do not repaint the lists for each row that is added.
    m_parts.layers.setUpdatesEnabled(false);
    m_parts.terTypes.setUpdatesEnabled(false);
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
    m_parts.layers.setUpdatesEnabled(true);
    m_parts.terTypes.setUpdatesEnabled(true);
    m_parts.layerProps.Refresh();
    m_parts.status.SetProgressVisible(false);
    EnableEditing(true);
    // Not before: what was read may be one of the versions.
    PruneVersions();
    if (isSuccessful) {
        ShowWorld();
        ShowProject(selected);
        return;
    }
    EmptyLists();
    m_modes.EnablePaint(false);
    if (!m_isStopped) {
        LogError(QStringLiteral("Failed to parse input."));
    }
}

void ProjectActions::ShowWorld()
{
    MainScene& scene = m_parts.scene;
    m_parts.view.SetSceneSize(Settings().LayerWidth(), Settings().LayerHeight());
    scene.ClearLayers();
    ShowBackground();
    ShowBackgroundColor();
    m_parts.window.UpdateWorldScale();
}

void ProjectActions::ShowBackground()
{
    m_parts.scene.ClearWorld();
    if (!Settings().BackgroundFile().isEmpty()) {
        m_parts.scene.ChangeWorld(Settings().BackgroundPath());
    }
}

void ProjectActions::ShowBackgroundColor()
{
    m_parts.scene.ChangeWorldRGBA(Settings().BackgroundColor());
    // It is no edit of the user's.
    const QSignalBlocker blocker(m_parts.form.gboBgOver);
    m_parts.form.gboBgOver->SetColor(Settings().BackgroundColor());
}

void ProjectActions::ShowProject(int selected)
{
    if (Layer* layer = m_parts.layers.SelectRow(selected)) {
        m_parts.brush.SetPaintColor(layer->Color().rgb());
        m_parts.document.SetCurrentLayer(layer);
        m_modes.EnablePaint(true);
    } else {
        m_parts.document.SetCurrentLayer(nullptr);
        m_modes.EnablePaint(false);
    }
    m_parts.brush.Refresh();
    m_modes.Reset();
    m_parts.layers.UpdateHideAll();
    m_composition.Recompose();
    m_parts.document.BeginHistory(true);
}

void ProjectActions::EnableEditing(bool isEnabled)
{
    Ui::QuillmapWindowClass& form = m_parts.form;
    for (QAction* action : {form.actionSave, form.actionQuickSave, form.actionSaveAll,
                            form.actionLoadWorld, form.actionImportAreas, form.actionImportMap}) {
        action->setEnabled(isEnabled);
    }
    for (QWidget* widget : std::initializer_list<QWidget*>{
             &m_parts.layers, &m_parts.terTypes, &m_parts.view, form.gboPaintMode,
             form.gboWorldScale, form.gboWorldRSteps, form.gboWorldPos, form.gboBgOver}) {
        widget->setEnabled(isEnabled);
    }
    m_parts.view.setInteractive(isEnabled);
    m_parts.document.SetEditable(isEnabled);
    if (!isEnabled) {
        // Selecting a layer enables the dock again.
        m_parts.layerProps.setEnabled(false);
    }
    if (isEnabled) {
        m_parts.window.addAction(form.actionTogglePaintMode);
    } else {
        m_parts.window.removeAction(form.actionTogglePaintMode);
    }
}

bool ProjectActions::Save()
{
    if (IsBusy()) {
        return false;
    }
    const QString path = AskForFile(&m_parts.window, FilePurpose::SaveProject);
    return !path.isEmpty() && SaveTo(path);
}

bool ProjectActions::QuickSave()
{
    const QString path = m_parts.document.Path();
    if (path.isEmpty()) {
        return Save();
    }
    return !IsBusy() && SaveTo(path);
}

bool ProjectActions::SaveTo(const QString& path)
{
    // Half a stroke in the files would belong to no state of the history.
    m_parts.scene.LoseMouse();
    const Busy saving(*this, Work::Saving);
    const Layer* current = m_parts.document.CurrentLayer();
    ProjectParts parts{current ? current->row() : -1,
                       [this](QXmlStreamWriter& xml) { m_parts.document.GetBrush().WriteXml(xml); },
                       [this] {
                           m_parts.window.SetTitle(Settings().Name());
                           LogInfo(QStringLiteral("Saving project '%1'...").arg(Settings().Name()));
                           m_parts.document.Layers().RenameForSaving(
                               [this](Layer& layer, const QString& name) {
                                   m_parts.document.Do(Edits::Rename(layer, name));
                               });
                       },
                       m_parts.document.Layers(), m_parts.document.Types()};
    VersionStore versions;
    const VersionStore::Kept kept = versions.KeepBeforeSave(
        path, m_parts.document.Layers().NamesForSaving(), m_parts.document.Files());
    const bool isSaved = SaveProjectTo(path, parts);
    versions.Prune();
    TellKept(kept, isSaved);
    m_parts.window.SetTitle(Settings().Name());
    if (isSaved) {
        m_parts.document.SetPath(Settings().ProjectFilePath());
        m_notices.FollowSave();
    }
    if (isSaved && Settings().IsModified()) {
        // A bitmap could not be written, so the files are those of no state of the history.
        m_parts.document.NoteChange();
    } else if (isSaved) {
        m_parts.document.SetSaved();
    }
    return isSaved;
}

/// Tells what the user should know of the earlier versions after a save.
void ProjectActions::TellKept(const VersionStore::Kept& kept, bool isSaved)
{
    NoticeBar& bar = *m_parts.form.barNotice;
    if (isSaved) {
        m_notices.ShowReplaced(kept.replaced, kept.isWhole, [this] { ShowVersions(); });
    }
    if (kept.problem.isEmpty()) {
        bar.Withdraw(UnkeptNotice);
    } else {
        bar.Show({UnkeptNotice, kept.problem, {}});
    }
}

void ProjectActions::ShowVersions()
{
    if (IsBusy()) {
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
    TellKept({problem, {}, false}, false);
}

void ProjectActions::PruneVersions()
{
    if (std::exchange(m_hasKeptDiscarded, false)) {
        VersionStore().Prune();
    }
}

void ProjectActions::SaveAll()
{
    const bool hasLayers = m_parts.layers.HasLayers();
    m_notices.FollowSaveAll(hasLayers || IsBusy());
    if (hasLayers && Save()) {
        SaveMap();
        ExportTypes(false);
        LogInfo(QStringLiteral("Save done"));
    }
}

void ProjectActions::SaveMap()
{
    if (m_parts.layers.HasLayers()) {
        const Busy saving(*this, Work::Saving);
        m_parts.layers.SaveMap(Settings().MapPath());
    }
}

void ProjectActions::ExportTypes(bool checkedOnly)
{
    const Busy saving(*this, Work::Saving);
    OutputGroup group;
    const QVector<TerritoryType*> types = m_parts.document.Types().Types();
    const auto ticked = std::count_if(types.begin(), types.end(), [](const TerritoryType* type) {
        return type->checkState() == Qt::Checked;
    });
    m_notices.FollowExport(checkedOnly, static_cast<int>(ticked), types.size());
    const bool areMade =
        checkedOnly ? m_parts.terTypes.ExportChecked() : m_parts.terTypes.ExportAll();
    if (!group.Commit() || !areMade) {
        LogError(QStringLiteral("Failed to export territory types."));
    } else if (checkedOnly) {
        LogSuccess(QStringLiteral("Selected territory types succesfully exported."));
    } else {
        LogSuccess(QStringLiteral("Territory types succesfully exported."));
    }
}

void ProjectActions::LoadWorldImage()
{
    if (IsBusy()) {
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
    if (IsBusy() ||
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
    const Busy loading(*this, Work::Loading);
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
    if (IsBusy()) {
        return;
    }
    const QString title = QStringLiteral("Import area map");
    const bool isWanted = MayDiscard(m_parts, title, QStringLiteral("continue"));
    const QString path = isWanted ? AskForFile(&m_parts.window, FilePurpose::AreaMap) : QString();
    if (path.isEmpty()) {
        return;
    }
    const Busy loading(*this, Work::Loading);
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
    // The map is no project document, and the former project's is not meant by the next save.
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
