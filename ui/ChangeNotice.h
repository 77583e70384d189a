#pragma once

#include "document/FileWatch.h"
#include "ui/EditorParts.h"

#include <QObject>

class ProjectActions;

/// The notice that another program changed or removed files of the open project, and its button to
/// load the project again. It goes away when the project is loaded or saved, and when the files are
/// back as they were.
class ChangeNotice : public QObject
{
public:
    ChangeNotice(const EditorParts& parts, ProjectActions& actions);

    const FileWatch& Watch() const { return m_watch; }

private:
    void Show(const ForeignChanges& changes);
    bool Reload();

    EditorParts m_parts;
    ProjectActions& m_actions;
    FileWatch m_watch;
};
