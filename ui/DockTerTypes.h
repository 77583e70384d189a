#pragma once

#include "app/Tracked.h"
#include "canvas/SceneMode.h"
#include "territories/TerritoryTypeList.h"

#include <QDockWidget>
#include <QModelIndex>
#include <QPointer>

#include <memory>

class DockTerTypeProps;
class Document;
class MainScene;
class QPushButton;
class QStandardItem;
class RowFilter;
class Territory;
class TerritoryType;

namespace Ui {
class DockTerTypes;
}

/// The dock with the tree of territory types and territories, and with the buttons of the zone
/// modes. The current row's territory is the one whose zones
/// are edited.
class DockTerTypes : public QDockWidget
{
    Q_OBJECT

public:
    /// The project outlives the dock. The scene, on which the zones are shown, and the dock that
    /// shows the current row belong to others and may die first.
    DockTerTypes(Document& document, MainScene* scene, DockTerTypeProps* props,
                 QWidget* parent = nullptr);
    ~DockTerTypes() override;
    Q_DISABLE_COPY(DockTerTypes)

    TerritoryTypeList* List() const;
    /// Shows all rows.
    void ExpandAll();
    /// Makes the row the current one; nothing for null.
    void SelectRow(const QStandardItem* row);
    /// The type of the current row, or of the current row's territory; null without one.
    TerritoryType* CurrentType() const;
    /// Makes a row that has just been added the current one and scrolls to it. A filter that hides
    /// it ends.
    void ShowNew(const QStandardItem& row);
    /// As in TerritoryTypeList.
    bool ExportAll() const;
    bool ExportChecked() const;

    /// Checks the button of the mode and unchecks the others, without a signal. Only the zone modes
    /// have buttons.
    void ShowMode(SceneMode mode);
    /// No zone, no row and no current row any more.
    void ClearSelection();
    /// Enables the buttons that remove and copy zones. isEnabled: whether zones are selected.
    void SetSelectionControlsEnabled(bool isEnabled);

signals:
    /// The territory of the current row; null without a current row or if it is a type.
    void Selected(Territory* territory);
    void InsertClicked(bool checked);
    void SelectClicked(bool checked);
    void QueryClicked(bool checked);
    void ExportSelectedClicked();
    void ExportAllClicked();

public slots:
    /// The current row has changed; invalid for none.
    void Selection(const QModelIndex& current, const QModelIndex& previous);
    /// In pixels of the tree's viewport.
    void ContextMenu(const QPoint& pos);
    /// Shows or hides the territories of a row whose check mark changed. The current territory
    /// stays visible.
    void Changed(QStandardItem* item);
    /// Makes the territory the current row and enters the select mode.
    void Select(Territory* territory);
    void AddTerritoryType();
    /// Adds a territory to the current type. Does nothing if the current row is not a type.
    void AddTerritory();
    /// These three work on the current row. Export works on a type only.
    void Rename();
    void Remove();
    void Export();
    /// Enter or leave a zone mode: the buttons follow, and the signal of the mode is emitted. A
    /// mode whose button is disabled is not entered.
    void InsertMode(bool isOn);
    void SelectMode(bool isOn);
    void QueryMode(bool isOn);
    /// Puts copies of the selected zones into a new territory beside the current one.
    void CopySelection();

private:
    using ModeSignal = void (DockTerTypes::*)(bool);

    void ConnectModel();
    void ConnectControls();
    void DataChanged(const QModelIndex& index, const QVector<int>& roles);
    void RowsAboutToBeRemoved(const QModelIndex& parent, int first, int last);
    void ShowTerritoryRow(Territory* territory);
    void ShowTypeRow(TerritoryType* type);
    void ShowNoRow();
    void ShowName(const QModelIndex& renamed);
    void SetMode(QPushButton* button, ModeSignal changed, bool isOn);
    void Leave(QPushButton* button, ModeSignal changed);
    TerritoryType* TypeAt(const QModelIndex& index) const;
    Territory* TerritoryAt(const QModelIndex& index) const;

    Document& m_document;
    std::unique_ptr<Ui::DockTerTypes> m_ui;
    QPointer<MainScene> m_scene;
    QPointer<DockTerTypeProps> m_props;
    /// The tree owns it.
    RowFilter* m_filter = nullptr;
};
