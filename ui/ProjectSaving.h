#pragma once

#include "ui/EditorParts.h"

#include <QtGlobal>

#include <functional>

class ProjectNotices;
class ProjectWork;
class QString;

/// The actions that write the open project: save and export. Earlier versions of what a save
/// replaces are kept. An action that is requested while the project is busy does nothing, except
/// those that other actions are made of.
class ProjectSaving
{
public:
    /// showVersions: lists the earlier versions for the user.
    ProjectSaving(const EditorParts& parts, ProjectWork& work, ProjectNotices& notices,
                  std::function<void()> showVersions);
    ~ProjectSaving();
    Q_DISABLE_COPY(ProjectSaving)

    /// Asks for the file. Returns whether the project was saved.
    bool Save();
    /// Saves to the project's own file without a dialog, or asks for a file when there is none.
    bool QuickSave();
    bool SaveTo(const QString& path);
    void SaveAll();
    void SaveMap();
    void ExportTypes(bool checkedOnly);

private:
    EditorParts m_parts;
    ProjectWork& m_work;
    ProjectNotices& m_notices;
    std::function<void()> m_showVersions;
};
