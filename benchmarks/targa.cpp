// Reading and writing layer bitmaps of 2048 x 2048 pixels.

#include "layers/Targa.h"
#include "app/ProjectSettings.h"
#include "benchmarks/support/ColdTime.h"
#include "benchmarks/support/LiteralCodecs.h"
#include "benchmarks/support/PythonScript.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "layers/raster/TargaCodec.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

using benchmark::State;

namespace {

constexpr int Side = 2048;

struct Case
{
    std::string name;
    QImage mask;
    QByteArray file;
    QString path;
};

QByteArray Encoded(const QImage& mask)
{
    QByteArray file;
    raster::EncodeTarga(mask, raster::TargaPacking::RunLength,
                        [&file](const char* bytes, qint64 count) {
                            file.append(bytes, static_cast<int>(count));
                            return true;
                        });
    return file;
}

/// The same without runs across row ends, which some readers refuse.
QByteArray EncodedByRows(const QImage& mask)
{
    QByteArray file = Encoded(mask).left(18);
    for (int y = 0; y < mask.height(); ++y) {
        file.append(Encoded(mask.copy(0, y, mask.width(), 1)).mid(18));
    }
    return file;
}

void CountBytes(State& state)
{
    state.SetBytesProcessed(state.iterations() * Side * Side);
}

template <typename Work>
void Register(const std::string& name, Work work)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [work](State& state) {
                                     MeasureCold(state, work);
                                     CountBytes(state);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime();
}

/// A sink that copies the bytes into a buffer, like that of a file.
struct Buffer
{
    std::vector<char> bytes = std::vector<char>(3 * Side * Side);
    qint64 used = 0;

    bool Take(const char* from, qint64 count)
    {
        std::copy(from, from + count, bytes.begin() + used);
        used += count;
        return true;
    }
};

void RegisterDecode(const Case& c)
{
    const auto* bytes = reinterpret_cast<const uchar*>(c.file.constData());
    Register("decode/" + c.name + "/ours", [&c, bytes] {
        benchmark::DoNotOptimize(raster::DecodeTarga(bytes, c.file.size(), {Side, Side}));
    });
    Register("decode/" + c.name + "/memcpy", [&c] { CopyPixels(c.mask); });
    Register("decode/" + c.name + "/per-pixel", [&c] {
        benchmark::DoNotOptimize(literal::DecodeTarga(c.file, {Side, Side}));
    });
    // Reads the file repeatedly, like the script.
    const std::string own = "read-file/" + c.name + "/ours";
    benchmark::RegisterBenchmark(own.c_str(),
                                 [&c](State& state) {
                                     for (auto _ : state) {
                                         benchmark::DoNotOptimize(LoadTarga(c.path));
                                     }
                                     CountBytes(state);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
    const std::string pillow = "read-file/" + c.name + "/pillow";
    benchmark::RegisterBenchmark(
        pillow.c_str(),
        [&c](State& state) {
            MeasurePython(state, QStringLiteral(BENCH_SCRIPTS "/read_targa.py"), {c.path});
        })
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime()
        ->Iterations(1);
}

void RegisterEncode(const Case& c)
{
    Register("encode/" + c.name + "/ours", [&c] {
        static Buffer buffer;
        buffer.used = 0;
        raster::EncodeTarga(
            c.mask, raster::TargaPacking::RunLength,
            [](const char* from, qint64 count) { return buffer.Take(from, count); });
    });
    Register("encode/" + c.name + "/memcpy", [&c] { CopyPixels(c.mask); });
    Register("encode/" + c.name + "/per-pixel",
             [&c] { benchmark::DoNotOptimize(literal::EncodeTarga(c.mask)); });
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    ProjectSettings::Instance().SetSizes(Side, Side, 15360, 15360);
    const QTemporaryDir folder;
    std::vector<Case> cases = {{"natural", ExampleMasks().at(5), {}, {}},
                               {"checkerboard", CheckerboardMask({Side, Side}), {}, {}}};
    for (Case& c : cases) {
        c.file = Encoded(c.mask);
        c.path = folder.filePath(QString::fromStdString(c.name) + QStringLiteral(".tga"));
        const QByteArray byRows = EncodedByRows(c.mask);
        QFile file(c.path);
        if (!file.open(QIODevice::WriteOnly) || file.write(byRows) != byRows.size()) {
            return 1;
        }
        RegisterDecode(c);
        RegisterEncode(c);
    }
    return RunBenchmarks(argc, argv);
}
