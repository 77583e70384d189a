#include "ui/DockTerTypes.h"

#include "app/Log.h"
#include "canvas/MainScene.h"
#include "document/Document.h"
#include "document/edits/TerritoryEdits.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "ui/DockTerTypeProps.h"
#include "ui/RowFilter.h"
#include "ui_DockTerTypes.h"

#include <QMenu>

DockTerTypes::DockTerTypes(Document& document, MainScene* scene, DockTerTypeProps* props,
                           QWidget* parent)
    : QDockWidget(parent)
    , m_document(document)
    , m_ui(std::make_unique<Ui::DockTerTypes>())
    , m_scene(scene)
    , m_props(props)
{
    m_ui->setupUi(this);
    auto* menu = new QMenu(m_ui->btnAdd);
    menu->addAction(m_ui->actionAdd);
    m_ui->btnAdd->setMenu(menu);
    m_ui->treeTerTypes->setModel(List()->model());
    m_filter = new RowFilter(*m_ui->treeTerTypes, *m_ui->txtTerritoriesFilter);
    ConnectModel();
    ConnectControls();
    ShowNoRow();
}

DockTerTypes::~DockTerTypes()
{
    List()->SetTotalsCallback(nullptr);
    List()->model()->disconnect(this);
    m_ui->treeTerTypes->selectionModel()->disconnect(this);
}

void DockTerTypes::ConnectModel()
{
    List()->SetTotalsCallback([this] {
        if (m_props) {
            m_props->RefreshTotalsLater();
        }
    });
    connect(List()->model(), &QStandardItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& /*last*/,
                   const QVector<int>& roles) { DataChanged(first, roles); });
    connect(List()->model(), &QStandardItemModel::rowsAboutToBeRemoved, this,
            &DockTerTypes::RowsAboutToBeRemoved);
    connect(m_ui->treeTerTypes->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &DockTerTypes::Selection);
}

void DockTerTypes::ConnectControls()
{
    connect(m_ui->treeTerTypes, &QWidget::customContextMenuRequested, this,
            &DockTerTypes::ContextMenu);
    connect(m_ui->btnAdd, &QToolButton::clicked, this, &DockTerTypes::AddTerritoryType);
    connect(m_ui->btnToggleZoneInsert, &QPushButton::clicked, this, &DockTerTypes::InsertMode);
    connect(m_ui->btnToggleZoneSelect, &QPushButton::clicked, this, &DockTerTypes::SelectMode);
    connect(m_ui->btnToggleQueryTer, &QPushButton::clicked, this, &DockTerTypes::QueryMode);
    connect(m_ui->btnZoneDelete, &QPushButton::clicked, this, [this] {
        if (m_scene) {
            m_scene->RemoveSelection();
        }
    });
    connect(m_ui->btnZoneCopy, &QPushButton::clicked, this, &DockTerTypes::CopySelection);
    connect(m_ui->btnExportSelected, &QPushButton::clicked, this,
            &DockTerTypes::ExportSelectedClicked);
    connect(m_ui->btnExportAll, &QPushButton::clicked, this, &DockTerTypes::ExportAllClicked);
    connect(m_ui->actionAdd, &QAction::triggered, this, &DockTerTypes::AddTerritory);
    connect(m_ui->actionRemove, &QAction::triggered, this, &DockTerTypes::Remove);
    connect(m_ui->actionExport, &QAction::triggered, this, &DockTerTypes::Export);
    connect(m_ui->actionRename, &QAction::triggered, this, &DockTerTypes::Rename);
    connect(&m_document, &Document::AboutToClear, m_ui->txtTerritoriesFilter, &QLineEdit::clear);
}

TerritoryType* DockTerTypes::TypeAt(const QModelIndex& index) const
{
    return dynamic_cast<TerritoryType*>(List()->model()->itemFromIndex(index));
}

Territory* DockTerTypes::TerritoryAt(const QModelIndex& index) const
{
    return dynamic_cast<Territory*>(List()->model()->itemFromIndex(index));
}

TerritoryTypeList* DockTerTypes::List() const
{
    return &m_document.Types();
}

void DockTerTypes::ExpandAll()
{
    m_ui->treeTerTypes->expandAll();
}

void DockTerTypes::SelectRow(const QStandardItem* row)
{
    if (row && row->model() == List()->model()) {
        m_ui->treeTerTypes->setCurrentIndex(row->index());
    }
}

TerritoryType* DockTerTypes::CurrentType() const
{
    const QModelIndex row = m_ui->treeTerTypes->currentIndex();
    return TypeAt(row.parent().isValid() ? row.parent() : row);
}

