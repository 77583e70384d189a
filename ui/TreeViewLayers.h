#pragma once

#include <QTreeView>

class Layer;
class LayerList;

/// The list of layers, whose rows the user can reorder by dragging them.
class TreeViewLayers : public QTreeView
{
    Q_OBJECT

public:
    explicit TreeViewLayers(QWidget* parent = nullptr);

    /// Shows the list, which outlives the view.
    void SetList(LayerList* list);

signals:
    /// The user dragged the layer to the row, as counted without it.
    void Moved(Layer* layer, int row);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    LayerList* m_list = nullptr;
};
