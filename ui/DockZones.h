#pragma once

#include "app/Tracked.h"
#include "territories/ZoneTableModel.h"

#include <QDockWidget>
#include <QPointer>
#include <QStringListModel>

#include <functional>
#include <memory>
#include <vector>

class Document;
class MainScene;
class QCompleter;
class Territory;
class Zone;
class ZoneSheets;

namespace Ui {
class DockZones;
}

/// The table of all zones of the project. Its rows and the map have one selection. A filter decides
/// which rows are shown, and nothing that is done in the table touches the others: those that it
/// hides are deselected.
class DockZones : public QDockWidget
{
    Q_OBJECT

public:
    /// The project, the scene that shows its zones and the sheets outlive the dock. show: brings a
    /// zone to the middle of the map; may be empty.
    DockZones(Document& document, MainScene& scene, ZoneSheets& sheets,
              std::function<void(const Zone&)> show, QWidget* parent = nullptr);
    ~DockZones() override;
    Q_DISABLE_COPY(DockZones)

    /// Neither hidden nor behind another tab.
    bool IsSeen() const { return m_isSeen; }
    /// The user has opened it, and may go on by typing a filter.
    void BeginFilter();
    /// The current territory is another.
    void FollowTerritory();

private:
    void ConnectProject();
    void ConnectTable();
    void ConnectFilter();
    void SetSeen(bool isSeen);
    void PauseProblems();
    void Reload();
    void Clear();
    void NoteZones(Territory* territory);
    void NoteNames();
    void Update();
    void Filter();
    void FilterTerritory();
    void Narrow();
    void SelectShown();
    void Complete(const QString& text);
    void TakeSelection();
    void ShowSelection();
    void KeepCurrent();
    void RestoreCurrent();
    void ShowCounts();
    void ShowNotice(const QString& notice);
    bool EditCell(Zone& zone, ZoneColumn column, const QString& text);
    QVector<Zone*> SelectedRows() const;
    void Copy();
    void Paste();
    void Remove();

    Document& m_document;
    MainScene& m_scene;
    ZoneSheets& m_sheets;
    std::function<void(const Zone&)> m_show;
    std::unique_ptr<Ui::DockZones> m_ui;
    ZoneTableModel m_model;
    QStringListModel m_completions;
    QCompleter* m_completer;
    /// Qt calls a dock behind another tab visible.
    bool m_isSeen = false;
    /// Changed while an edit is carried out; it may change them several times.
    std::vector<Tracked<Territory>> m_changed;
    bool m_areNamesChanged = false;
    /// While table and map tell each other what is selected.
    bool m_isSelecting = false;
    /// While rows are being shown anew: the current one.
    Tracked<Zone> m_current;
    int m_currentColumn = 0;
};
