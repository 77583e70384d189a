// What shapes and fills cost in the largest masks, until their pixels are set, beside a copy of the
// mask: areas of natural layers, and those with the narrowest and longest paths.

#include "benchmarks/support/Shapes.h"

#include "benchmarks/support/RatioReporter.h"
#include "layers/raster/Flood.h"
#include "layers/raster/Mask.h"
#include "layers/raster/Shapes.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <string>

using benchmark::State;
using raster::Region;

namespace {

constexpr int Side = 16384;
constexpr QSize Size(Side, Side);

/// A mask to fill, and where.
struct Canvas
{
    QImage mask;
    QPoint seed;
};

using MakeCanvas = std::function<Canvas()>;

Canvas Blank()
{
    QImage mask = raster::BlankMask(Size);
    // Takes its memory before the time counts.
    mask.fill(raster::MaskClear);
    return {mask, {Side / 2, Side / 2}};
}

Canvas Natural()
{
    Canvas canvas{RepeatedNaturalMask(Side), {}};
    // In the largest area of a few.
    qint64 most = 0;
    for (int i = 0; i < 8; ++i) {
        const QPoint seed(1000 + 200 * i, 1000);
        const qint64 count = raster::PixelCount(raster::AreaAt({canvas.mask}, seed));
        if (count > most) {
            most = count;
            canvas.seed = seed;
        }
    }
    return canvas;
}

/// Clear teeth between set ones, connected at the top.
Canvas Comb(int toothWidth)
{
    QImage mask = raster::BlankMask(Size);
    for (int y = toothWidth; y < Side; ++y) {
        uchar* row = mask.scanLine(y);
        for (int x = toothWidth; x < Side; x += 2 * toothWidth) {
            std::memset(row + x, raster::MaskSet, static_cast<std::size_t>(toothWidth));
        }
    }
    return {mask, {0, Side - 1}};
}

/// A clear path from the corner to the middle, between walls as wide.
Canvas Spiral(int width)
{
    QImage mask = raster::BlankMask(Size);
    mask.fill(raster::MaskSet);
    QRect rest(QPoint(0, 0), Size);
    const auto clear = [&mask](int x, int y, int w, int h) {
        for (int row = y; row < y + h; ++row) {
            std::memset(mask.scanLine(row) + x, raster::MaskClear, static_cast<std::size_t>(w));
        }
    };
    for (int lead = 0; rest.width() >= 4 * width; lead = 2 * width) {
        clear(rest.left() - lead, rest.top(), rest.width() + lead, width);
        clear(rest.right() - width + 1, rest.top(), width, rest.height());
        clear(rest.left(), rest.bottom() - width + 1, rest.width(), width);
        clear(rest.left(), rest.top() + 2 * width, width, rest.height() - 2 * width);
        rest.adjust(2 * width, 2 * width, -2 * width, -2 * width);
    }
    return {mask, {0, 0}};
}

void CopyMask(State& state)
{
    static const QImage from = RepeatedNaturalMask(Side);
    static QImage to = Blank().mask;
    for (auto _ : state) {
        std::memcpy(to.bits(), from.constBits(), static_cast<std::size_t>(from.sizeInBytes()));
        benchmark::ClobberMemory();
    }
}

/// Fills what find(masks, seed) gives, with one value and another in turn, so that it is the same
/// each time. Further masks, equal to the first one, bound it too.
void FillFound(State& state, const MakeCanvas& make, int maskCount,
               const std::function<Region(const QVector<QImage>&, QPoint)>& find)
{
    Canvas canvas = make();
    QVector<QImage> others;
    for (int i = 1; i < maskCount; ++i) {
        others.append(canvas.mask.copy());
    }
    uchar value = 1;
    qint64 count = 0;
    for (auto _ : state) {
        Region region = find(QVector<QImage>{canvas.mask} + others, canvas.seed);
        raster::Fill(canvas.mask, region, value);
        value = static_cast<uchar>(3 - value);
        count = static_cast<qint64>(region.size());
        benchmark::ClobberMemory();
    }
    state.counters["runs"] = static_cast<double>(count);
}

void DrawPolygon(State& state, const QVector<QPointF>& corners)
{
    QImage mask = Blank().mask;
    qint64 count = 0;
    for (auto _ : state) {
        const Region region = raster::PolygonRegion(corners, Size);
        raster::Fill(mask, region, raster::MaskSet);
        count = static_cast<qint64>(region.size());
        benchmark::ClobberMemory();
    }
    state.counters["runs"] = static_cast<double>(count);
}

/// A coast around the middle that reaches the mask's border.
QVector<QPointF> Coast(int cornerCount)
{
    std::mt19937 random(7);
    QVector<QPointF> corners;
    for (int i = 0; i < cornerCount; ++i) {
        const double angle = 2 * M_PI * i / cornerCount;
        const double radius = Side * (0.45 + 0.2 * random() / 4294967296.0);
        corners.append(QPointF(Side / 2.0, Side / 2.0) +
                       radius * QPointF(std::cos(angle), std::sin(angle)));
    }
    return corners;
}

/// From anywhere to anywhere: each row is crossed by a third of the edges.
QVector<QPointF> Tangle(int cornerCount)
{
    std::mt19937 random(7);
    QVector<QPointF> corners;
    for (int i = 0; i < cornerCount; ++i) {
        const double x = Side * (random() / 4294967296.0);
        corners.append({x, Side * (random() / 4294967296.0)});
    }
    return corners;
}

template <typename Work>
void Register(const std::string& name, Work work)
{
    benchmark::RegisterBenchmark((name + "/ours").c_str(), work)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark((name + "/memcpy of the mask").c_str(), CopyMask)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

void RegisterFill(const std::string& name, const MakeCanvas& make, int maskCount = 1)
{
    Register("fill " + name,
             [make, maskCount](State& s) { FillFound(s, make, maskCount, raster::AreaAt); });
}

} // namespace

int main(int argc, char** argv)
{
    RegisterFill("a blank mask", Blank);
    RegisterFill("a natural area", Natural);
    RegisterFill("a natural area in 3 masks", Natural, 3);
    for (const int width : {1, 16, 64}) {
        const std::string of = " of " + std::to_string(width);
        RegisterFill("a comb" + of, [width] { return Comb(width); });
        RegisterFill("a spiral" + of, [width] { return Spiral(width); });
    }
    Register("fill equal natural pixels", [](State& state) {
        FillFound(state, Natural, 1, [](const QVector<QImage>& masks, QPoint seed) {
            return raster::EqualPixels(masks.constFirst(), seed);
        });
    });
    Register("a coast of 1,000 corners", [](State& s) { DrawPolygon(s, Coast(1000)); });
    Register("a tangle of 1,000 corners", [](State& s) { DrawPolygon(s, Tangle(1000)); });
    return RunBenchmarks(argc, argv);
}
