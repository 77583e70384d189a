// The speed that a user notices: brush moves, showing and hiding layers, panning and many zones.
// Each is measured in a real view of 1200 x 800 pixels, offscreen, including the repaint.

#include "benchmarks/support/Canvas.h"
#include "app/ProjectSettings.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "canvas/BrushDock.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "territories/Territory.h"
#include "territories/Zone.h"
#include "territories/ZoneIcons.h"

#include <QApplication>
#include <QFile>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStandardItemModel>

#include <unistd.h>

#include <cstdio>

using benchmark::State;

namespace {

constexpr int LayerCount = 32;

/// Only one canvas exists at a time, and none outlives the application.
std::unique_ptr<Canvas> paintedCanvas;
std::unique_ptr<Canvas> layeredCanvas;

/// The same canvas for all benchmarks of one size.
Canvas& CanvasOf(int side)
{
    std::unique_ptr<Canvas>& canvas = paintedCanvas;
    if (!canvas || ProjectSettings::Instance().LayerWidth() != side) {
        canvas.reset();
        canvas = std::make_unique<Canvas>(side);
        canvas->AddLayers(1);
        const Layer* layer = canvas->layers.LayerAt(0);
        canvas->dock.SetPaintColor(layer->Color().rgb());
        canvas->scene()->ChangeLayer(canvas->layers.LayerAt(0));
        canvas->scene()->ChangeMode(SceneMode::Paint);
    }
    return *canvas;
}

/// Small steps around the middle of the view.
QPoint NextPosition()
{
    static int step = 0;
    ++step;
    return {400 + step * 5 % 300, 300 + step * 3 % 200};
}

void MoveBrush(State& state, int side, double zoom, int size)
{
    Canvas& canvas = CanvasOf(side);
    canvas.SetZoom(zoom);
    canvas.dock.SetSize(size);
    canvas.Mouse(QEvent::MouseButtonPress, NextPosition(), Qt::LeftButton);
    QCoreApplication::processEvents();
    for (auto _ : state) {
        canvas.Mouse(QEvent::MouseMove, NextPosition(), Qt::LeftButton);
        QCoreApplication::processEvents();
    }
    canvas.Mouse(QEvent::MouseButtonRelease, NextPosition(), Qt::NoButton);
}

/// The simple version: paints, shows and converts the whole image.
void MoveLiteralBrush(State& state, int side, double zoom, int size)
{
    Canvas& canvas = CanvasOf(side);
    canvas.SetZoom(zoom);
    Layer* layer = canvas.layers.LayerAt(0);
    QImage picture = raster::MaskToDisplay(layer->Image(), layer->Color().rgb());
    QGraphicsPixmapItem item;
    canvas.scene()->addItem(&item);
    Brush brush;
    brush.SetSize(size);
    brush.SetPaintColor(layer->Color().rgb());
    QPointF from = canvas.view.mapToScene(NextPosition());
    for (auto _ : state) {
        const QPointF to = canvas.view.mapToScene(NextPosition());
        brush.PaintSegment(picture, from, to);
        from = to;
        item.setPixmap(QPixmap::fromImage(picture));
        benchmark::DoNotOptimize(raster::ImageToMask(picture, layer->Color().rgb()));
        QCoreApplication::processEvents();
    }
    canvas.scene()->removeItem(&item);
}

void RegisterBrush()
{
    for (const int side : {2048, 8192, 16384}) {
        for (const double zoom : {0.25, 1.0, 4.0}) {
            for (const int size : {32, 256}) {
                char name[80];
                std::snprintf(name, sizeof name, "move at zoom %g, brush %d, %d/", zoom, size,
                              side);
                const std::string group = name;
                benchmark::RegisterBenchmark((group + "ours").c_str(), MoveBrush, side, zoom, size)
                    ->Unit(benchmark::kMillisecond)
                    ->UseRealTime();
                benchmark::RegisterBenchmark((group + "literal").c_str(), MoveLiteralBrush, side,
                                             zoom, size)
                    ->Unit(benchmark::kMillisecond)
                    ->UseRealTime()
                    ->Iterations(2);
            }
        }
    }
}

/// A canvas with many layers, one of which is shown and hidden.
Canvas& LayersOf(int side)
{
    std::unique_ptr<Canvas>& canvas = layeredCanvas;
    if (!canvas || ProjectSettings::Instance().LayerWidth() != side) {
        canvas.reset();
        canvas = std::make_unique<Canvas>(side);
        canvas->AddLayers(LayerCount);
    }
    return *canvas;
}

void ToggleLayer(State& state, int side)
{
    Canvas& canvas = LayersOf(side);
    canvas.SetZoom(1);
    int first = 0;
    for (auto _ : state) {
        first = 1 - first;
        canvas.ShowLayers(first);
        QCoreApplication::processEvents();
    }
}

/// Draws the prebuilt pictures of all layers into one picture and shows that. One picture is used
/// for all layers, because at this size memory does not hold a picture for each.
void ToggleLiteral(State& state, int side)
{
    Canvas& canvas = LayersOf(side);
    canvas.SetZoom(1);
    canvas.scene()->ClearLayers();
    const QPixmap picture = canvas.layers.LayerAt(0)->Pixmap();
    QGraphicsPixmapItem item;
    item.setShapeMode(QGraphicsPixmapItem::BoundingRectShape);
    canvas.scene()->addItem(&item);
    for (auto _ : state) {
        QPixmap composed(side, side);
        composed.fill(Qt::transparent);
        QPainter painter(&composed);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
        for (int i = 0; i < LayerCount; ++i) {
            painter.setOpacity(128 / 255.0);
            painter.drawPixmap(0, 0, picture);
        }
        painter.end();
        item.setPixmap(composed);
        QCoreApplication::processEvents();
    }
    canvas.scene()->removeItem(&item);
}

void Pan(State& state, Canvas& canvas)
{
    QScrollBar* bar = canvas.view.horizontalScrollBar();
    int step = 0;
    for (auto _ : state) {
        bar->setValue(bar->minimum() + 300 + ++step % 50 * 7);
        QCoreApplication::processEvents();
    }
}

void PanLayers(State& state, int side)
{
    Canvas& canvas = LayersOf(side);
    canvas.SetZoom(1);
    canvas.ShowLayers(0);
    QCoreApplication::processEvents();
    Pan(state, canvas);
}

void PanPrebuilt(State& state, int side)
{
    Canvas& canvas = LayersOf(side);
    canvas.SetZoom(1);
    canvas.scene()->ClearLayers();
    QGraphicsPixmapItem item(canvas.layers.LayerAt(0)->Pixmap());
    item.setShapeMode(QGraphicsPixmapItem::BoundingRectShape);
    canvas.scene()->addItem(&item);
    QCoreApplication::processEvents();
    Pan(state, canvas);
    canvas.scene()->removeItem(&item);
}

void RegisterLayers()
{
    for (const int side : {2048, 8192}) {
        const std::string size = std::to_string(side);
        const auto add = [side](const std::string& name, void (*work)(State&, int),
                                int iterations) {
            auto* added = benchmark::RegisterBenchmark(name.c_str(), work, side)
                              ->Unit(benchmark::kMillisecond)
                              ->UseRealTime();
            if (iterations > 0) {
                added->Iterations(iterations);
            }
        };
        add("toggle one of 32 layers, " + size + "/ours", ToggleLayer, 0);
        add("toggle one of 32 layers, " + size + "/whole-picture", ToggleLiteral, 2);
        add("pan with 32 layers, " + size + "/ours", PanLayers, 0);
        add("pan with 32 layers, " + size + "/one-picture", PanPrebuilt, 0);
    }
}

/// Repaints zones all over the view, on whole pixels or anywhere. Moved zones are drawn as if for
/// the first time.
void RepaintZones(State& state, double zoom, bool isOnPixels, bool isMoved)
{
    constexpr int zoneCount = 5000;
    Canvas& canvas = CanvasOf(2048);
    canvas.SetZoom(zoom);
    Territory territory(QStringLiteral("many"));
    territory.SetRgba(0x80FF8040U);
    const QPolygonF area = canvas.view.mapToScene(canvas.view.viewport()->rect());
    const QRectF visible = area.boundingRect();
    for (int i = 0; i < zoneCount; ++i) {
        auto* zone = new Zone(&territory, 150);
        const double shift = isOnPixels ? 0 : i * 0.618034;
        zone->setPos(visible.x() + i * 37 % int(visible.width()) + shift - int(shift),
                     visible.y() + i * 53 % int(visible.height()) + shift - int(shift));
        zone->SetUsage(1 + i % 5);
        territory.AddZone(zone);
        canvas.scene()->addItem(zone);
    }
    QCoreApplication::processEvents();
    // Repeated paints are faster, so paint twice before measuring.
    canvas.view.viewport()->repaint();
    for (auto _ : state) {
        if (isMoved) {
            for (Zone* zone : territory.Zones()) {
                zone->moveBy(0.001, 0.002);
            }
        }
        canvas.view.viewport()->repaint();
    }
}

void RegisterZones()
{
    const auto add = [](const char* name, double zoom, bool isOnPixels, bool isMoved = false) {
        benchmark::RegisterBenchmark(name, RepaintZones, zoom, isOnPixels, isMoved)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    };
    add("repaint 5000 zones on whole pixels/ours", 1, true);
    add("repaint 5000 zones/ours", 1, false);
    add("repaint 5000 zones moved/ours", 1, false, true);
    add("repaint 5000 zones at zoom 0.25/ours", 0.25, false);
    add("repaint 5000 zones at zoom 0.5/ours", 0.5, false);
}

double ResidentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    return file.readAll().split(' ').value(1).toDouble() *
           static_cast<double>(sysconf(_SC_PAGESIZE));
}

void PrintMemory()
{
    constexpr int side = 4096;
    for (const int count : {1, 8, 32}) {
        Canvas canvas(side);
        const double before = ResidentBytes();
        canvas.AddLayers(count);
        canvas.scene()->ChangeLayer(canvas.layers.LayerAt(0));
        canvas.ShowLayers(1);
        canvas.SetZoom(0.5);
        const double bytes = ResidentBytes() - before;
        std::printf("memory with %2d shown layers of %d: %.2f bytes a layer pixel\n", count, side,
                    bytes / (double(side) * side * count));
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    ZoneIcons::Load();
    PrintMemory();
    RegisterBrush();
    RegisterLayers();
    RegisterZones();
    const int result = RunBenchmarks(argc, argv);
    paintedCanvas.reset();
    layeredCanvas.reset();
    return result;
}
