#include "layers/LayerList.h"

#include "app/Leftovers.h"
#include "app/Log.h"
#include "app/Names.h"
#include "app/ProjectSettings.h"
#include "app/Xml.h"
#include "layers/AreaMap.h"
#include "layers/Layer.h"
#include "layers/Targa.h"

#include <QSet>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <utility>

LayerList::LayerList(QObject* parent)
    : QObject(parent)
    , m_model(new RowModel)
{
    connect(m_model, &QStandardItemModel::itemChanged, this, &LayerList::FollowCheckState);
}

LayerList::~LayerList()
{
    Clear();
    m_model->deleteLater();
}

QVariant LayerList::RowMark(const Layer& layer, int role) const
{
    return m_rowMarks ? m_rowMarks(layer, role) : QVariant();
}

void LayerList::RepaintMarks(const Layer* layer) const
{
    const int last = m_model->rowCount() - 1;
    if (last >= 0) {
        emit m_model->dataChanged(m_model->index(layer ? layer->row() : 0, 0),
                                  m_model->index(layer ? layer->row() : last, 0),
                                  {Qt::DecorationRole, Qt::ToolTipRole});
    }
}

bool LayerList::IsEmpty() const
{
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (LayerAt(row)) {
            return false;
        }
    }
    return true;
}

QVector<Layer*> LayerList::Layers() const
{
    QVector<Layer*> layers;
    layers.reserve(m_model->rowCount());
    for (int row = 0; row < m_model->rowCount(); ++row) {
        if (Layer* layer = LayerAt(row)) {
            layers.append(layer);
        }
    }
    return layers;
}

Layer* LayerList::LayerAt(int row) const
{
    return dynamic_cast<Layer*>(m_model->item(row));
}

namespace {

template <typename Predicate>
Layer* FirstLayer(const LayerList& list, Predicate predicate)
{
    const QVector<Layer*> layers = list.Layers();
    const auto it = std::find_if(layers.begin(), layers.end(), predicate);
    return it == layers.end() ? nullptr : *it;
}

} // namespace

Layer* LayerList::LayerById(int id) const
{
    return FirstLayer(*this, [id](const Layer* layer) { return layer->Id() == id; });
}

Layer* LayerList::LayerByName(const QString& name) const
{
    return FirstLayer(*this, [&name](const Layer* layer) { return layer->text() == name; });
}

void LayerList::VisibleLayers(QHash<int, Layer*>& out) const
{
    const QVector<Layer*> layers = Layers();
    for (Layer* layer : layers) {
        if (layer->IsVisible()) {
            out.insert(layer->Id(), layer);
        }
    }
}

bool LayerList::AddLayer(Layer* layer)
{
    return Insert(m_model->rowCount(), layer);
}

bool LayerList::AddLayer(std::unique_ptr<Layer> layer)
{
    return InsertLayer(m_model->rowCount(), std::move(layer));
}

bool LayerList::InsertLayer(int row, std::unique_ptr<Layer> layer)
{
    const bool isAdded = Insert(row, layer.get());
    if (isAdded) {
        Q_UNUSED(layer.release())
    }
    return isAdded;
}

bool LayerList::Insert(int row, Layer* layer)
{
    if (!layer || layer->Image().isNull()) {
        return false;
    }
    if (layer->parent() || (layer->model() && layer->model() != m_model)) {
        return false;
    }
    if (!layer->model()) {
        m_model->insertRow(qBound(0, row, m_model->rowCount()), layer);
    }
    return true;
}

void LayerList::RemoveLayer(int id)
{
    if (Layer* layer = LayerById(id)) {
        TakeLayer(*layer);
    }
}

std::unique_ptr<Layer> LayerList::TakeLayer(Layer& layer)
{
    if (layer.model() != m_model) {
        return nullptr;
    }
    m_model->takeRow(layer.row());
    return std::unique_ptr<Layer>(&layer);
}

void LayerList::MoveLayer(Layer& layer, int row)
{
    if (layer.model() == m_model && layer.row() != row) {
        const QList<QStandardItem*> items = m_model->takeRow(layer.row());
        m_model->insertRow(qBound(0, row, m_model->rowCount()), items);
    }
}

void LayerList::Clear()
{
    m_model->removeRows(0, m_model->rowCount());
    m_model->clear();
    m_leftOut.clear();
}

void LayerList::HideAll()
{
    const QVector<Layer*> layers = Layers();
    for (Layer* layer : layers) {
        layer->SetVisible(false);
    }
}

void LayerList::ResetFlags()
{
    const QVector<Layer*> layers = Layers();
    for (Layer* layer : layers) {
        layer->SetUsageFlags(0);
        layer->SetValueFlags(0);
    }
}

void LayerList::FollowCheckState(QStandardItem* item)
{
    auto* layer = dynamic_cast<Layer*>(item);
    if (!layer) {
        return;
    }
    const bool isVisible = layer->checkState() == Qt::Checked;
    if (isVisible != layer->IsVisible()) {
        layer->SetVisible(isVisible);
        emit ItemChanged(layer);
    }
}

