// What the dock Numbers costs with 32 layers of 16384 x 16384 pixels and 20,000 zones: the longest
// time during which the window does not answer, and what it adds to a move of the brush.

#include "app/ProjectSettings.h"
#include "benchmarks/support/Canvas.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "canvas/BrushDock.h"
#include "canvas/HeatMap.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "document/ProjectNumbers.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "ui/DockStatistics.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>

using benchmark::State;

namespace {

constexpr int Side = 16384;
constexpr int LayerCount = 32;
constexpr int TypeCount = 10;
constexpr int TerritoriesPerType = 20;
constexpr int ZonesPerTerritory = 100;
constexpr int BrushSize = 256;

/// A map with the dock beside it. There is no window, and no journal that works at the same time.
class Editor
{
public:
    Editor()
    {
        document.Begin({Side, Side}, {Side, Side}, QDir());
        AddFlags();
        AddLayers();
        AddZones();
        document.BeginHistory(true);
        document.SetEditable(true);
        view.SetDocument(document);
        view.SetBrushDock(&brush);
        view.resize(1200, 800);
        view.show();
        view.SetSceneSize(Side, Side);
        document.SetCurrentLayer(Painted());
        view.Scene()->ChangeLayer(Painted());
        brush.SetSize(BrushSize);
        brush.SetPaintColor(Painted()->Color().rgb());
        view.Scene()->ChangeMode(SceneMode::Paint);
        dock.resize(400, 600);
    }

    Layer* Painted() { return document.Layers().LayerAt(0); }

    void ShowDock(bool isShown)
    {
        dock.setVisible(isShown);
        while (!numbers.IsUpToDate()) {
            QCoreApplication::processEvents();
        }
    }

    void Mouse(QEvent::Type type, Qt::MouseButtons buttons)
    {
        ++m_step;
        const QPoint position(100 + m_step * 5 % 300, 100 + m_step * 3 % 200);
        SendMouse(view, type, position, buttons);
        QCoreApplication::processEvents();
    }

    Document document;
    BrushDock brush{document.GetBrush()};
    MainView view;
    ProjectNumbers numbers{document};
    DockStatistics dock{document, numbers, [](const QRectF&) {}};
    HeatMap heat{document, view};
    Territory* territory = nullptr;

private:
    void AddFlags()
    {
        AreaFlagTypes types;
        for (int i = 0; i < AreaFlagTypes::MaxCount; ++i) {
            types.usages.append(QStringLiteral("usage %1").arg(i));
            types.values.append(QStringLiteral("value %1").arg(i));
        }
        ProjectSettings::Instance().SetFlagTypes(types);
    }
    void AddLayers()
    {
        const QImage natural = RepeatedNaturalMask(Side);
        for (int i = 0; i < LayerCount; ++i) {
            // The one that is painted has pixels of its own.
            document.Do(Edits::AddPaintedLayer(document.Layers(),
                                               i == 0 ? RepeatedNaturalMask(Side) : natural));
            document.Do(Edits::SetLayerFlags(*document.Layers().LayerAt(i), 3U << i, 1U << i / 4));
        }
    }
    void AddZones()
    {
        document.SetZoneScene(view.Scene());
        ZoneValues values;
        values.radius = 100;
        values.usage = ZoneValues::DynamicEvent;
        values.eventName = QStringLiteral("Migration");
        values.counts = {1, 2, 3, 4};
        for (int i = 0; i < TypeCount; ++i) {
            document.Do(Edits::AddType(document.Types(), std::make_unique<TerritoryType>()));
            TerritoryType* type = document.Types().Types().last();
            for (int j = 0; j < TerritoriesPerType; ++j) {
                territory = type->NewTerritory();
                for (int k = 0; k < ZonesPerTerritory; ++k) {
                    auto* zone = new Zone(territory);
                    zone->SetValues(values);
                    zone->setPos(80 * k + 200, 70 * j + 1500 * i + 200);
                    territory->AddZone(zone);
                    view.Scene()->addItem(zone);
                }
            }
        }
    }

    int m_step = 0;
};

std::unique_ptr<Editor> editor;

/// Handles events and keeps the longest time that one round of them took.
template <typename IsDone>
void MeasurePauses(const char* what, IsDone isDone)
{
    QElapsedTimer all;
    all.start();
    qint64 longest = 0;
    int rounds = 0;
    while (!isDone()) {
        QElapsedTimer round;
        round.start();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 0);
        longest = std::max(longest, round.nsecsElapsed());
        ++rounds;
    }
    std::printf("%-44s longest %6.2f ms of %6d rounds, all %8.1f ms\n", what, double(longest) / 1e6,
                rounds, double(all.nsecsElapsed()) / 1e6);
    std::fflush(stdout);
}

void MeasureAllPauses()
{
    Document& document = editor->document;
    const auto areCounted = [] { return editor->numbers.IsUpToDate(); };
    const auto isHeated = [] { return editor->heat.IsUpToDate(); };
    editor->dock.show();
    MeasurePauses("first count", areCounted);
    QImage disc = raster::BlankMask({Side, Side});
    for (int i = 0; i < 3; ++i) {
        document.Do(std::make_unique<PaintMask>(QStringLiteral("Shape"), *editor->Painted(),
                                                raster::Region{{100 + i, 100, 9000}},
                                                raster::MaskSet));
        MeasurePauses("a line drawn", areCounted);
    }
    disc.fill(raster::MaskSet);
    document.Do(Edits::ChangePixels(QStringLiteral("Fill"), *editor->Painted(), disc));
    MeasurePauses("the whole layer filled", areCounted);
    document.Undo();
    MeasurePauses("undo of it", areCounted);
    document.Do(Edits::SetLayerFlags(*editor->Painted(), 7, 7));
    MeasurePauses("other flags", areCounted);
    ZoneValues values;
    values.radius = 500;
    document.Do(Edits::InsertZone(*editor->territory, {500, 500}, values));
    MeasurePauses("a zone added", areCounted);
    editor->heat.SetShown(true);
    MeasurePauses("creatures on the map", isHeated);
    document.Do(Edits::InsertZone(*editor->territory, {900, 500}, values));
    MeasurePauses("a zone added, creatures shown", isHeated);
    editor->heat.SetShown(false);
}

void MoveBrush(State& state, bool isShown)
{
    constexpr int movesPerStroke = 100;
    editor->ShowDock(isShown);
    editor->Mouse(QEvent::MouseButtonPress, Qt::LeftButton);
    int moves = 0;
    for (auto _ : state) {
        editor->Mouse(QEvent::MouseMove, Qt::LeftButton);
        if (++moves % movesPerStroke == 0) {
            state.PauseTiming();
            editor->Mouse(QEvent::MouseButtonRelease, Qt::NoButton);
            editor->ShowDock(isShown);
            editor->Mouse(QEvent::MouseButtonPress, Qt::LeftButton);
            state.ResumeTiming();
        }
    }
    editor->Mouse(QEvent::MouseButtonRelease, Qt::NoButton);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    editor = std::make_unique<Editor>();
    QCoreApplication::processEvents();
    MeasureAllPauses();
    for (const bool isShown : {true, false}) {
        const char* name =
            isShown ? "brush move, numbers shown/ours" : "brush move, numbers shown/hidden";
        benchmark::RegisterBenchmark(name, MoveBrush, isShown)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(300);
    }
    const int result = RunBenchmarks(argc, argv);
    editor.reset();
    return result;
}