void DockTerTypes::ShowNew(const QStandardItem& row)
{
    SelectRow(&row);
    m_filter->Reveal(row.index());
}

bool DockTerTypes::ExportAll() const
{
    return List()->ExportAll();
}

bool DockTerTypes::ExportChecked() const
{
    return List()->ExportChecked();
}

void DockTerTypes::ShowMode(SceneMode mode)
{
    m_ui->btnToggleZoneInsert->setChecked(mode == SceneMode::Insert);
    m_ui->btnToggleZoneSelect->setChecked(mode == SceneMode::Select);
    m_ui->btnToggleQueryTer->setChecked(mode == SceneMode::Query);
}

void DockTerTypes::ClearSelection()
{
    if (m_scene) {
        m_scene->clearSelection();
    }
    m_ui->treeTerTypes->selectionModel()->clear();
}

void DockTerTypes::SetSelectionControlsEnabled(bool isEnabled)
{
    m_ui->btnZoneDelete->setEnabled(isEnabled);
    m_ui->btnZoneCopy->setEnabled(isEnabled);
}

void DockTerTypes::Selection(const QModelIndex& current, const QModelIndex& previous)
{
    m_document.SetCurrentTerritory(nullptr);
    if (m_scene) {
        m_scene->clearSelection();
    }
    List()->UpdateVisibility();
    m_ui->btnToggleQueryTer->setEnabled(true);
    if (Territory* left = TerritoryAt(previous)) {
        left->SetZonesEditable(false);
    }
    if (Territory* territory = TerritoryAt(current)) {
        ShowTerritoryRow(territory);
    } else if (TerritoryType* type = TypeAt(current)) {
        ShowTypeRow(type);
    } else {
        ShowNoRow();
    }
}

void DockTerTypes::ShowTerritoryRow(Territory* territory)
{
    m_document.SetCurrentTerritory(territory);
    m_ui->actionAdd->setEnabled(false);
    m_ui->btnToggleZoneSelect->setEnabled(true);
    m_ui->btnToggleZoneInsert->setEnabled(true);
    territory->SetZonesEditable(true);
    territory->SetVisible(true);
    if (m_props) {
        m_props->ShowTerritory(territory);
    }
    emit Selected(territory);
}

void DockTerTypes::ShowTypeRow(TerritoryType* type)
{
    m_ui->actionAdd->setEnabled(true);
    m_ui->btnToggleZoneSelect->setEnabled(false);
    m_ui->btnToggleZoneInsert->setEnabled(false);
    if (m_props) {
        m_props->ShowType(type);
    }
    emit Selected(nullptr);
    Leave(m_ui->btnToggleZoneSelect, &DockTerTypes::SelectClicked);
    Leave(m_ui->btnToggleZoneInsert, &DockTerTypes::InsertClicked);
}

void DockTerTypes::ShowNoRow()
{
    m_ui->actionAdd->setEnabled(false);
    m_ui->btnToggleZoneSelect->setEnabled(false);
    m_ui->btnToggleZoneInsert->setEnabled(false);
    if (m_props) {
        m_props->ShowTerritory(nullptr);
    }
    emit Selected(nullptr);
    Leave(m_ui->btnToggleZoneSelect, &DockTerTypes::SelectClicked);
    Leave(m_ui->btnToggleZoneInsert, &DockTerTypes::InsertClicked);
    Leave(m_ui->btnToggleQueryTer, &DockTerTypes::QueryClicked);
}

void DockTerTypes::Leave(QPushButton* button, ModeSignal changed)
{
    if (button->isChecked()) {
        button->setChecked(false);
        emit(this->*changed)(false);
    }
}

void DockTerTypes::DataChanged(const QModelIndex& index, const QVector<int>& roles)
{
    if (roles.contains(Qt::CheckStateRole)) {
        m_document.NoteChange();
        Changed(List()->model()->itemFromIndex(index));
    } else if (roles.contains(Qt::DisplayRole)) {
        m_document.NoteChange();
        ShowName(index);
    }
}

void DockTerTypes::ShowName(const QModelIndex& renamed)
{
    if (!m_props || renamed != m_ui->treeTerTypes->currentIndex()) {
        return;
    }
    if (Territory* territory = TerritoryAt(renamed)) {
        m_props->ShowTerritory(territory);
    } else {
        m_props->ShowType(TypeAt(renamed));
    }
}

void DockTerTypes::Changed(QStandardItem* item)
{
    if (item) {
        m_document.FollowCheckMark(*item);
    }
}

