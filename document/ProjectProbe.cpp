#include "document/ProjectProbe.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

ProjectProbe::ProjectProbe(Document& document)
    : m_document(document)
{
    connect(&document, &Document::LayerChanged, this,
            [this](const Layer* /*layer*/, Document::LayerAspect aspect, const QRect& rect) {
                emit Changed(aspect == Document::LayerAspect::Pixels ? rect : QRect());
            });
    connect(&document, &Document::Painted, this,
            [this](const Layer* /*layer*/, const QRect& rect) { emit Changed(rect); });
    connect(&document, &Document::FlagTypesChanged, this, [this] { emit Changed({}); });
    connect(&document, &Document::ZonesChanged, this, &ProjectProbe::ForgetZones);
    connect(&document, &Document::TerritoryChanged, this, &ProjectProbe::ForgetZones);
    connect(&document, &Document::TypeChanged, this, &ProjectProbe::ForgetZones);
    connect(&document, &Document::AboutToClear, this, &ProjectProbe::ForgetZones);
    connect(&document, &Document::HistoryBegan, this, &ProjectProbe::ForgetZones);
}

void ProjectProbe::ForgetZones()
{
    m_areZonesListed = false;
    m_circles.clear();
    m_zones.clear();
    emit Changed({});
}

void ProjectProbe::ListZones()
{
    const WorldScale scale(ProjectSettings::Instance());
    const QVector<TerritoryType*> types = m_document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            int number = 0;
            for (Zone* zone : territory->Zones()) {
                const int index = static_cast<int>(m_zones.size());
                m_circles.push_back(ProbedZoneOf(zone->Record(), scale, index, ++number));
                m_zones.emplace_back(zone);
            }
        }
    }
    m_areZonesListed = true;
}

ProjectProbe::Found ProjectProbe::Find(QPointF place)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const MapProbe probe(settings.LayerSize(), {settings.WorldWidth(), settings.WorldHeight()},
                         raster::FieldBits(settings.FlagTypes().usages.size()),
                         raster::FieldBits(settings.FlagTypes().values.size()));
    Found found;
    found.place = probe.AtScene(place);

    LayersHere here = probe.NoLayers(found.place);
    const QVector<Layer*> layers = m_document.Layers().Layers();
    for (int row = 0; row < layers.size(); ++row) {
        const Layer& layer = *layers[row];
        // The picture is shared for this moment only, so that the brush can paint in place.
        probe.AddLayer(row, {layer.Image(), layer.UsageFlags(), layer.ValueFlags()}, 0, found.place,
                       here);
    }
    found.usage = here.usage;
    found.value = here.value;
    for (const LayerHere& layer : here.layers) {
        found.layers.push_back({layers[layer.row], layer.grey});
    }

    if (!m_areZonesListed) {
        ListZones();
    }
    for (const ZoneHere& zone : ZonesAt(m_circles, found.place.x, found.place.z)) {
        const auto index = static_cast<std::size_t>(zone.index);
        if (Zone* covering = m_zones[index]) {
            found.zones.push_back({covering, m_circles[index].number, zone.distance});
        }
    }
    return found;
}
