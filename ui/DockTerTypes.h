#pragma once

#include "app/Tracked.h"
#include "canvas/SceneMode.h"
#include "territories/TerritoryTypeList.h"

#include <QDockWidget>
#include <QModelIndex>
#include <QPointer>

#include <memory>

class DockTerTypeProps;
class MainScene;
class QPushButton;
class QStandardItem;
class QXmlStreamReader;
class QXmlStreamWriter;
class Territory;
class TerritoryType;

namespace Ui {
class DockTerTypes;
}

/// The dock with the tree of territory types and territories, and with the buttons of the zone
/// modes. It owns the project's territory types. The current row's territory is the one whose zones
/// are edited.
class DockTerTypes : public QDockWidget
{
    Q_OBJECT

public:
    /// The scene, on which the zones are shown, and the dock that shows the current row belong to
    /// others and may die first.
    DockTerTypes(MainScene* scene, DockTerTypeProps* props, QWidget* parent = nullptr);
    ~DockTerTypes() override;
    Q_DISABLE_COPY(DockTerTypes)

    /// Lives as long as the dock.
    TerritoryTypeList* List() { return &m_list; }

    /// Destroys all types, after the current row, the selection and the pattern of new zones are
    /// forgotten.
    void Clear();
    /// As TerritoryTypeList::Read, with the scene; the tree is expanded.
    bool Read(QXmlStreamReader& xml);
    void Write(QXmlStreamWriter& xml) const;
    /// As in TerritoryTypeList.
    bool ExportAll() const;
    bool ExportChecked() const;

    /// Checks the button of the mode and unchecks the others, without a signal. Only the zone modes
    /// have buttons.
    void ShowMode(SceneMode mode);
    /// No zone, no row and no current row any more.
    void ClearSelection();
    /// Whether zones can be removed and copied, i.e. some are selected.
    void SetSelectionControlsEnabled(bool isEnabled);

signals:
    /// The territory of the current row; null when there is none, or a type instead.
    void Selected(Territory* territory);
    void InsertClicked(bool checked);
    void SelectClicked(bool checked);
    void QueryClicked(bool checked);
    void ExportSelectedClicked();
    void ExportAllClicked();

public slots:
    /// The current row has changed; invalid for none.
    void Selection(const QModelIndex& current, const QModelIndex& previous);
    /// In the tree's viewport.
    void ContextMenu(const QPoint& pos);
    /// The check mark of the row was changed: shows or hides what it stands for. The current
    /// territory stays visible.
    void Changed(QStandardItem* item);
    /// Makes the territory the current row and enters the select mode.
    void Select(Territory* territory);
    void AddTerritoryType();
    /// Below the current type; nothing when another row is current.
    void AddTerritory();
    /// These three work on the current row, Export on a type only.
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

    TerritoryTypeList m_list;
    std::unique_ptr<Ui::DockTerTypes> m_ui;
    QPointer<MainScene> m_scene;
    QPointer<DockTerTypeProps> m_props;
    /// That of the current row.
    Tracked<Territory> m_territory;
    bool m_isApplyingCheckMark = false;
};
