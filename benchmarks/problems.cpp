// What the docks Problems and Numbers cost together: the longest times during which the window does
// not answer, for a project of 16384 x 16384 pixels with 32 layers and 20,000 zones, of which every
// tenth has a fault, and a move of the brush while both docks are shown and a check is due, beside
// the same move without them. Ends with 1 when a pause is longer than 8 ms in most
// rounds, or a move takes more than 1.1 of one without the docks.

#include "document/Problems.h"
#include "benchmarks/support/Canvas.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "document/ProjectNumbers.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/Layer.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "ui/AcceptedFindings.h"
#include "ui/DockProblems.h"
#include "ui/DockStatistics.h"

#include <QApplication>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <initializer_list>
#include <memory>

using benchmark::State;

namespace {

constexpr int Side = 16384;
constexpr int LayerCount = 32;
constexpr int TypeCount = 4;
constexpr int TerritoriesPerType = 10;
constexpr int ZonesPerTerritory = 500;
constexpr int MovesPerStroke = 50;

constexpr double MostMilliseconds = 8;
constexpr double MostRatio = 1.1;

/// The processor time of this thread in milliseconds. On a machine with other users a clock also
/// counts what they do.
double Milliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// The longest of some pieces of work in milliseconds.
class Stopwatch
{
public:
    void Begin() { m_begin = Milliseconds(); }
    void End() { m_longest = std::max(m_longest, Milliseconds() - m_begin); }
    double Longest() const { return m_longest; }

private:
    double m_begin = 0;
    double m_longest = 0;
};

/// What checks and counts the project, with both docks shown.
struct Checker
{
    explicit Checker(Document& document)
        : numbers(document)
        , problems(document, numbers)
        , accepted(document, problems)
        , dock(document, problems, accepted, [](const Problem&) {})
        , statistics(document, numbers, [](const QRectF&) {})
    {
        for (QDockWidget* each : std::initializer_list<QDockWidget*>{&dock, &statistics}) {
            each->resize(800, 400);
            each->show();
        }
        QCoreApplication::processEvents();
    }
    bool IsUpToDate() const { return problems.IsUpToDate() && numbers.IsUpToDate(); }

    ProjectNumbers numbers;
    Problems problems;
    AcceptedFindings accepted;
    DockProblems dock;
    DockStatistics statistics;
};

class Project
{
public:
    Project()
        : m_canvas(Side)
    {
        const QImage mask = RepeatedNaturalMask(Side);
        for (int i = 0; i < LayerCount; ++i) {
            // The masks of all but the painted layer are shared, so that they fit into memory.
            auto layer =
                std::make_unique<Layer>(1U << (i % 8), 1, &m_canvas.layers, QString::number(i));
            layer->SetImage(i == 0 ? mask.copy() : mask, QColor::fromHsv(i * 11, 200, 200, 128));
            m_canvas.layers.AddLayer(std::move(layer));
        }
        for (int i = 0; i < TypeCount; ++i) {
            AddType(i);
        }
        Layer* painted = m_canvas.layers.LayerAt(0);
        document.SetEditable(true);
        document.SetCurrentLayer(painted);
        m_canvas.scene()->ChangeLayer(painted);
        m_canvas.dock.SetSize(256);
        m_canvas.dock.SetPaintColor(painted->Color().rgb());
        m_canvas.scene()->ChangeMode(SceneMode::Paint);
        m_canvas.SetZoom(1);
    }

    void Press() { m_canvas.Mouse(QEvent::MouseButtonPress, Next(), Qt::LeftButton); }
    void Move() { m_canvas.Mouse(QEvent::MouseMove, Next(), Qt::LeftButton); }
    void Release()
    {
        m_canvas.Mouse(QEvent::MouseButtonRelease, Next(), Qt::NoButton);
        document.Undo();
    }
    void Begin() { document.BeginHistory(true); }
    void MoveZone()
    {
        Territory& territory = *document.Types().Types().first()->Territories().first();
        Zone* zone = territory.Zones().first();
        document.Do(Edits::MoveZones({{zone, zone->pos(), zone->pos() + QPointF(1, 0)}}, false));
    }

private:
    void AddType(int number)
    {
        auto type = std::make_unique<TerritoryType>(QStringLiteral("Type %1").arg(number));
        for (int i = 0; i < TerritoriesPerType; ++i) {
            auto territory = std::make_unique<Territory>(QStringLiteral("Territory %1").arg(i));
            territory->setCheckState(Qt::Checked);
            for (int k = 0; k < ZonesPerTerritory; ++k) {
                territory->AddZone(MakeZone(*territory, i * ZonesPerTerritory + k));
            }
            type->AddTerritory(territory.release());
        }
        document.Types().AddType(type.release());
    }

