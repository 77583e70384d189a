#include "ui/TreeViewLayers.h"

#include "layers/Layer.h"
#include "layers/LayerList.h"

#include <QDropEvent>

#include <algorithm>

TreeViewLayers::TreeViewLayers(QWidget* parent)
    : QTreeView(parent)
{
}

void TreeViewLayers::SetList(LayerList* list)
{
    m_list = list;
    setModel(list->model());
}

/// The base class would fill the editor of the row anew, whatever changed.
void TreeViewLayers::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                                 const QVector<int>& roles)
{
    const bool isLookOnly =
        !roles.isEmpty() && std::none_of(roles.begin(), roles.end(), [](int role) {
            return role == Qt::DisplayRole || role == Qt::EditRole || role == Qt::CheckStateRole;
        });
    if (isLookOnly) {
        viewport()->update();
    } else {
        QTreeView::dataChanged(topLeft, bottomRight, roles);
    }
}

/// Without a current row, the base class would make the first row current when the view gets the
/// focus. Setting an invalid index explicitly prevents that, because the user is to choose which
/// layer is painted.
void TreeViewLayers::focusInEvent(QFocusEvent* event)
{
    if (!currentIndex().isValid()) {
        setCurrentIndex(QModelIndex());
    }
    QTreeView::focusInEvent(event);
}

/// The base class would let the model move the row's data, which would destroy the layer. The event
/// is not accepted, because a view removes rows whose drag was accepted as a move.
void TreeViewLayers::dropEvent(QDropEvent* event)
{
    event->setDropAction(Qt::IgnoreAction);
    event->ignore();
    stopAutoScroll();
    setState(NoState);
    viewport()->update();
    const QModelIndexList selected = selectionModel()->selectedRows(0);
    const QModelIndex target = indexAt(event->pos());
    if (!m_list || selected.isEmpty() || !target.isValid()) {
        return;
    }
    const int sourceRow = selected.first().row();
    if (sourceRow < 0 || target.row() < 0 || sourceRow == target.row()) {
        return;
    }
    const uint id = selected.first().data(Qt::UserRole).toUInt();
    if (Layer* layer = m_list->LayerById(static_cast<int>(id))) {
        emit Moved(layer, target.row());
    }
}
