#pragma once

#include "app/RowModel.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

class Layer;
struct LayerRecord;
class QIODevice;
class QStandardItem;
class QXmlStreamReader;
class QXmlStreamWriter;

/// Gives the mask of a layer that is read: that of the layer's "layer" element, counted from 0,
/// with the layer's name. Null when there is none. A layer without a mask of the layer size is left
/// out.
using MaskSource = std::function<QImage(int number, const QString& name)>;

/// The mask in the bitmap of that name in the project's "layers" folder. Logs errors in the file,
/// and a name that leads out of the folder.
QImage LoadProjectMask(int number, const QString& name);
/// Why LoadProjectMask gives no mask for that name, as a sentence about the bitmap.
QString WhyNoProjectMask(const QString& name);

/// Writes the "layers" element, and nothing when there is no layer. Touches no bitmap.
void WriteLayers(QXmlStreamWriter& xml, const std::vector<LayerRecord>& layers);

/// The layers of the open project. The rows of its model are the layers, in the order in which they
/// are listed, saved and stacked. The model owns them: removing a row destroys its layer.
class LayerList : public QObject
{
    Q_OBJECT

public:
    explicit LayerList(QObject* parent = nullptr);
    ~LayerList() override;

    /// For the views.
    RowModel* model() const { return m_model; }

    /// What the row of a layer shows for Qt::DecorationRole and Qt::ToolTipRole; an invalid value
    /// leaves the decoration to the layer, which shows its colour, and gives no tool tip. It is
    /// asked whenever a view asks, and is no part of the project.
    using RowMarks = std::function<QVariant(const Layer& layer, int role)>;
    void SetRowMarks(const RowMarks& marks) { m_rowMarks = marks; }
    QVariant RowMark(const Layer& layer, int role) const;
    /// Makes views ask again. Null means all layers.
    void RepaintMarks(const Layer* layer) const;

    bool IsEmpty() const;
    /// All layers in row order; other rows are skipped.
    QVector<Layer*> Layers() const;
    /// Null if there is no such row, or no layer in it.
    Layer* LayerAt(int row) const;
    /// Null if there is no such layer.
    Layer* LayerById(int id) const;
    /// The first layer of this name in row order, or null.
    Layer* LayerByName(const QString& name) const;
    void VisibleLayers(QHash<int, Layer*>& out) const;

    /// Appends the layer and takes ownership. Returns false and takes nothing if the layer is null,
    /// has no image or belongs to another model or item. Returns true if it is already in the list.
    bool AddLayer(Layer* layer);
    /// The same, but a refused layer is destroyed.
    bool AddLayer(std::unique_ptr<Layer> layer);
    /// Destroys the layer. An unknown id is ignored.
    void RemoveLayer(int id);
    /// As AddLayer, for another place than the end: the layer becomes that row, or the last one.
    bool InsertLayer(int row, std::unique_ptr<Layer> layer);
    /// Takes the layer out of the list; null when it is not in it.
    std::unique_ptr<Layer> TakeLayer(Layer& layer);
    /// Makes the layer the given row of the list without it.
    void MoveLayer(Layer& layer, int row);
    /// Destroys all layers.
    void Clear();
    void HideAll();
    /// Sets the flags of all layers to 0.
    void ResetFlags();

    /// Reads the "layers" element and the masks of its layers; the reader must be on the start tag.
    /// A layer without a mask is left out. Returns false if the reader has an error.
    bool ReadXml(QXmlStreamReader& xml, const MaskSource& masks = LoadProjectMask);
    /// What the project's document holds of the layers, in row order.
    std::vector<LayerRecord> Records() const;
    /// The names that a save gives to the layers and to their bitmaps, in row order: layers whose
    /// bitmaps would overwrite one another or lie outside of the folder get new ones.
    QStringList NamesForSaving() const;
    /// Calls rename(layer, name) for each layer that a save gives another name, with a logged
    /// error.
    void RenameForSaving(const std::function<void(Layer&, const QString&)>& rename) const;
    /// The names of the layers that were left out since the list was cleared.
    const QStringList& LeftOut() const { return m_leftOut; }
    /// Writes the "layers" element and every layer's bitmap. Writes nothing for an empty list.
    /// Layers first get the names of NamesForSaving. Returns how many bitmaps could not be written.
    int WriteXml(QXmlStreamWriter& xml);

    /// Writes the binary area map of all layers, visible or not. Logs its progress and its result,
    /// except for failed writes, which the callers report.
    bool SaveMap(const QString& path) const;
    /// Adds a white, hidden layer for each known area flag type that is set somewhere in the map,
    /// and sets the project's sizes to those of the map. Returns false if the device reports an
    /// error, or if there are more flag types than a map can hold.
    bool ImportMap(QIODevice& device);

signals:
    /// The user showed or hid the layer.
    void ItemChanged(Layer* layer);

private slots:
    void FollowCheckState(QStandardItem* item);

private:
    bool Insert(int row, Layer* layer);

    RowModel* m_model;
    RowMarks m_rowMarks;
    QStringList m_leftOut;
};
