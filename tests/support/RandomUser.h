#pragma once

#include "app/ProjectSettings.h"
#include "tests/support/Random.h"
#include "tests/support/WindowFixture.h"

#include <QEvent>
#include <QStringList>

class LayerList;
class QAbstractItemView;
class TerritoryTypeList;

/// Does with the editor's window what comes to its mind: clicks, drags, keys and wheel turns, menus
/// and dialogs, among them many that make no sense. Files that it opens are good ones, broken ones
/// and missing ones.
class RandomUser : public WindowFixture
{
public:
    RandomUser();

    /// Does one thing and returns what.
    QString Act();
    /// What does not fit together; empty when all is well.
    QString Contradiction() const;
    /// Saves the project, loads what was saved and saves that; what differs, empty when nothing
    /// does. Answers to a load's question as asked.
    QString LostBySaving();

private:
    struct Deed
    {
        const char* name;
        int weight;
        void (RandomUser::*act)();
    };
    static const std::vector<Deed>& Deeds();

    LayerList& Layers() const;
    TerritoryTypeList& Types() const;

    void Stroke();
    void BreakStroke();
    void ClickMap();
    void DragOnMap();
    void DoubleClickMap();
    void TurnWheel();
    void PressKey();
    void PaintMode();
    void ClickButton();
    void ClickRow();
    void DragLayer();
    void TriggerRowAction();
    void RenameInPlace();
    void LayerFlag();
    void MoveSlider();
    void EditZone();
    void ProjectAction();
    void ExportAction();
    void ViewAction();
    void Resize();
    void LeaveWindow();
    void CloseWindow();

    void Mouse(QEvent::Type type, QPoint position, Qt::MouseButton button,
               Qt::MouseButtons buttons);
    QPoint SomewhereOnMap();
    /// A visible one of these, or null.
    QWidget* OneOf(const std::vector<const char*>& names);
    QAbstractItemView* ATree();

    void Answer(QWidget& dialog);
    void AnswerFileDialog(QWidget& dialog);
    void AnswerNewProject(QWidget& dialog);
    void AnswerCustomLayer(QWidget& dialog);
    void PressAnyButton(QWidget& dialog);

    Random m_random;
    const ProjectSettings m_settingsAtStart = ProjectSettings::Instance();
    int m_customLayerAnswers = 0;
};
