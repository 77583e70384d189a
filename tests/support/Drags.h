#pragma once

#include <QList>
#include <QPoint>
#include <QUrl>

class QAbstractItemView;
class QWidget;

/// Sends a drag that allows moving, and a drop, at a pixel of the view's viewport. Returns whether
/// the view accepted the drop.
bool DropAt(QAbstractItemView& view, QPoint position);

/// Drags the links over the middle of the widget and drops them there, as the window system does
/// for the widget's window. Returns the action that the drop was accepted with, Qt::IgnoreAction
/// for none.
Qt::DropAction DropLinks(QWidget& widget, const QList<QUrl>& links);

/// Drags the source row with the mouse onto the middle of the target row, through the window
/// system's drag and drop. The view's window must be shown and active.
void DragRowByMouse(QAbstractItemView& view, int sourceRow, int targetRow);

/// Selects the source row with the mouse and drops it on the middle of the target row.
bool DragRow(QAbstractItemView& view, int sourceRow, int targetRow);
