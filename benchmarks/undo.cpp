// What it takes to remember a mask and to bring it back: touching tiles during a stroke, undo of a
// stroke and of a fill, and the memory of both.

#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "document/Brush.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskDelta.h"

#include <QGuiApplication>

#include <cmath>
#include <cstdio>
#include <cstring>

using benchmark::State;
using raster::MaskDelta;

namespace {

constexpr int StrokeLength = 4000;
constexpr int StepLength = 8;
constexpr QRgb Paint = 0xFF40C060U;

/// A mask in the memory that layers have, which nobody else holds.
QImage OwnCopy(const QImage& from)
{
    QImage mask = raster::BlankMask(from.size());
    std::memcpy(mask.bits(), from.constBits(), static_cast<std::size_t>(from.sizeInBytes()));
    return mask;
}

/// A stroke from one point to another, as LayerPainter makes it: a patch of each step.
class Stroke
{
public:
    Stroke(QImage& mask, int brushSize, double angle)
        : m_mask(mask)
    {
        m_brush.SetSize(brushSize);
        m_brush.SetPaintColor(Paint);
        const QPointF middle(mask.width() / 2.0, mask.height() / 2.0);
        m_direction = {std::cos(angle), std::sin(angle)};
        m_length = std::min(StrokeLength, mask.width() - 2 * brushSize);
        m_at = middle - m_direction * m_length / 2;
        m_start = m_at;
    }
    /// Begins again at the end.
    void Step(MaskDelta* delta)
    {
        if (m_done >= m_length) {
            m_done = 0;
            m_at = m_start;
        }
        const QPointF from = m_at;
        m_at += m_direction * StepLength;
        m_done += StepLength;
        const QRect part = Brush::PatchRect(m_brush.SegmentRect(from, m_at), m_mask.size());
        if (delta) {
            delta->Touch(m_mask, part);
        }
        QImage patch = raster::MaskToDisplay(m_mask.copy(part), Paint);
        m_brush.PaintSegment(patch, from, m_at, {part.topLeft(), m_mask.size()});
        const QImage painted = raster::ImageToMask(patch, Paint);
        for (int y = 0; y < part.height(); ++y) {
            std::memcpy(m_mask.scanLine(part.y() + y) + part.x(), painted.constScanLine(y),
                        static_cast<std::size_t>(part.width()));
        }
    }
    int StepCount() const { return m_length / StepLength; }

private:
    QImage& m_mask;
    Brush m_brush;
    QPointF m_start;
    QPointF m_at;
    QPointF m_direction;
    int m_length = 0;
    int m_done = 0;
};

/// Natural shapes; only one size lives at a time.
const QImage& NaturalOf(int side)
{
    static QImage mask;
    if (mask.width() != side) {
        mask = RepeatedNaturalMask(side);
    }
    return mask;
}

/// Whole strokes, each from the mask as it was; what is measured is their steps.
void StepThrough(State& state, int side, int brushSize, bool isRecorded)
{
    const QImage before = NaturalOf(side);
    QImage mask = OwnCopy(before);
    Stroke stroke(mask, brushSize, 0.4);
    MaskDelta delta;
    int steps = 0;
    for (auto _ : state) {
        if (steps++ == stroke.StepCount()) {
            state.PauseTiming();
            std::memcpy(mask.bits(), before.constBits(),
                        static_cast<std::size_t>(mask.sizeInBytes()));
            delta = MaskDelta();
            steps = 1;
            state.ResumeTiming();
        }
        stroke.Step(isRecorded ? &delta : nullptr);
    }
}

void RegisterSteps()
{
    for (const int side : {2048, 16384}) {
        for (const int size : {32, 256}) {
            char name[80];
            std::snprintf(name, sizeof name, "step of brush %d, %d/", size, side);
            const std::string group = name;
            for (const bool isRecorded : {true, false}) {
                benchmark::RegisterBenchmark((group + (isRecorded ? "ours" : "unrecorded")).c_str(),
                                             StepThrough, side, size, isRecorded)
                    ->Unit(benchmark::kMillisecond)
                    ->UseRealTime();
            }
        }
    }
}

/// A mask with a stroke across it, ended as the release of the button does.
struct PaintedMask
{
    PaintedMask(const QImage& before, double angle)
        : mask(OwnCopy(before))
    {
        Stroke stroke(mask, 256, angle);
        for (int i = 0; i < stroke.StepCount(); ++i) {
            stroke.Step(&delta);
        }
        touchedBytes = delta.ByteCount();
    }

