#pragma once

#include "layers/LayerList.h"
#include "ui/EditorParts.h"
#include "ui/ProjectNotices.h"
#include "ui/ProjectSaving.h"
#include "ui/ProjectWork.h"

#include <QString>

class DialogNewProject;
class Document;
class InteractionModes;
class Journal;
class ProjectDisplay;
class ProjectReader;
class QFile;
class QIODevice;
struct StoredProject;

/// The actions that put another project in the place of the open one, or read files into it: new,
/// load, import and earlier versions. They ask the user all necessary questions. An action that is
/// requested while another one runs does nothing.
class ProjectActions
{
public:
    ProjectActions(const EditorParts& parts, ProjectDisplay& display, InteractionModes& modes,
                   Journal& journal);

    /// Saves and exports.
    ProjectSaving& Saving() { return m_saving; }
    bool IsSaving() const { return m_work.IsSaving(); }

    void New();
    /// Asks for the file. Returns whether a project was loaded.
    bool Load();
    /// Loads this file the same way. Asks only before it discards unsaved work.
    bool LoadFrom(const QString& path);
    /// Opens a state that was kept outside of the project, as unsaved work. It takes the project's
    /// place and file name, or with asCopy no file name. Asks before it discards unsaved work, and
    /// returns whether the state was opened.
    bool OpenStored(const StoredProject& stored, bool asCopy);

    void LoadWorldImage();
    void LoadWorldImageFile(const QString& path, bool setsModified = false);
    void ImportAreaTypes();
    bool LoadAreaTypesFile(const QString& path);
    void ImportAreaMap();

    /// Ends a load, an import or a new project. selected: the row of the layer that becomes the
    /// current one.
    void Finalize(bool isSuccessful, int selected);
    /// Lists the earlier versions, and opens the one that the user chooses as a copy.
    void ShowVersions();
    /// Ends a stroke, a drag or an entry that is under way, which counts as a change.
    void FinishInput();
    /// Keeps the unsaved work, which is about to go, among the earlier versions.
    void KeepDiscarded();
    /// Removes old versions after KeepDiscarded made a new one.
    void PruneVersions();

    /// LoadFrom for viewing: what edits is disabled then. A notice offers to load it for editing.
    bool StartWith(const QString& configPath);
    /// Ends a running load early, because the window was closed.
    void StopLoading();

private:
    bool MayDiscard(const QString& title, const QString& action);
    bool MayLoad();
    void Create(const DialogNewProject& dialog);
    bool OpenFile(const QString& path);
    bool ReadFrom(QIODevice& file, const MaskSource& masks, const QString& path);
    void ReadFormulasOf(QIODevice& file);
    void ReadMap(QFile& file);
    void ShowViewing(const QString& path);
    void BeginReplacing();
    void EmptyLists();

    EditorParts m_parts;
    ProjectDisplay& m_display;
    InteractionModes& m_modes;
    Journal& m_journal;
    ProjectWork m_work;
    ProjectNotices m_notices;
    ProjectSaving m_saving;
    ProjectReader* m_reader = nullptr;
    bool m_hasKeptDiscarded = false;
    bool m_isForViewing = false;
    bool m_isStopped = false;
};
