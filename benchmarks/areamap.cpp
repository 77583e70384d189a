// Composing and importing area maps of 2048 x 2048 pixels.

#include "benchmarks/support/ColdTime.h"
#include "benchmarks/support/LiteralCodecs.h"
#include "benchmarks/support/PythonScript.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "layers/raster/ComposeFields.h"
#include "layers/raster/Mask.h"
#include "layers/raster/SplitFields.h"

#include <QFile>
#include <QTemporaryDir>

#include <utility>

using benchmark::State;
using raster::BitFieldRaster;
using raster::FlaggedMask;

namespace {

constexpr int Side = 2048;
constexpr int LayerCount = 32;
constexpr int UsageCount = 6;
constexpr int ValueCount = 4;
constexpr QSize Size(Side, Side);

/// The example's layers, repeated as often as needed.
QVector<FlaggedMask> NaturalLayers()
{
    const std::vector<QImage> masks = ExampleMasks();
    QVector<FlaggedMask> layers;
    for (int i = 0; i < LayerCount; ++i) {
        const QImage& mask = masks[static_cast<std::size_t>(i) % masks.size()];
        layers.append({mask.copy(), 1U << (i % UsageCount), 1U << (i % ValueCount)});
    }
    return layers;
}

QVector<FlaggedMask> FullLayers()
{
    QVector<FlaggedMask> layers;
    for (int i = 0; i < LayerCount; ++i) {
        QImage mask = raster::BlankMask(Size);
        mask.fill(raster::MaskSet);
        layers.append({mask, 1U << (i % UsageCount), 1U << (i % ValueCount)});
    }
    return layers;
}

template <typename Work>
benchmark::internal::Benchmark* Register(const std::string& name, qint64 bytes, Work work)
{
    return benchmark::RegisterBenchmark(name.c_str(),
                                        [work, bytes](State& state) {
                                            MeasureCold(state, work);
                                            state.SetBytesProcessed(state.iterations() * bytes);
                                        })
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime();
}

void RegisterCompose(const std::string& name, const QVector<FlaggedMask>& layers)
{
    const qint64 bytes = qint64(Side) * Side * layers.size();
    Register("compose/" + name + "/ours", bytes, [&layers] {
        BitFieldRaster usages(8, Side, Side);
        BitFieldRaster values(4, Side, Side);
        raster::ComposeFields(layers, usages, values);
        benchmark::DoNotOptimize(usages.Words());
        benchmark::DoNotOptimize(values.Words());
    });
    Register("compose/" + name + "/read-once", bytes, [&layers] {
        for (const FlaggedMask& layer : layers) {
            benchmark::DoNotOptimize(ReadPixels(layer.mask));
        }
    });
    Register("compose/" + name + "/per-pixel", bytes, [&layers] {
        benchmark::DoNotOptimize(literal::ComposeFields(layers, 8, Size, &FlaggedMask::usageFlags));
        benchmark::DoNotOptimize(literal::ComposeFields(layers, 4, Size, &FlaggedMask::valueFlags));
    })->Iterations(1);
}

void RegisterNumpy(const QString& masksFile)
{
    benchmark::RegisterBenchmark(
        "compose/natural/numpy",
        [masksFile](State& state) {
            MeasurePython(state, QStringLiteral(BENCH_SCRIPTS "/write_map.py"), {masksFile});
        })
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime()
        ->Iterations(1);
}

void RegisterSplit(const BitFieldRaster& fields)
{
    constexpr int flagCount = 8;
    const qint64 bytes = qint64(flagCount) * Side * Side;
    Register("import/natural/ours", bytes, [&fields] {
        raster::WordBlock rest{fields.Words(), fields.WordCount()};
        const auto nextWords = [&rest] { return std::exchange(rest, {}); };
        benchmark::DoNotOptimize(raster::SplitFields({nextWords, 8, Size}, flagCount));
    });
    Register("import/natural/clear-masks", bytes, [] {
        std::vector<QImage> masks;
        for (int i = 0; i < flagCount; ++i) {
            masks.emplace_back(Size, QImage::Format_Indexed8);
            masks.back().fill(raster::MaskClear);
        }
        benchmark::DoNotOptimize(masks.data());
    });
    Register("import/natural/per-pixel", bytes, [&fields] {
        benchmark::DoNotOptimize(literal::SplitFields(fields, Size, flagCount));
    })->Iterations(1);
}

bool WriteMasks(const QString& path, const QVector<FlaggedMask>& layers)
{
    QFile file(path);
    bool isWritten = file.open(QIODevice::WriteOnly);
    for (const FlaggedMask& layer : layers) {
        const auto* bytes = reinterpret_cast<const char*>(layer.mask.constBits());
        isWritten = isWritten && file.write(bytes, Side * Side) == Side * Side;
    }
    return isWritten;
}

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir folder;
    const QVector<FlaggedMask> natural = NaturalLayers();
    const QVector<FlaggedMask> full = FullLayers();
    const QString masksFile = folder.filePath(QStringLiteral("masks.raw"));
    if (!WriteMasks(masksFile, natural)) {
        return 1;
    }
    QVector<FlaggedMask> eightFlags = natural.mid(0, 8);
    for (int i = 0; i < eightFlags.size(); ++i) {
        eightFlags[i].usageFlags = 1U << i;
    }
    BitFieldRaster fields(8, Side, Side);
    BitFieldRaster unused(0, Side, Side);
    raster::ComposeFields(eightFlags, fields, unused);

    RegisterCompose("natural", natural);
    RegisterCompose("full", full);
    RegisterNumpy(masksFile);
    RegisterSplit(fields);
    return RunBenchmarks(argc, argv);
}
