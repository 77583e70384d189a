#pragma once

#include "ui/EditorParts.h"

#include <QString>

#include <functional>

class DialogNewProject;
class InteractionModes;
class LayerComposition;
class ProjectReader;
class QFile;

/// What is done with whole projects: begin, load, save, export and import. Each asks what it has to
/// ask, and none begins while another runs: their messages process events, so they can be
/// re-entered.
class ProjectActions
{
public:
    ProjectActions(const EditorParts& parts, LayerComposition& composition,
                   InteractionModes& modes);

    void New();
    /// Asks for the file unless the window was started with one. Whether a project is open then.
    bool Load();
    bool Save();
    bool SaveTo(const QString& path);
    void SaveAll();
    void SaveMap();
    void ExportTypes(bool checkedOnly);

    void LoadWorldImage();
    void LoadWorldImageFile(const QString& path);
    void ImportAreaTypes();
    bool LoadAreaTypesFile(const QString& path);
    void ImportAreaMap();

    /// The end of each load and import, and of a new project. selected: the row of the layer that
    /// becomes the current one.
    void Finalize(bool isSuccessful, int selected);
    /// Enables what only an open project gives a meaning.
    void EnableEditing(bool isEnabled);

    /// Loads the file without asking for it.
    bool StartWith(const QString& configPath);
    bool IsSaving() const { return m_work == Work::Saving; }
    /// Makes a load that is under way end early, for a window that was closed meanwhile.
    void StopLoading();

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
    bool AskForProject();
    bool ReadFrom(QFile& file);
    void ReadMap(QFile& file);
    void BeginReplacing();
    void EmptyLists();
    void ShowWorld();
    void ShowProject(int selected);

    EditorParts m_parts;
    LayerComposition& m_composition;
    InteractionModes& m_modes;
    ProjectReader* m_reader = nullptr;
    QString m_startUpPath;
    Work m_work = Work::None;
    bool m_isStopped = false;
};
