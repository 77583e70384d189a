#pragma once

#include <QTreeView>

/// The tree of territory types and their territories. A drop moves nothing; where drops are
/// switched on, it selects the row that it hits.
class TreeViewTerritories : public QTreeView
{
    Q_OBJECT

public:
    explicit TreeViewTerritories(QWidget* parent = nullptr);

protected:
    void dropEvent(QDropEvent* event) override;
};
