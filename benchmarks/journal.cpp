// What the journal costs the user: a brush stroke with and without it, from press to release, and
// the longest piece of its work during which the window does not answer. The project has 32 layers
// of 16384 x 16384 pixels and 20,000 zones.

#include "document/journal/Journal.h"
#include "app/ProjectSettings.h"
#include "benchmarks/support/Shapes.h"
#include "canvas/LayerPainter.h"
#include "document/Document.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/Targa.h"
#include "layers/raster/Mask.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <vector>

namespace {

constexpr int Side = 16384;
constexpr int LayerCount = 32;
constexpr int TypeCount = 10;
constexpr int TerritoriesPerType = 10;
constexpr int ZonesPerTerritory = 200;

double Milliseconds(qint64 nanoseconds)
{
    return static_cast<double>(nanoseconds) / 1e6;
}

/// Of this thread, in nanoseconds. On a busy machine the clock counts the work of others too.
qint64 CpuTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

QImage Natural()
{
    const QImage piece = NaturalMask({2048, 2048}, 7);
    QImage mask = raster::BlankMask({Side, Side});
    for (int y = 0; y < Side; ++y) {
        for (int x = 0; x < Side; x += piece.width()) {
            std::memcpy(mask.scanLine(y) + x, piece.constScanLine(y % piece.height()),
                        static_cast<std::size_t>(piece.width()));
        }
    }
    return mask;
}

/// The open project, as after a load. All layers but the first share one mask, so that they fit.
class Project
{
public:
    Project()
    {
        document.SetEditable(true);
        document.Begin({Side, Side}, {Side, Side}, folder.path());
        AddLayers();
        AddZones();
        QFile(folder.filePath(QStringLiteral("project.xml"))).open(QIODevice::WriteOnly);
        document.SetPath(folder.filePath(QStringLiteral("project.xml")));
        document.BeginHistory(true);
    }

    Layer& PaintedLayer() { return *document.Layers().LayerAt(0); }

    /// Returns the nanoseconds of this thread from press to release of a stroke of 4,000 pixels.
    qint64 Stroke(int number)
    {
        constexpr int length = 4000;
        constexpr int step = 8;
        QPointF from(300 + number * 997 % 10000, 300 + number * 499 % 10000);
        LayerPainter painter;
        painter.Load(&PaintedLayer());
        Brush brush;
        brush.SetSize(256);
        brush.SetPaintColor(QColor(PaintedLayer().Color().rgb()));
        const BrushAction action = number % 2 == 0 ? BrushAction::Paint : BrushAction::Erase;

        const qint64 begin = CpuTime();
        document.SetHandBusy(true);
        painter.BeginStroke();
        QRect changed;
        for (int done = 0; done < length; done += step) {
            brush.SetPosition(from + QPointF(step * 0.8, step * 0.6));
            changed |= painter.Segment(brush, action, from);
            from = brush.Position();
            QCoreApplication::processEvents();
        }
        document.SetHandBusy(false);
        document.Do(std::make_unique<PaintMask>(QStringLiteral("Stroke"), PaintedLayer(),
                                                painter.EndStroke(), changed));
        return CpuTime() - begin;
    }

    void Fill(uchar value)
    {
        QImage mask = raster::BlankMask({Side, Side});
        mask.fill(value);
        document.Do(std::make_unique<PaintMask>(QStringLiteral("Fill"), PaintedLayer(), mask));
    }

    QTemporaryDir folder;
    Document document;
    Zone* zone = nullptr;

private:
    void AddLayers()
    {
        const QImage natural = Natural();
        QDir(folder.path()).mkdir(QStringLiteral("layers"));
        const QString bitmap = folder.filePath(QStringLiteral("layers/first.tga"));
        SaveTarga(bitmap, natural, true);
        for (int i = 0; i < LayerCount; ++i) {
            document.Do(Edits::AddPaintedLayer(document.Layers(), i == 0 ? Natural() : natural));
            const QString name = document.Layers().LayerAt(i)->text();
            QFile::copy(bitmap, folder.filePath(QStringLiteral("layers/%1.tga").arg(name)));
        }
    }

