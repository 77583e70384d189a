#pragma once

#include "ui/EditorParts.h"

#include <QObject>

class ProjectActions;
class QDropEvent;

/// Files that are dropped anywhere onto the window or its docks. A project document is loaded, and
/// a picture is offered as background. Drags of anything else with a link are refused; drags
/// without links go to the widgets.
class FileDrops : public QObject
{
public:
    /// The window's docks exist by now.
    FileDrops(const EditorParts& parts, ProjectActions& actions);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Kind
    {
        Refused,
        Project,
        Picture,
    };

    bool IsFree() const;
    Kind KindOf(const QString& path) const;
    void Answer(QDropEvent& event);
    void Load(const QString& path);
    void Offer(const QString& path);
    bool UseAsBackground(const QString& path);

    EditorParts m_parts;
    ProjectActions& m_actions;
};
