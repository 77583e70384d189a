#include "ui/DockLayers.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "ui/DialogCustomLayer.h"
#include "ui/DockLayerProps.h"
#include "ui_DockLayers.h"

#include <QMenu>
#include <QStandardItemModel>

DockLayers::DockLayers(DockLayerProps* props, QWidget* parent)
    : QDockWidget(parent)
    , m_ui(std::make_unique<Ui::DockLayers>())
    , m_props(props)
    , m_list(std::make_unique<LayerList>())
{
    m_ui->setupUi(this);
    TreeViewLayers* tree = m_ui->treeLayers;
    tree->SetList(m_list.get());
    tree->setSelectionMode(QAbstractItemView::SingleSelection);
    tree->setDragEnabled(true);
    tree->setAcceptDrops(true);
    tree->setDropIndicatorShown(true);
    tree->setDragDropMode(QAbstractItemView::InternalMove);
    tree->addAction(m_ui->actionRename);
    Connect();
}

DockLayers::~DockLayers()
{
    // The list is destroyed before the tree. Its rows are then removed one by one, and their
    // signals must not arrive here.
    m_ui->treeLayers->selectionModel()->disconnect(this);
    m_list->model()->disconnect(this);
}

void DockLayers::Connect()
{
    connect(m_ui->btnAddCustom, &QPushButton::clicked, this, &DockLayers::AddCustom);
    connect(m_ui->btnAddPainted, &QPushButton::clicked, this, &DockLayers::AddPainted);
    connect(m_ui->btnHideAll, &QPushButton::clicked, this, &DockLayers::HideAll);
    connect(m_ui->actionModify, &QAction::triggered, this, &DockLayers::Modify);
    connect(m_ui->actionRename, &QAction::triggered, this, &DockLayers::Rename);
    connect(m_ui->actionRemove, &QAction::triggered, this, &DockLayers::Remove);
    connect(m_ui->treeLayers, &QWidget::customContextMenuRequested, this, &DockLayers::ContextMenu);
    connect(m_ui->treeLayers->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &DockLayers::Selection);
    connect(m_ui->treeLayers, &TreeViewLayers::Moved, this, &DockLayers::FollowMove);
    connect(m_list.get(), &LayerList::ItemChanged, this, &DockLayers::Checked);
    const QStandardItemModel* model = m_list->model();
    connect(model, &QAbstractItemModel::rowsInserted, this, &DockLayers::UpdateHideAll);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &DockLayers::UpdateHideAll);
    connect(model, &QAbstractItemModel::modelReset, this, &DockLayers::UpdateHideAll);
    connect(model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex&, const QModelIndex&, const QVector<int>& roles) {
                FollowRename(roles);
            });
}

bool DockLayers::HasLayers() const
{
    return !m_list->IsEmpty();
}

void DockLayers::UpdateHideAll()
{
    m_ui->btnHideAll->setEnabled(HasLayers());
}

Layer* DockLayers::SelectRow(int row)
{
    Layer* layer = m_list->LayerAt(row);
    if (layer) {
        SelectItem(layer);
    }
    return layer;
}

void DockLayers::SelectItem(QStandardItem* item)
{
    if (item) {
        m_ui->treeLayers->setCurrentIndex(item->index());
    }
}

bool DockLayers::SaveMap(const QString& path)
{
    const bool isSaved = m_list->SaveMap(path);
    if (!isSaved) {
        LogError(QStringLiteral("Failed to save binary map to file '%1'.").arg(path));
    }
    return isSaved;
}

bool DockLayers::ReadXml(QXmlStreamReader& xml)
{
    return m_list->ReadXml(xml);
}

int DockLayers::WriteXml(QXmlStreamWriter& xml)
{
    return m_list->WriteXml(xml);
}

void DockLayers::Clear()
{
    m_list->Clear();
    m_props->SetLayer(nullptr, false);
}

Layer* DockLayers::CurrentLayer() const
{
    const QModelIndex current = m_ui->treeLayers->currentIndex();
    return current.isValid() ? m_list->LayerById(current.data(Qt::UserRole).toInt()) : nullptr;
}

void DockLayers::AddCustom(bool /*checked*/)
{
    DialogCustomLayer dialog(m_list.get(), nullptr, this);
    if (dialog.exec() == QDialog::Accepted && dialog.CreatedLayer()) {
        UpdateHideAll();
        ProjectSettings::Instance().modified = true;
        emit Added(dialog.CreatedLayer());
    }
}

void DockLayers::AddPainted(bool /*checked*/)
{
    const QImage image = ProjectSettings::Instance().BlankLayerImage();
    if (image.isNull()) {
        LogError(QStringLiteral("There is no layer size or no memory for a new layer."));
        return;
    }
    auto layer = std::make_unique<Layer>(0, 0, m_list.get());
    layer->SetImage(image, Qt::white);
    Layer* added = layer.get();
    if (m_list->AddLayer(std::move(layer))) {
        UpdateHideAll();
        ProjectSettings::Instance().modified = true;
        emit Added(added);
    }
}

void DockLayers::HideAll(bool /*checked*/)
{
    m_ui->treeLayers->selectionModel()->clear();
    m_list->HideAll();
    ProjectSettings::Instance().modified = true;
    emit AllHidden();
}

void DockLayers::Selection(const QModelIndex& current, const QModelIndex& /*previous*/)
{
    if (m_ui->treeLayers->IsMoving()) {
        return;
    }
    Layer* layer =
        current.isValid() ? m_list->LayerById(current.data(Qt::UserRole).toInt()) : nullptr;
    m_props->SetLayer(layer, false);
    if (layer) {
        emit Selected(layer);
    }
}

void DockLayers::ContextMenu(const QPoint& point)
{
    if (!m_ui->treeLayers->indexAt(point).isValid()) {
        return;
    }
    QMenu menu(this);
    menu.addAction(m_ui->actionModify);
    menu.addAction(m_ui->actionRemove);
    menu.exec(m_ui->treeLayers->viewport()->mapToGlobal(point));
}

void DockLayers::Modify(bool /*checked*/)
{
    const Tracked<Layer> layer(CurrentLayer());
    if (!layer) {
        return;
    }
    const QString oldName = layer->text();
    const quint64 oldRevision = layer->PictureRevision();
    DialogCustomLayer(m_list.get(), layer, this).exec();
    if (!layer) {
        return;
    }
    // The dialog is accepted even if it could not compute the layer. The layer has not changed
    // then.
    if (layer->text() != oldName || layer->PictureRevision() != oldRevision) {
        ProjectSettings::Instance().modified = true;
    }
    emit Modified(layer);
}

void DockLayers::Rename(bool /*checked*/)
{
    const QModelIndex current = m_ui->treeLayers->currentIndex();
    if (current.isValid()) {
        m_ui->treeLayers->edit(current);
    }
}

void DockLayers::Remove(bool /*checked*/)
{
    const Layer* layer = CurrentLayer();
    if (!layer) {
        return;
    }
    const int id = layer->Id();
    m_list->RemoveLayer(id);
    UpdateHideAll();
    ProjectSettings::Instance().modified = true;
    emit Removed(id);
}

void DockLayers::FollowRename(const QVector<int>& roles)
{
    if (roles.contains(Qt::EditRole)) {
        ProjectSettings::Instance().modified = true;
    }
}

void DockLayers::FollowMove(Layer* layer)
{
    ProjectSettings::Instance().modified = true;
    m_props->SetLayer(layer, false);
    emit Selected(layer);
    emit Reordered();
}
