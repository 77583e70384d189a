#pragma once

#include <QTreeView>
#include <QVector>

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

    /// Changes that only concern how a row looks leave a name that is being typed alone.
    void dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                     const QVector<int>& roles = QVector<int>()) override;

signals:
    /// The user dragged the layer to the row, as counted without it.
    void Moved(Layer* layer, int row);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    LayerList* m_list = nullptr;
};