    QImage mask;
    MaskDelta delta;
    qint64 touchedBytes = 0;
};

void SwapStroke(State& state, int side)
{
    PaintedMask painted(NaturalOf(side), 0.4);
    painted.delta.DropUnchanged(painted.mask);
    for (auto _ : state) {
        benchmark::DoNotOptimize(painted.delta.Swap(painted.mask));
    }
}

void ReleaseStroke(State& state, int side)
{
    for (auto _ : state) {
        state.PauseTiming();
        PaintedMask painted(NaturalOf(side), 0.4);
        state.ResumeTiming();
        painted.delta.DropUnchanged(painted.mask);
        state.PauseTiming();
        painted = {raster::BlankMask({300, 300}), 0};
        state.ResumeTiming();
    }
}

void CopyMask(State& state, int side)
{
    const QImage& from = NaturalOf(side);
    QImage to = OwnCopy(from);
    for (auto _ : state) {
        std::memcpy(to.bits(), from.constBits(), static_cast<std::size_t>(from.sizeInBytes()));
        benchmark::ClobberMemory();
    }
}

QImage Checkerboard(int side)
{
    return OwnCopy(CheckerboardMask({side, side}));
}

void SwapFill(State& state, int side, bool isNatural)
{
    QImage mask = raster::BlankMask({side, side});
    mask.fill(raster::MaskSet);
    auto delta = MaskDelta::Between(isNatural ? NaturalOf(side) : Checkerboard(side), mask);
    for (auto _ : state) {
        benchmark::DoNotOptimize(delta->Swap(mask));
    }
}

void RememberFill(State& state, int side)
{
    const QImage& before = NaturalOf(side);
    for (auto _ : state) {
        MaskDelta delta;
        delta.Touch(before, before.rect());
        benchmark::DoNotOptimize(delta.ByteCount());
    }
}

template <typename Work>
void Register(const std::string& name, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(), work)->Unit(benchmark::kMillisecond)->UseRealTime();
}

void RegisterSwaps()
{
    for (const int side : {2048, 16384}) {
        const std::string size = std::to_string(side);
        const auto copy = [side](State& state) { CopyMask(state, side); };
        Register("undo stroke, " + size + "/ours", [side](State& s) { SwapStroke(s, side); });
        Register("undo stroke, " + size + "/memcpy of the mask", copy);
        Register("undo fill of natural shapes, " + size + "/ours",
                 [side](State& s) { SwapFill(s, side, true); });
        Register("undo fill of natural shapes, " + size + "/memcpy of the mask", copy);
        Register("undo fill of a checkerboard, " + size + "/ours",
                 [side](State& s) { SwapFill(s, side, false); });
        Register("undo fill of a checkerboard, " + size + "/memcpy of the mask", copy);
        Register("touch the whole mask, " + size + "/ours",
                 [side](State& s) { RememberFill(s, side); });
        Register("touch the whole mask, " + size + "/memcpy of the mask", copy);
    }
    benchmark::RegisterBenchmark("release of a stroke, 16384/ours", ReleaseStroke, 16384)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(1);
}

void PrintMemory()
{
    constexpr int side = 16384;
    constexpr double kibibyte = 1024;
    const auto print = [](const char* what, qint64 bytes) {
        std::printf("memory of %-52s %9.1f KiB\n", what, static_cast<double>(bytes) / kibibyte);
    };
    for (const bool isNatural : {true, false}) {
        const QImage before = isNatural ? NaturalOf(side) : Checkerboard(side);
        for (const double angle : {0.0, 0.4, 0.785}) {
            PaintedMask painted(before, angle);
            painted.delta.DropUnchanged(painted.mask);
            char what[80];
            std::snprintf(what, sizeof what, "a stroke over %s, angle %g",
                          isNatural ? "natural shapes" : "a checkerboard", angle);
            print(what, painted.touchedBytes);
            std::snprintf(what, sizeof what, "the same, released");
            print(what, painted.delta.ByteCount());
        }
        QImage mask = raster::BlankMask(before.size());
        mask.fill(raster::MaskSet);
        auto delta = MaskDelta::Between(before, mask);
        print(isNatural ? "a fill over natural shapes" : "a fill over a checkerboard",
              delta->ByteCount());
        delta->Swap(mask);
        print("the same, undone", delta->ByteCount());
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    PrintMemory();
    RegisterSteps();
    RegisterSwaps();
    return RunBenchmarks(argc, argv);
}
