// What it costs to tell what is under the mouse, for each of its moves: layers of 16384 x 16384
// pixels, and thousands of zones. Compared with a loop over the items of the zones and with one
// call of QImage a layer.

#include "app/ProjectSettings.h"
#include "benchmarks/support/RatioReporter.h"
#include "layers/AreaMap.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/MapProbe.h"
#include "layers/raster/Mask.h"
#include "territories/Territory.h"
#include "territories/TerritoryRecords.h"
#include "territories/Zone.h"
#include "territories/ZoneProbe.h"

#include <QApplication>

#include <memory>
#include <random>
#include <vector>

using benchmark::State;

namespace {

constexpr int Side = 16384;
constexpr int World = 16384;
constexpr int LayerCount = 64;
constexpr int ZoneCount = 20000;
constexpr int TerritoryCount = 40;
/// The mouse moves over this part of the map. Only here do the layers hold anything, because all
/// pixels together would take 16 GiB.
constexpr QRect Seen(6000, 7000, 1920, 128);

/// The same world in two forms: lists as the editor has them, and what the probe keeps of them.
class TheWorld
{
public:
    TheWorld()
    {
        ProjectSettings::Instance().SetSizes(Side, Side, World, World);
        for (int i = 0; i < LayerCount; ++i) {
            AddLayer(i);
        }
        for (int i = 0; i < TerritoryCount; ++i) {
            m_territories.push_back(std::make_unique<Territory>(QString::number(i)));
        }
        for (int i = 0; i < ZoneCount; ++i) {
            AddZone(*m_territories[static_cast<std::size_t>(i % TerritoryCount)]);
        }
        const WorldScale scale(ProjectSettings::Instance());
        for (std::size_t owner = 0; owner < m_territories.size(); ++owner) {
            int number = 0;
            for (const Zone* zone : m_territories[owner]->Zones()) {
                m_zones.push_back(
                    ProbedZoneOf(zone->Record(), scale, static_cast<int>(owner), ++number));
            }
        }
    }

    const LayerList& Layers() const { return m_layers; }
    const ProbedZones& Zones() const { return m_zones; }
    const std::vector<std::unique_ptr<Territory>>& Territories() const { return m_territories; }

    /// Where the mouse is after its next move, in scene units.
    QPointF NextPlace()
    {
        return {Seen.x() + m_random() % Seen.width() + 0.5,
                Seen.y() + m_random() % Seen.height() + 0.5};
    }

private:
    void AddLayer(int i)
    {
        QImage mask = raster::BlankMask({Side, Side});
        for (int y = Seen.top(); y <= Seen.bottom(); ++y) {
            uchar* pixels = mask.scanLine(y);
            for (int x = Seen.left(); x <= Seen.right(); ++x) {
                pixels[x] = (x / 50 + y / 50 + i) % 3 == 0 ? raster::MaskSet : raster::MaskClear;
            }
        }
        auto layer = std::make_unique<Layer>(1U << i % 32, 1U << i / 2, &m_layers, QString());
        layer->SetImage(mask, Qt::white);
        m_layers.AddLayer(std::move(layer));
    }

    void AddZone(Territory& territory)
    {
        auto zone = std::make_unique<Zone>(&territory, 50.0F + float(m_random() % 150));
        zone->setPos(m_random() % Side, m_random() % Side);
        territory.AddZone(zone.release());
    }

    std::mt19937 m_random{7};
    LayerList m_layers;
    std::vector<std::unique_ptr<Territory>> m_territories;
    ProbedZones m_zones;
};

TheWorld* world = nullptr;

MapProbe Probe()
{
    return {{Side, Side}, {World, World}, 32, 32};
}

void ProbeLayers(State& state)
{
    for (auto _ : state) {
        const MapProbe probe = Probe();
        const MapPlace place = probe.AtScene(world->NextPlace());
        benchmark::DoNotOptimize(probe.Layers(FlaggedMasks(world->Layers()), place));
    }
}

quint32 FlagsByImageCalls(QPoint pixel)
{
    quint32 flags = 0;
    const QVector<Layer*> layers = world->Layers().Layers();
    for (const Layer* layer : layers) {
        const QImage& image = layer->Image();
        if (image.pixel(pixel) != image.color(0)) {
            flags |= layer->UsageFlags() | layer->ValueFlags();
        }
    }
    return flags;
}

void LayersByImageCalls(State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(FlagsByImageCalls(world->NextPlace().toPoint()));
    }
}

void ProbeZones(State& state)
{
    for (auto _ : state) {
        const MapPlace place = Probe().AtScene(world->NextPlace());
        benchmark::DoNotOptimize(ZonesAt(world->Zones(), place.x, place.z));
    }
}

std::vector<const Zone*> ZonesByItems(QPointF place)
{
    std::vector<const Zone*> covering;
    for (const auto& territory : world->Territories()) {
        for (const Zone* zone : territory->Zones()) {
            const QPointF way = place - zone->scenePos();
            const auto radius = static_cast<double>(zone->Radius());
            if (QPointF::dotProduct(way, way) <= radius * radius) {
                covering.push_back(zone);
            }
        }
    }
    return covering;
}

void ZonesByItems(State& state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(ZonesByItems(world->NextPlace()));
    }
}

void ProbeAll(State& state)
{
    for (auto _ : state) {
        const MapProbe probe = Probe();
        const MapPlace place = probe.AtScene(world->NextPlace());
        benchmark::DoNotOptimize(probe.Layers(FlaggedMasks(world->Layers()), place));
        benchmark::DoNotOptimize(ZonesAt(world->Zones(), place.x, place.z));
    }
}

void AllByItemsAndImageCalls(State& state)
{
    for (auto _ : state) {
        const QPointF place = world->NextPlace();
        benchmark::DoNotOptimize(FlagsByImageCalls(place.toPoint()));
        benchmark::DoNotOptimize(ZonesByItems(place));
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    TheWorld theWorld;
    world = &theWorld;
    for (const auto& [name, work] : std::initializer_list<std::pair<const char*, void (*)(State&)>>{
             {"a move/64 layers, 20000 zones/ours", ProbeAll},
             {"a move/64 layers, 20000 zones/zone items and QImage::pixel",
              AllByItemsAndImageCalls},
             {"layers/64 of 16384/ours", ProbeLayers},
             {"layers/64 of 16384/QImage::pixel", LayersByImageCalls},
             {"zones/20000/ours", ProbeZones},
             {"zones/20000/zone items", static_cast<void (*)(State&)>(ZonesByItems)}}) {
        benchmark::RegisterBenchmark(name, work)->Unit(benchmark::kMicrosecond)->Iterations(300);
    }
    return RunBenchmarks(argc, argv);
}
