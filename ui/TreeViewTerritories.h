#pragma once

#include <QTreeView>

/// The tree of territory types and territories. Dropping moves nothing: the dragged row stays where
/// it was, and at most the row under the mouse is highlighted.
class TreeViewTerritories : public QTreeView
{
    Q_OBJECT

public:
    explicit TreeViewTerritories(QWidget* parent = nullptr);

protected:
    void dropEvent(QDropEvent* event) override;
};
