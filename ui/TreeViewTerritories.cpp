#include "ui/TreeViewTerritories.h"

#include <QDropEvent>

TreeViewTerritories::TreeViewTerritories(QWidget* parent)
    : QTreeView(parent)
{
}

void TreeViewTerritories::dropEvent(QDropEvent* event)
{
    // A view removes rows whose drag was accepted as a move.
    event->setDropAction(Qt::IgnoreAction);
    event->ignore();
    stopAutoScroll();
    setState(NoState);
    viewport()->update();
    const QModelIndexList selected = selectionModel()->selectedRows(0);
    const QModelIndex target = indexAt(event->pos());
    if (selected.isEmpty() || !target.isValid()) {
        return;
    }
    const int sourceRow = selected.first().row();
    if (sourceRow >= 0 && target.row() >= 0 && sourceRow != target.row()) {
        selectionModel()->clearSelection();
        selectionModel()->select(target, QItemSelectionModel::Select);
    }
}
