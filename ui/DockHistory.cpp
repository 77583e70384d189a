#include "ui/DockHistory.h"

#include "document/Document.h"

#include <QUndoView>

DockHistory::DockHistory(Document& document, QWidget* parent)
    : QDockWidget(tr("History"), parent)
{
    setObjectName(QStringLiteral("DockHistory"));
    auto* view = new QUndoView(&document.History(), this);
    view->setObjectName(QStringLiteral("viewHistory"));
    view->setEmptyLabel(tr("As opened"));
    view->setEnabled(document.CanTravel());
    setWidget(view);
    connect(&document, &Document::HistoryChanged, view,
            [view, &document] { view->setEnabled(document.CanTravel()); });
}
