#include "ui/TableViewZones.h"

#include <QHeaderView>
#include <QKeyEvent>

TableViewZones::TableViewZones(QWidget* parent)
    : QTableView(parent)
{
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(EditKeyPressed);
    setWordWrap(false);
    // The Tab key goes on to the next widget.
    setTabKeyNavigation(false);
    // Looking at thousands of rows for their heights takes seconds.
    constexpr int room = 6;
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + room);
    horizontalHeader()->setHighlightSections(false);
}

QSize TableViewZones::sizeHint() const
{
    constexpr QSize size(800, 160);
    return size;
}

/// Del is the shortcut of an action of the window, which does not know of rows.
bool TableViewZones::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Delete)) {
        event->accept();
        return true;
    }
    return QTableView::event(event);
}

void TableViewZones::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        emit CopyWanted();
    } else if (event->matches(QKeySequence::Paste)) {
        emit PasteWanted();
    } else if (event->matches(QKeySequence::Delete)) {
        emit RemoveWanted();
    } else {
        QTableView::keyPressEvent(event);
    }
}