QImage LoadProjectMask(int number, const QString& name)
{
    Q_UNUSED(number)
    if (LeadsUpward(name)) {
        LogError(QStringLiteral("The bitmap of layer '%1' lies outside the project.").arg(name));
        return {};
    }
    const QString path = ProjectSettings::Instance().LayerPath(name);
    TidyFolderOf(path);
    return LoadTarga(path);
}

QString WhyNoProjectMask(const QString& name)
{
    if (LeadsUpward(name)) {
        return QStringLiteral("Its bitmap lies outside the project.");
    }
    return WhyNotLoaded(ProjectSettings::Instance().LayerPath(name));
}

namespace {

/// Reads the "layer" element that the reader is on. Returns null if it has no mask.
std::unique_ptr<Layer> ReadLayer(const QXmlStreamReader& xml, LayerList* list, int number,
                                 const MaskSource& masks)
{
    const LayerRecord record = LayerRecord::Read(xml);
    LogInfo(QStringLiteral("Loading layer \"%1\"...").arg(record.name));
    const QImage image = masks(number, record.name);
    if (image.isNull() || image.size() != ProjectSettings::Instance().LayerSize()) {
        return nullptr;
    }
    auto layer = std::make_unique<Layer>(record.usageFlags, record.valueFlags, list, record.name);
    layer->SetImage(image, QColor::fromRgba(record.color));
    layer->SetVisible(record.isVisible);
    return layer;
}

} // namespace

bool LayerList::ReadXml(QXmlStreamReader& xml, const MaskSource& masks)
{
    std::unique_ptr<Layer> pending;
    int number = 0;
    const XmlHandlers handlers = {
        {QLatin1String("layer"),
         [&](QXmlStreamReader& element) {
             pending = ReadLayer(element, this, number++, masks);
             if (!pending) {
                 m_leftOut.append(TextAttribute(element, QLatin1String("name")));
             }
             return true;
         },
         [&] { AddLayer(std::move(pending)); }},
    };
    WalkXml(xml, handlers, QLatin1String("layers"));
    return !xml.hasError();
}

QStringList LayerList::NamesForSaving() const
{
    const QVector<Layer*> layers = Layers();
    QSet<QString> taken;
    for (const Layer* layer : layers) {
        taken.insert(layer->text());
    }
    FreeNames freeNames(taken);
    QSet<QString> kept;
    QStringList names;
    for (const Layer* layer : layers) {
        const QString oldName = layer->text();
        const bool isKept = IsValidName(oldName) && !kept.contains(oldName);
        names.append(isKept ? oldName : freeNames.Take(ToValidName(oldName)));
        kept.insert(names.constLast());
    }
    return names;
}

void LayerList::RenameForSaving(const std::function<void(Layer&, const QString&)>& rename) const
{
    const QVector<Layer*> layers = Layers();
    const QStringList names = NamesForSaving();
    QStringList messages;
    for (int i = 0; i < layers.size(); ++i) {
        const QString oldName = layers[i]->text();
        if (names[i] != oldName) {
            rename(*layers[i], names[i]);
            messages.append(
                QStringLiteral(
                    "Layer '%1' cannot be saved under this name, it was renamed to '%2'.")
                    .arg(oldName, names[i]));
        }
    }
    for (const QString& message : qAsConst(messages)) {
        LogError(message);
    }
}

namespace {

/// Calls write() between the tags.
template <typename Write>
void WriteElement(QXmlStreamWriter& xml, Write write)
{
    xml.writeComment(QStringLiteral("Layers"));
    xml.writeStartElement(QStringLiteral("layers"));
    write();
    xml.writeEndElement();
}

} // namespace

void WriteLayers(QXmlStreamWriter& xml, const std::vector<LayerRecord>& layers)
{
    if (!layers.empty()) {
        WriteElement(xml, [&] {
            for (const LayerRecord& layer : layers) {
                layer.WriteStart(xml);
                xml.writeEndElement();
            }
        });
    }
}

std::vector<LayerRecord> LayerList::Records() const
{
    const QVector<Layer*> layers = Layers();
    std::vector<LayerRecord> records;
    records.reserve(static_cast<std::size_t>(layers.size()));
    for (const Layer* layer : layers) {
        records.push_back(layer->Record());
    }
    return records;
}

int LayerList::WriteXml(QXmlStreamWriter& xml)
{
    RenameForSaving([](Layer& layer, const QString& name) { layer.setText(name); });
    if (IsEmpty()) {
        return 0;
    }
    int failures = 0;
    WriteElement(xml, [&] {
        for (int row = 0; row < m_model->rowCount(); ++row) {
            if (const Layer* layer = LayerAt(row)) {
                failures += layer->WriteXml(xml) ? 0 : 1;
            }
        }
    });
    return failures;
}

bool LayerList::SaveMap(const QString& path) const
{
    return SaveAreaMap(*this, path);
}

bool LayerList::ImportMap(QIODevice& device)
{
    return ImportAreaMap(*this, device);
}
