#pragma once

#include <QTreeView>

/// The tree of territory types and territories. Nothing is moved by dropping: a row that is dropped
/// onto another one stays where it was, and at most the other one is highlighted.
class TreeViewTerritories : public QTreeView
{
    Q_OBJECT

public:
    explicit TreeViewTerritories(QWidget* parent = nullptr);

protected:
    void dropEvent(QDropEvent* event) override;
};
