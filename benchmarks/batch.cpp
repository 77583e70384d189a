// The whole batch run of a project with 32 layers of 2048 x 2048 pixels.

#include "app/BatchExport.h"
#include "app/ProjectSettings.h"
#include "benchmarks/support/LiteralCodecs.h"
#include "benchmarks/support/NaturalProject.h"
#include "benchmarks/support/RatioReporter.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cstdio>

using benchmark::State;

namespace {

constexpr int Side = 2048;
constexpr int LayerCount = 32;
constexpr double MiB = 1024.0 * 1024.0;

void Quiet(QtMsgType, const QMessageLogContext&, const QString&) {}

/// Reads every layer pixel by pixel. Without flags there is nothing else to do.
void RunPerPixel()
{
    const QDir folder(QStringLiteral("layers"));
    const QStringList names = folder.entryList(QDir::Files);
    std::vector<QImage> masks;
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            masks.push_back(literal::DecodeTarga(file.readAll(), {Side, Side}));
        }
    }
    benchmark::DoNotOptimize(masks.data());
}

void ReadFiles()
{
    const QDir folder(QStringLiteral("layers"));
    const QStringList names = folder.entryList(QDir::Files);
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            benchmark::DoNotOptimize(file.readAll());
        }
    }
}

template <typename Work>
void Register(const char* name, Work work)
{
    benchmark::RegisterBenchmark(name,
                                 [work](State& state) {
                                     for (auto _ : state) {
                                         work();
                                     }
                                     state.SetBytesProcessed(state.iterations() * LayerCount *
                                                             Side * Side);
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(1);
}

/// The peak resident memory of the real program in one run.
void PrintPeakMemory()
{
    QProcess program;
    program.start(QStringLiteral(BENCH_QUILLMAP),
                  {QStringLiteral("--no-gui"), QStringLiteral("--config"),
                   QStringLiteral("bench.xml"), QStringLiteral("--output"), QStringLiteral("out")});
    program.waitForFinished(-1);
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    const double peak = static_cast<double>(usage.ru_maxrss) / 1024.0;
    const double limit = 1.3 * LayerCount * Side * Side / MiB + 40;
    std::printf(
        "\npeak memory of the batch run: %.1f MiB; 1.3 bytes a layer pixel + 40 MiB: %.1f\n", peak,
        limit);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    qInstallMessageHandler(Quiet);
    const QTemporaryDir folder;
    ProjectSettings::Instance().SetSizes(Side, Side, 15360, 15360);
    QDir::setCurrent(folder.path());
    if (!MakeProject(QStringLiteral("bench.xml"), LayerCount)) {
        return 1;
    }
    PrintPeakMemory();
    Register("batch/32 layers/ours", [] {
        RunBatchExport(QStringLiteral("bench.xml"), QStringLiteral("out"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    Register("batch/32 layers/per-pixel", RunPerPixel);
    Register("batch/32 layers/read-files", ReadFiles);
    return RunBenchmarks(argc, argv);
}
