#include "ui/DockLayers.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/edits/LayerEdits.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "ui/DialogCustomLayer.h"
#include "ui/DockLayerProps.h"
#include "ui/RowFilter.h"
#include "ui_DockLayers.h"

#include <QMenu>
#include <QScopedValueRollback>

DockLayers::DockLayers(Document& document, DockLayerProps* props, QWidget* parent)
    : QDockWidget(parent)
    , m_document(document)
    , m_ui(std::make_unique<Ui::DockLayers>())
    , m_props(props)
{
    m_ui->setupUi(this);
    TreeViewLayers* tree = m_ui->treeLayers;
    tree->SetList(List());
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
    m_ui->treeLayers->selectionModel()->disconnect(this);
    List()->model()->disconnect(this);
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
    connect(m_ui->treeLayers, &TreeViewLayers::Moved, this, &DockLayers::MoveTo);
    connect(List(), &LayerList::ItemChanged, this, &DockLayers::Checked);
    const RowModel* model = List()->model();
    connect(model, &QAbstractItemModel::rowsInserted, this, &DockLayers::UpdateHideAll);
    connect(model, &QAbstractItemModel::rowsRemoved, this, &DockLayers::UpdateHideAll);
    connect(model, &QAbstractItemModel::modelReset, this, &DockLayers::UpdateHideAll);
    m_filter = new RowFilter(*m_ui->treeLayers, *m_ui->txtLayerFilter);
    connect(&m_document, &Document::AboutToClear, m_ui->txtLayerFilter, &QLineEdit::clear);
}

void DockLayers::FocusFilter()
{
    m_filter->Focus();
}

LayerList* DockLayers::List() const
{
    return &m_document.Layers();
}

bool DockLayers::HasLayers() const
{
    return !List()->IsEmpty();
}

void DockLayers::UpdateHideAll()
{
    m_ui->btnHideAll->setEnabled(HasLayers());
}

Layer* DockLayers::SelectRow(int row)
{
    Layer* layer = List()->LayerAt(row);
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

void DockLayers::ShowNew(Layer& layer)
{
    m_document.SetCurrentLayer(&layer);
    SelectItem(&layer);
    Reveal(layer);
}

void DockLayers::Reveal(const Layer& layer)
{
    m_filter->Reveal(layer.index());
}

void DockLayers::MoveCurrent(bool isUp)
{
    Layer* layer = m_document.CurrentLayer();
    if (!layer) {
        return;
    }
    const int step = isUp ? -1 : 1;
    const int count = List()->model()->rowCount();
    int row = layer->row() + step;
    while (row >= 0 && row < count && m_ui->treeLayers->isRowHidden(row, {})) {
        row += step;
    }
    if (row >= 0 && row < count) {
        MoveTo(layer, row);
        m_ui->treeLayers->scrollTo(layer->index());
    }
}

bool DockLayers::SaveMap(const QString& path)
{
    const bool isSaved = List()->SaveMap(path);
    if (!isSaved) {
        LogError(QStringLiteral("Failed to save binary map to file '%1'.").arg(path));
    }
    return isSaved;
}

Layer* DockLayers::CurrentLayer() const
{
    const QModelIndex current = m_ui->treeLayers->currentIndex();
    return current.isValid() ? List()->LayerById(current.data(Qt::UserRole).toInt()) : nullptr;
}

void DockLayers::AddCustom(bool /*checked*/)
{
    DialogCustomLayer dialog(m_document, nullptr, this);
    if (dialog.exec() == QDialog::Accepted && dialog.CreatedLayer()) {
        UpdateHideAll();
        m_filter->Reveal(dialog.CreatedLayer()->index());
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
    if (!m_document.Do(Edits::AddPaintedLayer(*List(), image))) {
        return;
    }
    UpdateHideAll();
    Layer* layer = List()->LayerAt(List()->model()->rowCount() - 1);
    m_filter->Reveal(layer->index());
    emit Added(layer);
}

void DockLayers::HideAll(bool /*checked*/)
{
    m_ui->treeLayers->selectionModel()->clear();
    m_document.SetSoloLayer(nullptr);
    m_document.Do(Edits::HideAllLayers(*List()));
    emit AllHidden();
}

void DockLayers::Selection(const QModelIndex& current, const QModelIndex& /*previous*/)
{
    if (m_isMoving) {
        return;
    }
    Layer* layer =
        current.isValid() ? List()->LayerById(current.data(Qt::UserRole).toInt()) : nullptr;
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
    const QString why = m_document.WhyPixelsStay(*layer);
    if (!why.isEmpty()) {
        LogInfo(why);
        return;
    }
    DialogCustomLayer(m_document, layer, this).exec();
    if (layer) {
        emit Modified(layer);
    }
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
    Layer* layer = CurrentLayer();
    if (!layer) {
        return;
    }
    const int id = layer->Id();
    m_document.Do(Edits::RemoveLayer(*layer));
    UpdateHideAll();
    emit Removed(id);
}

void DockLayers::MoveTo(Layer* layer, int row)
{
    {
        const QScopedValueRollback<bool> moving(m_isMoving, true);
        m_document.Do(Edits::MoveLayer(*layer, row));
        SelectItem(layer);
    }
    m_props->SetLayer(layer, false);
    emit Selected(layer);
    emit Reordered();
}
