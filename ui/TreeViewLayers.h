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
    /// True while a row is being moved. The row is taken out and inserted again, so the current row
    /// is meaningless then.
    bool IsMoving() const { return m_isMoving; }

signals:
    /// The layer was moved to another row and is the current one.
    void Moved(Layer* layer);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void MoveTo(int targetRow, Layer* layer);

    LayerList* m_list = nullptr;
    bool m_isMoving = false;
};