    void AddZones()
    {
        ZoneValues values;
        values.radius = 100;
        values.usage = ZoneValues::DynamicEvent;
        values.eventName = QStringLiteral("Migration");
        for (int i = 0; i < TypeCount; ++i) {
            document.Do(Edits::AddType(document.Types(), std::make_unique<TerritoryType>()));
            TerritoryType* type = document.Types().Types().last();
            for (int j = 0; j < TerritoriesPerType; ++j) {
                Territory* territory = type->NewTerritory();
                for (int k = 0; k < ZonesPerTerritory; ++k) {
                    zone = new Zone(territory);
                    zone->SetValues(values);
                    zone->setPos(80 * k, 100 * j + 1000 * i);
                    territory->AddZone(zone);
                }
            }
        }
    }
};

/// Handles events until the journal has had nothing to do for a second.
class Rest
{
public:
    explicit Rest(Journal& journal)
    {
        journal.SetObserver([this](bool begins) {
            if (begins) {
                m_wallAtBegin = m_wall.nsecsElapsed();
                m_cpuAtBegin = CpuTime();
                return;
            }
            const qint64 cpu = CpuTime() - m_cpuAtBegin;
            m_longestWall = std::max(m_longestWall, m_wall.nsecsElapsed() - m_wallAtBegin);
            m_longestCpu = std::max(m_longestCpu, cpu);
            m_sum += cpu;
            ++m_count;
            m_quiet.start();
        });
        m_wall.start();
    }

    void Print(const char* what)
    {
        constexpr int quietMilliseconds = 1000;
        m_quiet.start();
        while (!m_quiet.hasExpired(quietMilliseconds)) {
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        }
        std::printf("%-36s %6d slices, longest %6.2f ms (%6.2f ms of the clock), all %8.1f ms\n",
                    what, m_count, Milliseconds(m_longestCpu), Milliseconds(m_longestWall),
                    Milliseconds(m_sum));
        std::fflush(stdout);
        m_longestCpu = 0;
        m_longestWall = 0;
        m_sum = 0;
        m_count = 0;
    }

private:
    QElapsedTimer m_quiet;
    QElapsedTimer m_wall;
    qint64 m_wallAtBegin = 0;
    qint64 m_cpuAtBegin = 0;
    qint64 m_longestWall = 0;
    qint64 m_longestCpu = 0;
    qint64 m_sum = 0;
    int m_count = 0;
};

void MeasureSlices(Project& project)
{
    Document& document = project.document;
    Journal journal(document);
    Rest rest(journal);
    // Keeps the event loop awake.
    QTimer tick;
    tick.start(5);
    document.BeginHistory(true);

    document.Do(Edits::SetLayerOpacity(project.PaintedLayer(), 99));
    rest.Print("first change, bitmaps by reference");
    for (int i = 0; i < 5; ++i) {
        project.Stroke(i);
    }
    rest.Print("five strokes");
    for (int i = 0; i < 5; ++i) {
        document.Do(
            Edits::MoveZones({{project.zone, project.zone->pos(), QPointF(i + 1, i + 1)}}, false));
        document.SetHandBusy(true);
        document.SetHandBusy(false);
    }
    rest.Print("five zones moved, 20,000 written");
    project.Fill(raster::MaskSet);
    project.Stroke(0);
    rest.Print("whole mask filled, stroke at once");
    document.Undo();
    document.Undo();
    rest.Print("undo of both");
    document.Do(Edits::AddPaintedLayer(document.Layers(), raster::BlankMask({Side, Side})));
    rest.Print("layer added");
    document.BeginHistory(false);
    rest.Print("project that no file holds");
    project.Stroke(1);
    document.Do(Edits::MoveZones({{project.zone, project.zone->pos(), QPointF(77, 77)}}, false));
    rest.Print("stroke and zone in it");
}

/// The lower quartile: other work on the machine only makes a stroke slower.
double Quartile(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 4];
}

void MeasureStrokes(Project& project)
{
    constexpr int rounds = 12;
    std::vector<double> with;
    std::vector<double> without;
    std::unique_ptr<Journal> journal;
    for (int i = 0; i < rounds; ++i) {
        const bool isKept = i % 2 == 0;
        journal = isKept ? std::make_unique<Journal>(project.document) : nullptr;
        project.document.BeginHistory(true);
        // The first stroke begins the journal, or warms up.
        project.Stroke(i / 2);
        if (journal) {
            journal->Flush();
        }
        for (int j = 1; j < 5; ++j) {
            (isKept ? with : without).push_back(Milliseconds(project.Stroke(i / 2 + j)));
            QElapsedTimer pause;
            pause.start();
            while (!pause.hasExpired(100)) {
                QCoreApplication::processEvents();
            }
        }
    }
    std::printf("stroke from press to release: %.2f ms with journal, %.2f ms without, ratio %.3f\n",
                Quartile(with), Quartile(without), Quartile(with) / Quartile(without));
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir data;
    qputenv("XDG_DATA_HOME", data.path().toLocal8Bit());
    const QApplication application(argc, argv);
    Project project;
    MeasureSlices(project);
    MeasureStrokes(project);
    return 0;
}
