#pragma once

#include <QPoint>

class QAbstractItemView;

/// Drags over the view and drops there, in pixels of its viewport, as a drag that allows moving.
/// Whether the view accepted the drop.
bool DropAt(QAbstractItemView& view, QPoint position);

/// Selects the source row with the mouse and drops it on the middle of the target row.
bool DragRow(QAbstractItemView& view, int sourceRow, int targetRow);
