#include "ui/DockTerTypes.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "canvas/MainScene.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "ui/DockTerTypeProps.h"
#include "ui_DockTerTypes.h"

#include <QMenu>
#include <QStandardItemModel>

DockTerTypes::DockTerTypes(MainScene* scene, DockTerTypeProps* props, QWidget* parent)
    : QDockWidget(parent)
    , m_ui(std::make_unique<Ui::DockTerTypes>())
    , m_scene(scene)
    , m_props(props)
    , m_list(std::make_unique<TerritoryTypeList>())
{
    m_ui->setupUi(this);
    m_ui->treeTerTypes->setModel(m_list->model());
    m_ui->treeTerTypes->addAction(m_ui->actionRename);
    auto* menu = new QMenu(m_ui->btnAdd);
    menu->addAction(m_ui->actionAdd);
    m_ui->btnAdd->setMenu(menu);
    Connect();
    SelectNothing();
    SetSelectionControlsEnabled(false);
}

DockTerTypes::~DockTerTypes()
{
    m_list->SetTotalsListener({});
    m_list->model()->disconnect(this);
    m_ui->treeTerTypes->selectionModel()->disconnect(this);
}

void DockTerTypes::Connect()
{
    connect(m_ui->btnAdd, &QToolButton::clicked, this, &DockTerTypes::AddTerritoryType);
    connect(m_ui->actionAdd, &QAction::triggered, this, &DockTerTypes::AddTerritory);
    connect(m_ui->actionRename, &QAction::triggered, this, &DockTerTypes::Rename);
    connect(m_ui->actionRemove, &QAction::triggered, this, &DockTerTypes::Remove);
    connect(m_ui->actionExport, &QAction::triggered, this, &DockTerTypes::Export);
    connect(m_ui->btnToggleZoneInsert, &QToolButton::clicked, this, &DockTerTypes::InsertMode);
    connect(m_ui->btnToggleZoneSelect, &QToolButton::clicked, this, &DockTerTypes::SelectMode);
    connect(m_ui->btnToggleQueryTer, &QToolButton::clicked, this, &DockTerTypes::QueryMode);
    connect(m_ui->btnZoneDelete, &QToolButton::clicked, m_scene, &MainScene::RemoveSelection);
    connect(m_ui->btnZoneCopy, &QToolButton::clicked, this, &DockTerTypes::CopySelection);
    connect(m_ui->btnExportSelected, &QPushButton::clicked, this,
            &DockTerTypes::ExportSelectedClicked);
    connect(m_ui->btnExportAll, &QPushButton::clicked, this, &DockTerTypes::ExportAllClicked);
    connect(m_ui->treeTerTypes, &QWidget::customContextMenuRequested, this,
            &DockTerTypes::ContextMenu);
    connect(m_ui->treeTerTypes->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &DockTerTypes::Selection);
    connect(m_list->model(), &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& index, const QModelIndex&, const QVector<int>& roles) {
                FollowData(index, roles);
            });
    connect(m_list->model(), &QAbstractItemModel::rowsRemoved, this, &DockTerTypes::FollowRemoval);
    // Zones come and go many at a time, and in the middle of changes.
    m_totalsTimer.setSingleShot(true);
    m_totalsTimer.setInterval(0);
    connect(&m_totalsTimer, &QTimer::timeout, m_props, &DockTerTypeProps::RefreshTotals);
    m_list->SetTotalsListener([this] { m_totalsTimer.start(); });
}

void DockTerTypes::Clear()
{
    ClearSelection();
    m_list->Clear();
}

bool DockTerTypes::Read(QXmlStreamReader& xml)
{
    const bool isRead = m_list->Read(xml, m_scene);
    m_ui->treeTerTypes->expandAll();
    return isRead;
}

void DockTerTypes::Write(QXmlStreamWriter& xml) const
{
    m_list->Write(xml);
}

bool DockTerTypes::ExportAll() const
{
    return m_list->ExportAll();
}

bool DockTerTypes::ExportChecked() const
{
    return m_list->ExportChecked();
}

void DockTerTypes::ClearSelection()
{
    if (m_scene) {
        m_scene->clearSelection();
    }
    m_ui->treeTerTypes->selectionModel()->clear();
}