void DockTerTypes::RowsAboutToBeRemoved(const QModelIndex& parent, int first, int last)
{
    // When a type is removed, the selection model does not report that its current child row goes
    // too.
    const QModelIndex type = m_ui->treeTerTypes->currentIndex().parent();
    if (!parent.isValid() && type.isValid() && type.row() >= first && type.row() <= last) {
        m_ui->treeTerTypes->selectionModel()->clear();
    }
}

void DockTerTypes::ContextMenu(const QPoint& pos)
{
    const QModelIndex index = m_ui->treeTerTypes->indexAt(pos);
    if (!index.isValid()) {
        return;
    }
    m_ui->treeTerTypes->setCurrentIndex(index);
    QMenu menu(this);
    const bool isType = TypeAt(index) != nullptr;
    if (isType) {
        menu.addAction(m_ui->actionAdd);
    }
    menu.addAction(m_ui->actionRename);
    menu.addAction(m_ui->actionRemove);
    if (isType) {
        menu.addSeparator();
        menu.addAction(m_ui->actionExport);
    }
    menu.exec(m_ui->treeTerTypes->viewport()->mapToGlobal(pos));
}

void DockTerTypes::Select(Territory* territory)
{
    if (!territory || territory->model() != List()->model()) {
        return;
    }
    const QModelIndex index = territory->index();
    if (index == m_ui->treeTerTypes->currentIndex()) {
        Selection(index, {});
    } else {
        m_ui->treeTerTypes->setCurrentIndex(index);
    }
    SelectMode(true);
}

void DockTerTypes::AddTerritoryType()
{
    m_document.Do(Edits::AddType(*List(), std::make_unique<TerritoryType>()));
    m_filter->Reveal(List()->model()->index(List()->model()->rowCount() - 1, 0));
}

void DockTerTypes::AddTerritory()
{
    const QModelIndex index = m_ui->treeTerTypes->currentIndex();
    if (TerritoryType* type = TypeAt(index)) {
        m_document.Do(Edits::AddTerritory(*type, std::make_unique<Territory>()));
        m_ui->treeTerTypes->expand(index);
        m_filter->Reveal(type->child(type->rowCount() - 1)->index());
    }
}

void DockTerTypes::Rename()
{
    const QModelIndex index = m_ui->treeTerTypes->currentIndex();
    if (index.isValid()) {
        m_ui->treeTerTypes->edit(index);
    }
}

void DockTerTypes::Remove()
{
    const QModelIndex index = m_ui->treeTerTypes->currentIndex();
    if (!index.isValid()) {
        return;
    }
    if (Territory* territory = TerritoryAt(index)) {
        m_document.Do(Edits::RemoveTerritory(*territory));
    } else if (TerritoryType* type = TypeAt(index)) {
        m_document.Do(Edits::RemoveType(*type));
    }
}

void DockTerTypes::Export()
{
    const TerritoryType* type = TypeAt(m_ui->treeTerTypes->currentIndex());
    if (!type) {
        return;
    }
    const QString name = type->text();
    if (type->Export()) {
        LogSuccess(QStringLiteral("%1 successfully exported.").arg(name));
    }
}

void DockTerTypes::InsertMode(bool isOn)
{
    SetMode(m_ui->btnToggleZoneInsert, &DockTerTypes::InsertClicked, isOn);
}

void DockTerTypes::SelectMode(bool isOn)
{
    SetMode(m_ui->btnToggleZoneSelect, &DockTerTypes::SelectClicked, isOn);
}

void DockTerTypes::QueryMode(bool isOn)
{
    SetMode(m_ui->btnToggleQueryTer, &DockTerTypes::QueryClicked, isOn);
}

void DockTerTypes::SetMode(QPushButton* button, ModeSignal changed, bool isOn)
{
    if (isOn && !button->isEnabled()) {
        return;
    }
    if (isOn) {
        ShowMode(SceneMode::None);
    }
    button->setChecked(isOn);
    emit(this->*changed)(isOn);
}

void DockTerTypes::CopySelection()
{
    Territory* source = m_document.CurrentTerritory();
    const QVector<Zone*> zones = m_scene ? m_scene->SelectedZones() : QVector<Zone*>();
    if (!source || zones.isEmpty()) {
        return;
    }
    const TerritoryType* type = source->GetType();
    m_document.Do(Edits::CopyToNewTerritory(*source, zones));
    m_scene->clearSelection();
    ShowNew(*type->child(type->rowCount() - 1));
}
