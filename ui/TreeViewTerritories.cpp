#include "ui/TreeViewTerritories.h"

#include <QDropEvent>

TreeViewTerritories::TreeViewTerritories(QWidget* parent)
    : QTreeView(parent)
{
}

void TreeViewTerritories::dropEvent(QDropEvent* event)
{
    const QModelIndexList rows = selectedIndexes();
    const int row = rows.isEmpty() ? -1 : rows.first().row();
    const QModelIndex target = indexAt(event->pos());
    // Rows with the same number count as the same row, even below different types.
    if (target.isValid() && row >= 0 && target.row() != row) {
        selectionModel()->select(target,
                                 QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
    // If the event is not accepted, the drag does not remove the source row.
    event->ignore();
    stopAutoScroll();
    setState(NoState);
    viewport()->update();
}