void DockTerTypes::ResetModeButtons()
{
    for (QToolButton* button :
         {m_ui->btnToggleZoneInsert, m_ui->btnToggleZoneSelect, m_ui->btnToggleQueryTer}) {
        button->setChecked(false);
    }
}

void DockTerTypes::SetSelectionControlsEnabled(bool isEnabled)
{
    m_ui->btnZoneDelete->setEnabled(isEnabled);
    m_ui->btnZoneCopy->setEnabled(isEnabled);
}

QStandardItem* DockTerTypes::ItemAt(const QModelIndex& index) const
{
    return m_list->model()->itemFromIndex(index);
}

TerritoryType* DockTerTypes::CurrentType() const
{
    return dynamic_cast<TerritoryType*>(ItemAt(m_ui->treeTerTypes->currentIndex()));
}

void DockTerTypes::Selection(const QModelIndex& current, const QModelIndex& previous)
{
    if (m_isSelecting) {
        return;
    }
    m_current = nullptr;
    m_hasCurrent = false;
    m_scene->clearSelection();
    m_list->UpdateVisibility();
    m_ui->btnToggleQueryTer->setEnabled(true);
    if (auto* before = dynamic_cast<Territory*>(ItemAt(previous))) {
        before->SetZonesEditable(false);
    }
    m_ui->btnToggleZoneSelect->setEnabled(false);
    m_ui->btnToggleZoneInsert->setEnabled(false);
    QStandardItem* item = ItemAt(current);
    if (auto* territory = dynamic_cast<Territory*>(item)) {
        SelectTerritory(*territory);
    } else if (auto* type = dynamic_cast<TerritoryType*>(item)) {
        SelectType(*type);
    } else {
        SelectNothing();
    }
}

void DockTerTypes::SelectNothing()
{
    m_ui->btnToggleZoneSelect->setEnabled(false);
    m_ui->btnToggleZoneInsert->setEnabled(false);
    emit Selected(nullptr);
    LeaveModes({m_ui->btnToggleZoneSelect, m_ui->btnToggleZoneInsert, m_ui->btnToggleQueryTer});
    m_props->ShowNothing();
}

void DockTerTypes::SelectTerritory(Territory& territory)
{
    m_current = &territory;
    m_hasCurrent = true;
    m_ui->btnToggleZoneSelect->setEnabled(true);
    m_ui->btnToggleZoneInsert->setEnabled(true);
    territory.SetZonesEditable(true);
    territory.SetVisible(true);
    m_props->ShowTerritory(&territory);
    emit Selected(&territory);
}

void DockTerTypes::SelectType(TerritoryType& type)
{
    emit Selected(nullptr);
    LeaveModes({m_ui->btnToggleZoneSelect, m_ui->btnToggleZoneInsert});
    m_props->ShowType(&type);
}

/// The map must not stay in a mode whose button cannot be pressed.
void DockTerTypes::LeaveModes(const QList<QToolButton*>& buttons)
{
    const bool isInserting = m_ui->btnToggleZoneInsert->isChecked();
    const bool isSelecting = m_ui->btnToggleZoneSelect->isChecked();
    const bool isQuerying =
        m_ui->btnToggleQueryTer->isChecked() && buttons.contains(m_ui->btnToggleQueryTer);
    for (QToolButton* button : buttons) {
        button->setChecked(false);
    }
    if (isInserting) {
        emit InsertClicked(false);
    }
    if (isSelecting) {
        emit SelectClicked(false);
    }
    if (isQuerying) {
        emit QueryClicked(false);
    }
}

void DockTerTypes::SetMode(QToolButton* button, bool isOn, void (DockTerTypes::*signal)(bool))
{
    if (isOn) {
        ResetModeButtons();
    }
    button->setChecked(isOn);
    emit(this->*signal)(isOn);
}

void DockTerTypes::InsertMode(bool isOn)
{
    SetMode(m_ui->btnToggleZoneInsert, isOn, &DockTerTypes::InsertClicked);
}

void DockTerTypes::SelectMode(bool isOn)
{
    SetMode(m_ui->btnToggleZoneSelect, isOn, &DockTerTypes::SelectClicked);
}

void DockTerTypes::QueryMode(bool isOn)
{
    SetMode(m_ui->btnToggleQueryTer, isOn, &DockTerTypes::QueryClicked);
}

