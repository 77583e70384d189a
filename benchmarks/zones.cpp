// Dragging the view over thousands of zones, in a view of 1200 x 800 pixels, offscreen. Each step
// scrolls by a few pixels in both directions, and includes the painting. It is compared with
// painting the whole view at each step.

#include "app/ProjectSettings.h"
#include "benchmarks/support/Canvas.h"
#include "benchmarks/support/RatioReporter.h"
#include "territories/Territory.h"
#include "territories/Zone.h"
#include "territories/ZoneIcons.h"

#include <QApplication>
#include <QScrollBar>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>

using benchmark::State;

namespace {

constexpr int Side = 8192;
constexpr int ZonesInSight = 5000;
constexpr float ZoneRadius = 20;
/// The view is dragged this far to each side.
constexpr int Reach = 120;

std::unique_ptr<Canvas> canvas;

/// Spreads zones evenly over what dragging brings into view.
void SpreadZones(Territory& territory)
{
    const QRect view = canvas->view.viewport()->rect();
    const QRect seen = view.adjusted(-Reach, -Reach, Reach, Reach);
    const QRectF area = canvas->view.mapToScene(seen).boundingRect();
    const int count = static_cast<int>(double(ZonesInSight) * seen.width() * seen.height() /
                                       (double(view.width()) * view.height()));
    for (int i = 0; i < count; ++i) {
        auto* zone =
            new Zone(&territory, ZoneRadius * ProjectSettings::Instance().MetresPerPixelX());
        // Multiples of irrational numbers are spread evenly.
        zone->setPos(area.x() + std::fmod(i * 0.754877666, 1.0) * area.width(),
                     area.y() + std::fmod(i * 0.569840291, 1.0) * area.height());
        zone->SetUsage(1 + i % 5);
        territory.AddZone(zone);
        canvas->scene()->addItem(zone);
    }
}

/// Where the view is at a step: it goes to and fro.
QPoint Offset(int step)
{
    const auto swing = [](int way) { return std::abs(way % (4 * Reach) - 2 * Reach) - Reach; };
    return {swing(step * 7), swing(step * 5)};
}

void Drag(State& state, double zoom, bool isWhole)
{
    canvas->SetZoom(zoom);
    Territory territory(QStringLiteral("many"));
    territory.SetRgba(0x80FF8040U);
    SpreadZones(territory);
    QCoreApplication::processEvents();
    QScrollBar& across = *canvas->view.horizontalScrollBar();
    QScrollBar& down = *canvas->view.verticalScrollBar();
    const QPoint center(across.value(), down.value());
    int step = 0;
    const auto move = [&] {
        const QPoint place = center + Offset(++step);
        across.setValue(place.x());
        down.setValue(place.y());
        if (isWhole) {
            canvas->view.viewport()->update();
        }
        QCoreApplication::processEvents();
    };
    // Pictures of circles are made when they are drawn for the second time.
    for (int i = 0; i < 2; ++i) {
        canvas->view.viewport()->repaint();
    }
    for (auto _ : state) {
        move();
    }
}

void RegisterDrags()
{
    for (const double zoom : {0.25, 0.5, 1.0, 2.0}) {
        char name[80];
        std::snprintf(name, sizeof name, "drag over %d zones at zoom %g/", ZonesInSight, zoom);
        for (const bool isWhole : {false, true}) {
            benchmark::RegisterBenchmark(
                (name + std::string(isWhole ? "whole-view" : "ours")).c_str(), Drag, zoom, isWhole)
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime()
                ->Iterations(isWhole ? 5 : 60);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    ZoneIcons::Load();
    canvas = std::make_unique<Canvas>(Side);
    RegisterDrags();
    const int result = RunBenchmarks(argc, argv);
    canvas.reset();
    return result;
}
