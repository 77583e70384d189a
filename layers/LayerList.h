#pragma once

#include <QHash>
#include <QObject>
#include <QVector>

#include <memory>

class Layer;
class QIODevice;
class QStandardItem;
class QStandardItemModel;
class QXmlStreamReader;
class QXmlStreamWriter;

/// The layers of the open project. The rows of its model are the layers, in the order in which they
/// are listed, saved and stacked; the model owns them, and a layer dies with its row.
class LayerList : public QObject
{
    Q_OBJECT

public:
    explicit LayerList(QObject* parent = nullptr);
    ~LayerList() override;

    /// For the views.
    QStandardItemModel* model() const { return m_model; }

    bool IsEmpty() const;
    /// All layers in row order; rows that are no layers are passed over.
    QVector<Layer*> Layers() const;
    /// Null when there is no such row, or no layer in it.
    Layer* LayerAt(int row) const;
    /// Null when there is none.
    Layer* LayerById(int id) const;
    /// The first in row order.
    Layer* LayerByName(const QString& name) const;
    void VisibleLayers(QHash<int, Layer*>& out) const;

    /// Appends the layer and takes it over. False, and nothing changes hands, for null, a layer
    /// without an image and one that another model or item owns; true without change for one that
    /// is in the list already.
    bool AddLayer(Layer* layer);
    /// The same for a caller that has no use for a refused layer: it is destroyed.
    bool AddLayer(std::unique_ptr<Layer> layer);
    /// Destroys the layer; an unknown id does nothing.
    void RemoveLayer(int id);
    /// Destroys all layers.
    void Clear();
    void HideAll();
    /// All flags of all layers become 0.
    void ResetFlags();

    /// Reads the "layers" element, whose start tag the reader stands on, and the bitmaps of its
    /// layers; a layer without a readable bitmap is left out. False when the reader has an error.
    bool ReadXml(QXmlStreamReader& xml);
    /// Writes the "layers" element and every layer's bitmap; nothing for an empty list. Layers
    /// whose bitmaps would be written over one another or elsewhere than into the folder are
    /// renamed first, with a logged error. Returns how many bitmaps could not be written.
    int WriteXml(QXmlStreamWriter& xml);

    /// Writes the binary area map of all layers, visible or not. Logs its progress and, except for
    /// failed writes, which its callers report, its result.
    bool SaveMap(const QString& path) const;
    /// Adds a white, hidden layer for each known area flag type that is set somewhere in the map,
    /// and takes the map's sizes as the project's. False when the device reports an error, or when
    /// there are more flag types than a map can hold.
    bool ImportMap(QIODevice& device);

signals:
    /// The user showed or hid the layer.
    void ItemChanged(Layer* layer);

private slots:
    void FollowCheckState(QStandardItem* item);

private:
    void RenameForSaving();

    QStandardItemModel* m_model;
};
