// What the overview costs: a brush step on a map of 16384 x 16384 pixels with 32 layers while the
// overview is shown, beside the same step while it is hidden, and beside a second view on the
// scene. The view has 1200 x 800 pixels, offscreen. Also prints how long the overview takes to
// appear, and the longest time that it keeps events waiting meanwhile.

#include "benchmarks/support/Canvas.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "canvas/WidgetOverview.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QGraphicsView>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

using benchmark::State;

namespace {

constexpr int Side = 16384;
constexpr int LayerCount = 32;
constexpr QSize OverviewSize(300, 300);

std::unique_ptr<Canvas> canvas;

/// Land-like shapes, each pixel of which is a square of several pixels.
QImage LargeMask()
{
    constexpr int scale = 8;
    const QImage shapes = NaturalMask({Side / scale, Side / scale}, 7);
    QImage mask = raster::BlankMask({Side, Side});
    for (int y = 0; y < Side; ++y) {
        const uchar* from = shapes.constScanLine(y / scale);
        uchar* row = mask.scanLine(y);
        for (int x = 0; x < Side; ++x) {
            row[x] = from[x / scale];
        }
    }
    return mask;
}

/// All layers but the painted one share a mask, so that the masks fit into memory.
void AddLayers()
{
    const QImage mask = LargeMask();
    for (int i = 0; i < LayerCount; ++i) {
        auto layer = std::make_unique<Layer>(1, 1, &canvas->layers, QStringLiteral("%1").arg(i));
        layer->SetImage(i == 0 ? mask.copy() : mask, QColor::fromHsv(i * 11, 200, 200, 128));
        layer->SetVisible(true);
        canvas->layers.AddLayer(std::move(layer));
    }
    Layer* painted = canvas->layers.LayerAt(0);
    canvas->document.SetCurrentLayer(painted);
    canvas->scene()->ChangeLayer(painted);
    canvas->dock.SetPaintColor(painted->Color().rgb());
    canvas->ShowLayers(1);
    canvas->scene()->ChangeMode(SceneMode::Paint);
}

/// Small steps around the middle of the view.
QPoint NextPosition()
{
    static int step = 0;
    ++step;
    return {400 + step * 5 % 300, 300 + step * 3 % 200};
}

void MoveBrush(State& state, double zoom)
{
    canvas->SetZoom(zoom);
    canvas->dock.SetSize(256);
    canvas->Mouse(QEvent::MouseButtonPress, NextPosition(), Qt::LeftButton);
    QCoreApplication::processEvents();
    for (auto _ : state) {
        canvas->Mouse(QEvent::MouseMove, NextPosition(), Qt::LeftButton);
        QCoreApplication::processEvents();
    }
    canvas->Mouse(QEvent::MouseButtonRelease, NextPosition(), Qt::NoButton);
}

void WaitFor(const WidgetOverview& overview)
{
    while (!overview.Overview().IsUpToDate()) {
        QCoreApplication::processEvents();
    }
}

void WithOverview(State& state, double zoom)
{
    WidgetOverview overview(canvas->document, canvas->view, nullptr);
    overview.resize(OverviewSize);
    overview.show();
    overview.SetSeen(true);
    WaitFor(overview);
    MoveBrush(state, zoom);
}

void WithHiddenOverview(State& state, double zoom)
{
    const WidgetOverview overview(canvas->document, canvas->view, nullptr);
    MoveBrush(state, zoom);
}

void WithSecondView(State& state, double zoom)
{
    QGraphicsView second(canvas->scene());
    second.resize(OverviewSize);
    second.fitInView(canvas->view.sceneRect(), Qt::KeepAspectRatio);
    second.show();
    QCoreApplication::processEvents();
    MoveBrush(state, zoom);
}

void RegisterSteps()
{
    for (const double zoom : {0.25, 1.0}) {
        char group[80];
        std::snprintf(group, sizeof group, "brush step at zoom %g, overview shown/", zoom);
        const auto add = [zoom, &group](const char* who, void (*work)(State&, double),
                                        int iterations) {
            benchmark::RegisterBenchmark((std::string(group) + who).c_str(), work, zoom)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime()
                ->Iterations(iterations);
        };
        add("ours", WithOverview, 100);
        add("hidden", WithHiddenOverview, 100);
        add("second-view", WithSecondView, 5);
    }
}

void PrintAppearance()
{
    WidgetOverview overview(canvas->document, canvas->view, nullptr);
    overview.resize(OverviewSize);
    QElapsedTimer time;
    time.start();
    qint64 longest = 0;
    overview.show();
    overview.SetSeen(true);
    while (!overview.Overview().IsUpToDate()) {
        QElapsedTimer slice;
        slice.start();
        QCoreApplication::processEvents();
        longest = std::max(longest, slice.nsecsElapsed());
    }
    std::printf(
        "the overview of %d layers of %d appears in %lld ms, in slices of at most %.1f ms\n",
        LayerCount, Side, static_cast<long long>(time.elapsed()),
        static_cast<double>(longest) / 1e6);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    canvas = std::make_unique<Canvas>(Side);
    AddLayers();
    for (int i = 0; i < 3; ++i) {
        PrintAppearance();
    }
    RegisterSteps();
    const int result = RunBenchmarks(argc, argv);
    canvas.reset();
    return result;
}