    static Zone* MakeZone(Territory& territory, int number)
    {
        constexpr int columns = 71;
        constexpr double distance = 220;
        auto* zone = new Zone(&territory, 100);
        zone->setPos(300 + distance * (number % columns), 300 + distance * (number / columns));
        ZoneValues values = zone->Values();
        values.counts = {number % 10 == 0 ? 9 : 1, 2, 3, 4};
        zone->SetValues(values);
        return zone;
    }

    QPoint Next()
    {
        m_step = (m_step + 1) % MovesPerStroke;
        return {200 + 12 * m_step, 300 + (m_step * 37) % 60};
    }

    Canvas m_canvas;
    int m_step = 0;

public:
    Document& document = m_canvas.document;
};

std::unique_ptr<Project> project;

void MoveBrush(State& state, bool isChecked)
{
    std::unique_ptr<Checker> checker;
    if (isChecked) {
        checker = std::make_unique<Checker>(project->document);
        project->Begin();
        while (!checker->IsUpToDate()) {
            QCoreApplication::processEvents();
        }
    }
    int moves = 0;
    // A check is due during the stroke.
    project->MoveZone();
    project->Press();
    for (auto _ : state) {
        project->Move();
        QCoreApplication::processEvents();
        if (++moves == MovesPerStroke) {
            state.PauseTiming();
            moves = 0;
            project->Release();
            project->MoveZone();
            project->Press();
            state.ResumeTiming();
        }
    }
    project->Release();
}

/// Lets the checker work until all is checked and counted, and prints its longest slice and the
/// longest turn of the event loop. Returns that turn.
double PrintPauses(const char* what, Checker& checker)
{
    Stopwatch slice;
    checker.problems.SetObserver([&slice](bool begins) { begins ? slice.Begin() : slice.End(); });
    const double start = Milliseconds();
    Stopwatch turn;
    do {
        turn.Begin();
        QCoreApplication::processEvents();
        turn.End();
    } while (!checker.IsUpToDate());
    // The docks show the lists in the next turn.
    turn.Begin();
    QCoreApplication::processEvents();
    turn.End();
    checker.problems.SetObserver({});
    std::printf("%s: %.0f ms, slices of at most %.1f ms, turns of at most %.1f ms\n", what,
                Milliseconds() - start, slice.Longest(), turn.Longest());
    return turn.Longest();
}

/// Returns the longest pause. Each kind of work is done in several rounds, and the median counts:
/// what the machine delays is in few of them.
double PrintChecks()
{
    constexpr std::size_t rounds = 5;
    Checker checker(project->document);
    std::array<std::array<double, rounds>, 3> pauses{};
    for (std::size_t i = 0; i < rounds; ++i) {
        project->Begin();
        pauses[0][i] = PrintPauses("the whole project", checker);
        project->MoveZone();
        pauses[1][i] = PrintPauses("after a move of a zone", checker);
        project->Press();
        for (int k = 0; k < MovesPerStroke; ++k) {
            project->Move();
        }
        project->Release();
        pauses[2][i] = PrintPauses("after a stroke and its undo", checker);
    }
    double longest = 0;
    for (std::array<double, rounds>& each : pauses) {
        std::sort(each.begin(), each.end());
        longest = std::max(longest, each[rounds / 2]);
    }
    return longest;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    project = std::make_unique<Project>();
    const double longest = PrintChecks();
    for (const bool isChecked : {true, false}) {
        benchmark::RegisterBenchmark(isChecked ? "brush move, docks shown/ours"
                                               : "brush move, docks shown/none",
                                     MoveBrush, isChecked)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(200);
    }
    const int result = RunBenchmarks(argc, argv, MostRatio);
    project.reset();
    if (longest > MostMilliseconds) {
        std::printf("The window does not answer for %.1f ms.\n", longest);
        return 1;
    }
    return result;
}
