// The editor's window: loading and saving a project with 32 layers of 2048 x 2048 pixels, what
// keeping earlier versions adds to a save, how long it does not respond meanwhile, and how long it
// takes to appear.

#include "app/ProjectSettings.h"
#include "benchmarks/support/NaturalProject.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "benchmarks/support/WindowUser.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/Targa.h"
#include "ui/QuillmapWindow.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

#include <chrono>
#include <cstdio>

using benchmark::State;

namespace {

constexpr int Side = 2048;
constexpr int LayerCount = 32;
const QLatin1String OnceOption("--once");

void Quiet(QtMsgType, const QMessageLogContext&, const QString&) {}

QString ProjectIn(const QString& folder)
{
    return folder + QStringLiteral("/bench.xml");
}

double ReadSeconds(const QString& folder)
{
    const auto begin = std::chrono::steady_clock::now();
    std::vector<QImage> masks;
    for (int i = 0; i < LayerCount; ++i) {
        masks.push_back(LoadTarga(QStringLiteral("%1/layers/%2.tga").arg(folder, LayerName(i))));
    }
    benchmark::DoNotOptimize(masks.data());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void WriteLayers(const std::vector<QImage>& masks, const QString& folder)
{
    for (int i = 0; i < LayerCount; ++i) {
        SaveTarga(QStringLiteral("%1/%2.tga").arg(folder, LayerName(i)),
                  masks[static_cast<size_t>(i)], true);
    }
}

void KeepVersions(bool areKept)
{
    QSettings settings(QStringLiteral("Halvern Works"), QStringLiteral("Tarvo Tools"));
    const QString key = QStringLiteral("Versions/maxBytes");
    areKept ? settings.remove(key) : settings.setValue(key, 0);
}

/// Saves the project after a change of its first layer.
void SaveChanged(QuillmapWindow& window, const QString& path, State& state)
{
    state.PauseTiming();
    Layer* layer = window.GetDocument().Layers().LayerAt(0);
    QImage mask = layer->Image().copy();
    uchar* row = mask.scanLine(Side / 2);
    row[Side / 2] = row[Side / 2] == 0 ? 255 : 0;
    layer->TakePaintedMask(mask);
    state.ResumeTiming();
    window.SaveProjectFile(path);
}

/// Returns when the window has been painted for the first time.
void Appear(QWidget& window)
{
    window.show();
    while (!window.testAttribute(Qt::WA_Mapped)) {
        QCoreApplication::processEvents();
    }
    window.grab();
}

/// The work of a separate process, like an editor that has just been started: none of its memory is
/// warm. Prints the seconds that it took.
int RunOnce(const QString& work, const QString& folder)
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder);
    double seconds = 0.0;
    if (work == QLatin1String("empty-window")) {
        QMainWindow window;
        Appear(window);
    } else if (work == QLatin1String("codec")) {
        seconds = ReadSeconds(folder);
    } else {
        QuillmapWindow window{QString()};
        Appear(window);
        if (work == QLatin1String("load")) {
            seconds = LoadSeconds(window, ProjectIn(folder));
        }
    }
    std::printf("%.9f\n", seconds);
    std::fflush(stdout);
    return 0;
}

struct ProcessTimes
{
    double untilAnswer = 0.0;
    double own = 0.0;
};

ProcessTimes RunProcess(const QString& work, const QString& folder)
{
    const auto begin = std::chrono::steady_clock::now();
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {OnceOption, work, folder});
    QByteArray answer;
    while (!answer.endsWith('\n') && process.waitForReadyRead()) {
        answer += process.readAll();
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    process.waitForFinished();
    return {seconds, answer.trimmed().toDouble()};
}

template <typename Work>
benchmark::internal::Benchmark* Register(const char* name, Work work)
{
    return benchmark::RegisterBenchmark(name, work)->Unit(benchmark::kMillisecond)->Iterations(1);
}

void RegisterProcess(const char* name, const QString& work, const QString& folder,
                     double ProcessTimes::*time)
{
    Register(name, [=](State& state) {
        for (auto _ : state) {
            state.SetIterationTime(RunProcess(work, folder).*time);
        }
    })->UseManualTime();
}

void RegisterLoads(QuillmapWindow& window, const QString& folder)
{
    RegisterProcess("load/32 layers/ours", QStringLiteral("load"), folder, &ProcessTimes::own);
    RegisterProcess("load/32 layers/codec", QStringLiteral("codec"), folder, &ProcessTimes::own);
    Register("load/32 layers, again/ours", [&window, folder](State& state) {
        for (auto _ : state) {
            state.SetIterationTime(LoadSeconds(window, ProjectIn(folder)));
        }
    })->UseManualTime();
    Register("load/32 layers, again/codec", [folder](State& state) {
        for (auto _ : state) {
            state.SetIterationTime(ReadSeconds(folder));
        }
    })->UseManualTime();
}

void RegisterSaves(QuillmapWindow& window, const QString& folder)
{
    const QString path = ProjectIn(folder);
    Register("save/32 layers/ours", [&window, path](State& state) {
        for (auto _ : state) {
            window.SaveProjectFile(path);
        }
    })->UseRealTime();
    for (const bool areKept : {true, false}) {
        const char* name = areKept ? "save/32 layers, one changed/ours"
                                   : "save/32 layers, one changed/without-versions";
        Register(name, [&window, path, areKept](State& state) {
            KeepVersions(areKept);
            for (auto _ : state) {
                SaveChanged(window, path, state);
            }
            KeepVersions(true);
        })->UseRealTime();
    }
    std::vector<QImage> masks;
    for (int i = 0; i < LayerCount; ++i) {
        masks.push_back(NaturalMask({Side, Side}, 100U + static_cast<quint32>(i)));
    }
    const QString copy = folder + QStringLiteral("/copy");
    QDir().mkpath(copy);
    Register("save/32 layers/codec", [masks, copy](State& state) {
        for (auto _ : state) {
            WriteLayers(masks, copy);
        }
    })->UseRealTime();
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    qInstallMessageHandler(Quiet);
    ProjectSettings::Instance().SetSizes(Side, Side, 15360, 15360);
    if (argc == 4 && QString::fromLocal8Bit(argv[1]) == OnceOption) {
        return RunOnce(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    }
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath(QStringLiteral("data"))));
    ProjectSettings::Instance().SetDir(QDir(folder.path()));
    const QString path = ProjectIn(folder.path());
    const QWidget guiIsRunning;
    if (!MakeProject(path, LayerCount)) {
        return 1;
    }
    QuillmapWindow window{QString()};
    window.show();
    Pulse pulse;
    LoadSeconds(window, path, &pulse);
    const qint64 deafWhileLoading = pulse.LongestMilliseconds();
    pulse.Reset();
    window.SaveProjectFile(path);
    pulse.Tick();
    std::printf("\nlongest time without an answer: %lld ms loading, %lld ms saving (allowed 100)\n",
                static_cast<long long>(deafWhileLoading),
                static_cast<long long>(pulse.LongestMilliseconds()));

    RegisterLoads(window, folder.path());
    RegisterSaves(window, folder.path());
    RegisterProcess("start/first picture/ours", QStringLiteral("window"), folder.path(),
                    &ProcessTimes::untilAnswer);
    RegisterProcess("start/first picture/empty-window", QStringLiteral("empty-window"),
                    folder.path(), &ProcessTimes::untilAnswer);
    return RunBenchmarks(argc, argv);
}
