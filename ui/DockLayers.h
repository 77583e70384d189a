#pragma once

#include <QDockWidget>

#include <memory>

class DockLayerProps;
class Document;
class Layer;
class LayerList;
class QStandardItem;
class RowFilter;

namespace Ui {
class DockLayers;
}

/// The dock that lists the project's layers: adds, renames, modifies, removes, hides and reorders
/// them.
class DockLayers : public QDockWidget
{
    Q_OBJECT

public:
    /// The project, and the dock that shows the selected layer, outlive this dock.
    DockLayers(Document& document, DockLayerProps* props, QWidget* parent = nullptr);
    ~DockLayers() override;
    Q_DISABLE_COPY(DockLayers)

    LayerList* List() const;
    bool HasLayers() const;
    /// Enables "hide all" if there is a layer, and disables it otherwise.
    void UpdateHideAll();
    /// Selects the layer and returns it. Returns null and changes nothing if there is no such row.
    Layer* SelectRow(int row);
    void SelectItem(QStandardItem* item);
    /// Makes a layer that has just been added the current one, which is no change of its own, and
    /// scrolls to it.
    void ShowNew(Layer& layer);
    /// Scrolls to the layer. A filter that hides it ends.
    void Reveal(const Layer& layer);
    /// Moves the current layer past the next row that is shown.
    void MoveCurrent(bool isUp);
    /// The field that hides the layers whose names do not hold its text.
    void FocusFilter();
    /// Logs an error if it fails.
    bool SaveMap(const QString& path);

signals:
    void Added(Layer* layer);
    /// The user showed or hid the layer.
    void Checked(Layer* layer);
    void Modified(Layer* layer);
    /// The layer with this id was removed.
    void Removed(int id);
    void Selected(Layer* layer);
    void AllHidden();
    /// The order of the layers has changed.
    void Reordered();

public slots:
    void AddCustom(bool checked = false);
    void AddPainted(bool checked = false);
    void HideAll(bool checked = false);
    void Selection(const QModelIndex& current, const QModelIndex& previous);
    /// In pixels of the tree's viewport.
    void ContextMenu(const QPoint& point);
    void Modify(bool checked = false);
    void Rename(bool checked = false);
    void Remove(bool checked = false);

private:
    void Connect();
    Layer* CurrentLayer() const;
    void MoveTo(Layer* layer, int row);

    Document& m_document;
    std::unique_ptr<Ui::DockLayers> m_ui;
    DockLayerProps* m_props;
    /// The tree owns it.
    RowFilter* m_filter = nullptr;
    /// The row of a layer is changing.
    bool m_isMoving = false;
};
