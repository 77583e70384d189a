#pragma once

#include "app/Tracked.h"
#include "territories/Territory.h"

#include <QDockWidget>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QTimer>

#include <memory>

class DockTerTypeProps;
class MainScene;
class QStandardItem;
class QToolButton;
class QXmlStreamReader;
class QXmlStreamWriter;
class TerritoryType;
class TerritoryTypeList;

namespace Ui {
class DockTerTypes;
}

/// The dock with the tree of territory types and territories, and the buttons that say what the
/// mouse does with zones. It owns the list of types.
class DockTerTypes : public QDockWidget
{
    Q_OBJECT

public:
    /// props shows what is selected and outlives the dock.
    DockTerTypes(MainScene* scene, DockTerTypeProps* props, QWidget* parent = nullptr);
    ~DockTerTypes() override;
    Q_DISABLE_COPY(DockTerTypes)

    TerritoryTypeList* List() const { return m_list.get(); }
    /// Empties the list.
    void Clear();
    /// Reads the list, puts the zones into the scene and expands the tree.
    bool Read(QXmlStreamReader& xml);
    void Write(QXmlStreamWriter& xml) const;
    bool ExportAll() const;
    bool ExportChecked() const;
    /// Of the scene and of the tree; there is no current row afterwards.
    void ClearSelection();
    /// Unchecks them, without a signal.
    void ResetModeButtons();
    /// What only a selection of zones gives a meaning.
    void SetSelectionControlsEnabled(bool isEnabled);

signals:
    /// The current territory; null for none.
    void Selected(Territory* territory);
    void InsertClicked(bool checked);
    void SelectClicked(bool checked);
    void QueryClicked(bool checked);
    void ExportSelectedClicked();
    void ExportAllClicked();

public slots:
    void Selection(const QModelIndex& current, const QModelIndex& previous);
    /// In pixels of the tree's viewport.
    void ContextMenu(const QPoint& pos);
    /// The item's check mark is the visibility of its zones.
    void Changed(QStandardItem* item);
    /// Makes the territory the current row and lets its zones be selected.
    void Select(Territory* territory);
    void AddTerritoryType();
    void AddTerritory();
    void Rename();
    void Remove();
    void Export();
    void InsertMode(bool isOn);
    void SelectMode(bool isOn);
    void QueryMode(bool isOn);
    /// A new territory from copies of the selected zones.
    void CopySelection();

private:
    void Connect();
    QStandardItem* ItemAt(const QModelIndex& index) const;
    TerritoryType* CurrentType() const;
    void SelectNothing();
    void SelectTerritory(Territory& territory);
    void SelectType(TerritoryType& type);
    void LeaveModes(const QList<QToolButton*>& buttons);
    void SetMode(QToolButton* button, bool isOn, void (DockTerTypes::*signal)(bool));
    void FollowData(const QModelIndex& index, const QVector<int>& roles);
    void FollowRemoval();

    std::unique_ptr<Ui::DockTerTypes> m_ui;
    QPointer<MainScene> m_scene;
    DockTerTypeProps* m_props;
    std::unique_ptr<TerritoryTypeList> m_list;
    Tracked<Territory> m_current;
    bool m_hasCurrent = false;
    bool m_isFollowing = false;
    bool m_isSelecting = false;
    QTimer m_totalsTimer;
};
