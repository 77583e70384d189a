#pragma once

#include "document/versions/VersionStore.h"
#include "layers/LayerList.h"
#include "ui/EditorParts.h"
#include "ui/ProjectNotices.h"

#include <QString>

#include <functional>
#include <utility>

class DialogNewProject;
class Document;
class InteractionModes;
class Journal;
class LayerComposition;
class ProjectReader;
class QFile;
class QIODevice;
struct StoredProject;

/// The actions on whole projects: new, load, save, export and import. They ask the user all
/// necessary questions. Logging processes events, so an action may be requested while another one
/// runs; such a request is ignored.
class ProjectActions
{
public:
    ProjectActions(const EditorParts& parts, LayerComposition& composition, InteractionModes& modes,
                   Journal& journal);

    void New();
    /// Asks for the file. Returns whether a project was loaded.
    bool Load();
    /// Loads this file the same way. Asks only before it discards unsaved work.
    bool LoadFrom(const QString& path);
    /// Opens a state that was kept outside of the project, as unsaved work. It takes the project's
    /// place and file name, or with asCopy no file name. Asks before it discards unsaved work, and
    /// returns whether the state was opened.
    bool OpenStored(const StoredProject& stored, bool asCopy);
    bool Save();
    /// Saves to the project's own file without a dialog, or asks for a file when there is none.
    bool QuickSave();
    bool SaveTo(const QString& path);
    void SaveAll();
    void SaveMap();
    void ExportTypes(bool checkedOnly);

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
    /// Keeps the unsaved work, which is about to go, among the earlier versions.
    void KeepDiscarded();
    /// Removes old versions after KeepDiscarded made a new one.
    void PruneVersions();

    /// Enables the actions and widgets that need an open project.
    void EnableEditing(bool isEnabled);

    /// LoadFrom for viewing: the window then disables what edits. A notice offers to load it for
    /// editing.
    bool StartWith(const QString& configPath);
    bool IsSaving() const { return m_work == Work::Saving; }
    /// Ends a running load early, because the window was closed.
    void StopLoading();

    /// Shows the project's picture, or none.
    void ShowBackground();
    void ShowBackgroundColor();

private:
    enum class Work
    {
        None,
        Loading,
        Saving,
    };
    class Busy;

    bool IsBusy() const { return m_work != Work::None; }

    void Create(const DialogNewProject& dialog);
    bool OpenFile(const QString& path);
    bool ReadFrom(QIODevice& file, const MaskSource& masks, const QString& path);
    void ReadMap(QFile& file);
    void ShowViewing(const QString& path);
    void BeginReplacing();
    void EmptyLists();
    void TellKept(const VersionStore::Kept& kept, bool isSaved);
    void ShowWorld();
    void ShowProject(int selected);

    EditorParts m_parts;
    LayerComposition& m_composition;
    InteractionModes& m_modes;
    Journal& m_journal;
    ProjectNotices m_notices;
    ProjectReader* m_reader = nullptr;
    bool m_hasKeptDiscarded = false;
    bool m_isForViewing = false;
    Work m_work = Work::None;
    bool m_isStopped = false;
};
