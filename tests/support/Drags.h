#pragma once

#include <QPoint>

class QAbstractItemView;

/// Drags over the view and drops there, in pixels of its viewport, as a drag that allows moving.
/// Whether the view accepted the drop.
bool DropAt(QAbstractItemView& view, QPoint position);

/// Drags the source row with the pressed mouse onto the middle of the target row, all the way
/// through the window system's drag. The view's window is shown and active.
void DragRowByMouse(QAbstractItemView& view, int sourceRow, int targetRow);

/// Selects the source row with the mouse and drops it on the middle of the target row.
bool DragRow(QAbstractItemView& view, int sourceRow, int targetRow);
