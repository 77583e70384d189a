#include "document/edits/Presence.h"

#include "document/Document.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

#include <QGraphicsScene>

std::unique_ptr<Layer> TakeOut(Document& document, Layer& layer)
{
    // Views make another layer the current one as the row goes.
    if (document.SoloLayer() == &layer) {
        document.SetSoloLayer(nullptr);
    }
    std::unique_ptr<Layer> taken = document.Layers().TakeLayer(layer);
    if (document.CurrentLayer() == &layer) {
        document.SetCurrentLayer(nullptr);
    }
    emit document.LayerChanged(&layer, Document::LayerAspect::Rows, {});
    return taken;
}

void PutIn(Document& document, std::unique_ptr<Layer> layer, int row, TerritoryType* /*parent*/)
{
    Layer* present = layer.get();
    document.Layers().InsertLayer(row, std::move(layer));
    emit document.LayerChanged(present, Document::LayerAspect::Rows, {});
}

namespace {

/// Views make another territory the current one as its row goes.
void EndSolo(Document& document, const Territory& territory)
{
    if (document.SoloTerritory() == &territory) {
        document.SetSoloTerritory(nullptr);
    }
}

void LeaveMap(Document& document, Territory& territory)
{
    territory.LeaveScene();
    territory.SetZonesEditable(false);
    if (document.CurrentTerritory() == &territory) {
        document.SetCurrentTerritory(nullptr);
    }
}

void EnterMap(Document& document, Territory& territory)
{
    if (QGraphicsScene* scene = document.ZoneScene()) {
        territory.EnterScene(*scene);
    }
}

} // namespace

QRectF AreaOf(const Layer& /*layer*/)
{
    return {};
}

QRectF AreaOf(const TerritoryType& type)
{
    QRectF area;
    const QVector<Territory*> territories = type.Territories();
    for (const Territory* territory : territories) {
        area |= AreaOf(*territory);
    }
    return area;
}

QRectF AreaOf(const Territory& territory)
{
    QRectF area;
    for (const Zone* zone : territory.Zones()) {
        area |= zone->sceneBoundingRect();
    }
    return area;
}

std::unique_ptr<TerritoryType> TakeOut(Document& document, TerritoryType& type)
{
    const QVector<Territory*> territories = type.Territories();
    for (const Territory* territory : territories) {
        EndSolo(document, *territory);
    }
    std::unique_ptr<TerritoryType> taken = document.Types().TakeType(type);
    for (Territory* territory : territories) {
        LeaveMap(document, *territory);
    }
    emit document.TypeChanged(&type);
    return taken;
}

void PutIn(Document& document, std::unique_ptr<TerritoryType> type, int row,
           TerritoryType* /*parent*/)
{
    TerritoryType* present = type.get();
    document.Types().InsertType(row, std::move(type));
    const QVector<Territory*> territories = present->Territories();
    for (Territory* territory : territories) {
        EnterMap(document, *territory);
    }
    emit document.TypeChanged(present);
}

std::unique_ptr<Territory> TakeOut(Document& document, Territory& territory)
{
    EndSolo(document, territory);
    std::unique_ptr<Territory> taken = territory.GetType()->TakeTerritory(territory);
    LeaveMap(document, territory);
    emit document.TerritoryChanged(&territory);
    return taken;
}

void PutIn(Document& document, std::unique_ptr<Territory> territory, int row, TerritoryType* parent)
{
    Territory* present = territory.get();
    parent->InsertTerritory(row, std::move(territory));
    EnterMap(document, *present);
    emit document.TerritoryChanged(present);
}

Storage<Layer>::~Storage()
{
    if (m_memory) {
        m_memory->Remove(m_number);
    }
}

void Storage<Layer>::Begin(Document& document, const Edit& edit)
{
    if (!m_memory) {
        m_memory = &document.Memory();
        m_number = m_memory->Add(edit, m_mask);
    }
}

void Storage<Layer>::Pack(Layer& layer)
{
    const QSize size = layer.Image().size();
    auto packed = raster::MaskDelta::Between(layer.Image(), raster::BlankMask(size));
    m_isPacked = packed.has_value();
    if (packed) {
        m_size = size;
        m_mask = std::move(*packed);
        layer.TakePaintedMask({});
    }
    m_memory->Update(m_number);
}

bool Storage<Layer>::Unpack(Layer& layer)
{
    if (!m_isPacked) {
        return true;
    }
    layer.TakePaintedMask(raster::BlankMask(m_size));
    const bool isUnpacked = layer.SwapPixels(m_mask).has_value();
    if (isUnpacked) {
        m_mask = raster::MaskDelta();
        m_isPacked = false;
    } else {
        layer.TakePaintedMask({});
    }
    m_memory->Update(m_number);
    return isUnpacked;
}