void DockTerTypes::Select(Territory* territory)
{
    if (!territory || territory->model() != m_list->model()) {
        return;
    }
    const QModelIndex previous = m_ui->treeTerTypes->currentIndex();
    m_isSelecting = true;
    m_ui->treeTerTypes->setCurrentIndex(territory->index());
    m_isSelecting = false;
    Selection(territory->index(), previous);
    SelectMode(true);
}

void DockTerTypes::ContextMenu(const QPoint& pos)
{
    const QModelIndex index = m_ui->treeTerTypes->indexAt(pos);
    if (!index.isValid()) {
        return;
    }
    QMenu menu(this);
    if (index.parent().isValid()) {
        menu.addAction(m_ui->actionRename);
        menu.addAction(m_ui->actionRemove);
    } else {
        menu.addAction(m_ui->actionAdd);
        menu.addAction(m_ui->actionRename);
        menu.addAction(m_ui->actionRemove);
        menu.addSeparator();
        menu.addAction(m_ui->actionExport);
    }
    menu.exec(m_ui->treeTerTypes->viewport()->mapToGlobal(pos));
}

/// Check marks come one at a time, and those that follow from another come here again.
void DockTerTypes::FollowData(const QModelIndex& index, const QVector<int>& roles)
{
    if (roles.contains(Qt::EditRole)) {
        ProjectSettings::Instance().modified = true;
        m_props->RefreshTitle();
    }
    if (roles.contains(Qt::CheckStateRole) && !m_isFollowing) {
        m_isFollowing = true;
        Changed(ItemAt(index));
        m_isFollowing = false;
    }
}

void DockTerTypes::Changed(QStandardItem* item)
{
    if (!item) {
        return;
    }
    const bool isChecked = item->checkState() == Qt::Checked;
    if (auto* type = dynamic_cast<TerritoryType*>(item)) {
        type->SetVisible(isChecked);
        if (m_current && m_current->GetType() == type) {
            m_current->SetVisible(true);
        }
    } else if (auto* territory = dynamic_cast<Territory*>(item)) {
        territory->SetVisible(isChecked || territory == m_current);
    }
    ProjectSettings::Instance().modified = true;
}

void DockTerTypes::AddTerritoryType()
{
    auto type = std::make_unique<TerritoryType>();
    if (m_list->AddType(type.get())) {
        Q_UNUSED(type.release())
        ProjectSettings::Instance().modified = true;
    }
}

void DockTerTypes::AddTerritory()
{
    if (TerritoryType* type = CurrentType()) {
        type->NewTerritory();
        m_ui->treeTerTypes->expand(type->index());
        ProjectSettings::Instance().modified = true;
    }
}

void DockTerTypes::Rename()
{
    m_ui->treeTerTypes->edit(m_ui->treeTerTypes->currentIndex());
}

void DockTerTypes::Remove()
{
    const QModelIndex index = m_ui->treeTerTypes->currentIndex();
    if (!index.isValid()) {
        return;
    }
    // Whoever shows the selection forgets it before its zones are destroyed.
    m_scene->clearSelection();
    m_list->model()->removeRow(index.row(), index.parent());
    ProjectSettings::Instance().modified = true;
}

/// With a type that was not the current row the current territory may have gone.
void DockTerTypes::FollowRemoval()
{
    if (m_hasCurrent && !m_current) {
        Selection(m_ui->treeTerTypes->currentIndex(), QModelIndex());
    }
}

void DockTerTypes::Export()
{
    if (const TerritoryType* type = CurrentType()) {
        const QString name = type->text();
        if (type->Export()) {
            LogSuccess(QStringLiteral("%1 successfully exported.").arg(name));
        }
    }
}

void DockTerTypes::CopySelection()
{
    Territory* source = m_current;
    TerritoryType* type = source ? source->GetType() : nullptr;
    if (!type || m_scene->selectedItems().isEmpty()) {
        return;
    }
    Territory* territory = type->NewTerritory();
    territory->SetRgba(source->Color().rgba());
    territory->AddCopiesOfSelection(*m_scene);
    m_scene->clearSelection();
    m_ui->treeTerTypes->setCurrentIndex(territory->index());
    ProjectSettings::Instance().modified = true;
}
