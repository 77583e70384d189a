// Jumps over the map: each is measured with the repaint in a real view of 1200 x 800 pixels,
// offscreen, against a full repaint of the same pictures, as after a change of the visible layers.

#include "app/ProjectSettings.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/ViewMoves.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"

#include <QApplication>

#include <map>
#include <memory>
#include <string>

using benchmark::State;

namespace {

constexpr int LayerCount = 4;

struct Map
{
    explicit Map(int side)
    {
        ProjectSettings::Instance().SetSizes(side, side, 15360, 15360);
        view.resize(1200, 800);
        view.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view.SetDocument(document);
        view.SetSceneSize(side, side);
        view.show();
        const QImage first = NaturalMask({side, side}, 7);
        for (int i = 0; i < LayerCount; ++i) {
            auto layer = std::make_unique<Layer>(1, 1, &layers, QStringLiteral("%1").arg(i));
            layer->SetImage(i == 0 ? first : first.copy(), QColor::fromHsv(i * 80, 200, 200, 128));
            layers.AddLayer(std::move(layer));
        }
        ShowLayers();
        QCoreApplication::processEvents();
    }

    /// Composes and paints everything anew at the next event.
    void ShowLayers()
    {
        view.Scene()->ClearLayers();
        const QVector<Layer*> all = layers.Layers();
        for (Layer* layer : all) {
            view.Scene()->AddLayer(layer);
        }
    }

    Document document;
    LayerList& layers = document.Layers();
    MainView view;
};

/// By side. Making them takes long.
std::map<int, std::unique_ptr<Map>> maps;

Map& MapOf(int side)
{
    std::unique_ptr<Map>& map = maps[side];
    if (!map) {
        map = std::make_unique<Map>(side);
    }
    ProjectSettings::Instance().SetSizes(side, side, 15360, 15360);
    return *map;
}

ViewPlace WholeMap(Map& shown)
{
    return shown.view.Moves().PlaceToFit(shown.view.sceneRect());
}

ViewPlace Spot(Map& shown)
{
    return {shown.view.sceneRect().center() / 3, 3};
}

ViewPlace LayerPlace(Map& shown)
{
    return shown.view.Moves().PlaceToFit(raster::SetBounds(shown.layers.LayerAt(0)->Image()));
}

/// From one place to another and back; an iteration is both.
template <typename Place>
void Jump(State& state, int side, Place place)
{
    Map& shown = MapOf(side);
    const ViewPlace start{shown.view.sceneRect().center(), 1};
    for (auto _ : state) {
        shown.view.Moves().Show(place(shown));
        QCoreApplication::processEvents();
        shown.view.Moves().Show(start);
        QCoreApplication::processEvents();
    }
}

template <typename Place>
void Repaint(State& state, int side, Place place)
{
    Map& shown = MapOf(side);
    const ViewPlace start{shown.view.sceneRect().center(), 1};
    for (auto _ : state) {
        for (const ViewPlace& each : {place(shown), start}) {
            state.PauseTiming();
            shown.view.Moves().Show(each);
            QCoreApplication::processEvents();
            state.ResumeTiming();
            shown.ShowLayers();
            QCoreApplication::processEvents();
        }
    }
}

void Register()
{
    using Place = ViewPlace (*)(Map&);
    const std::pair<const char*, Place> places[] = {
        {"go to a spot", Spot}, {"fit the map", WholeMap}, {"fit a layer", LayerPlace}};
    for (const int side : {2048, 8192}) {
        for (const auto& [name, place] : places) {
            const std::string group = std::string(name) + ", " + std::to_string(side);
            for (const bool isJump : {true, false}) {
                const std::string full = group + (isJump ? "/ours" : "/full-repaint");
                benchmark::RegisterBenchmark(full.c_str(), isJump ? Jump<Place> : Repaint<Place>,
                                             side, place)
                    ->Unit(benchmark::kMillisecond)
                    ->UseRealTime();
            }
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Register();
    const int result = RunBenchmarks(argc, argv);
    maps.clear();
    return result;
}
