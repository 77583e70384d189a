#pragma once

#include <QTreeView>

class Layer;
class LayerList;

/// The list of layers, whose rows the user puts into another order by dragging them.
class TreeViewLayers : public QTreeView
{
    Q_OBJECT

public:
    explicit TreeViewLayers(QWidget* parent = nullptr);

    /// Shows the list, which outlives the view.
    void SetList(LayerList* list);
    /// A row is being moved. It is taken out and put in again, so meanwhile the current row means
    /// nothing.
    bool IsMoving() const { return m_isMoving; }

signals:
    /// The layer has a new row, and is the current one.
    void Moved(Layer* layer);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void MoveTo(int targetRow, Layer* layer);

    LayerList* m_list = nullptr;
    bool m_isMoving = false;
};
