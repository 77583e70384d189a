#pragma once

#include "app/ProjectSettings.h"
#include "tests/support/Random.h"
#include "tests/support/WindowFixture.h"

#include <QEvent>
#include <QImage>
#include <QMap>
#include <QStringList>

class LayerList;
class QAbstractItemView;
class TerritoryTypeList;

/// Performs random actions in the editor's window: clicks, drags, keys, wheel turns, menus and
/// dialogs, including many that make no sense. It opens good, broken and missing files.
class RandomUser : public WindowFixture
{
public:
    RandomUser();

    /// Performs one action and returns its name.
    QString Act();
    /// Returns what is inconsistent; empty if nothing is.
    QString Contradiction() const;
    /// Saves the project, loads it and saves it again. Returns what differs; empty if nothing does.
    /// Answers the question of the load as given.
    QString LostBySaving();
    /// Undoes everything back to the last load or save and does it again; what differs in what is
    /// saved then, empty when nothing does.
    QString LostByUndoing();

private:
    struct Deed
    {
        const char* name;
        int weight;
        void (RandomUser::*act)();
    };
    static const std::vector<Deed>& Deeds();

    void WriteGreys() const;
    void SpillHistory();

    LayerList& Layers() const;
    TerritoryTypeList& Types() const;

    void Stroke();
    void BreakStroke();
    void ClickMap();
    void DragOnMap();
    void DoubleClickMap();
    void TurnWheel();
    void MoveMap();
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
    void Undo();
    void Redo();
    void EscapeStroke();
    void PressDelete();
    void ClickHistory();
    void LayerAction();
    void FilterLayers();
    void ZoneAction();
    void ChooseTool();
    void ChoosePaintOption();
    void DrawCorners();
    void DrawShape();
    void UseZoneTable();
    void EditZoneCell();
    void PasteZoneRows();
    void FilterZones();
    void EnterForZones();
    void ChooseMoves();
    void LookAtZones();
    void WorkOnProblems();

    /// Of the locked layers, by their ids.
    QMap<int, QImage> LockedMasks() const;
    /// Remembers a layer that is still locked and has other pixels.
    void CompareLocked(const QMap<int, QImage>& before);
    /// Releases the buttons and keys that are held.
    void LetGo();
    /// Remembers what was loaded, once the history begins anew.
    void NoteLoad();
    void Mouse(QEvent::Type type, QPoint position, Qt::MouseButton button,
               Qt::MouseButtons buttons);
    QPoint SomewhereOnMap();
    Qt::MouseButton LeftOrRight();
    /// Returns a random visible widget of these, or null.
    QWidget* OneOf(const std::vector<const char*>& names);
    QAbstractItemView* ATree();
    /// Null when it is not on the screen.
    QAbstractItemView* ZoneTable();
    /// What is inconsistent between the table of zones, the project and the map; empty if nothing
    /// is.
    QString ZoneTableContradiction() const;

    void Answer(QWidget& dialog);
    void AnswerFileDialog(QWidget& dialog);
    void AnswerNewProject(QWidget& dialog);
    void AnswerCustomLayer(QWidget& dialog);
    void AnswerLayerAction(QWidget& dialog);
    void AnswerZoneAction(QWidget& dialog);
    void PressAnyButton(QWidget& dialog);

    Random m_random;
    const ProjectSettings m_settingsAtStart = ProjectSettings::Instance();
    int m_customLayerAnswers = 0;
    QString m_changedLocked;
    /// What was loaded or begun, and what was saved last since.
    SavedFiles m_loaded;
    SavedFiles m_saved;
};
