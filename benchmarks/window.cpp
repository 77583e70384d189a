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
            seconds = LoadSeconds(window, folder + QStringLiteral("/bench.xml"));
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
    const QString path = folder.filePath(QStringLiteral("bench.xml"));
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

    std::vector<QImage> masks;
    for (int i = 0; i < LayerCount; ++i) {
        masks.push_back(NaturalMask({Side, Side}, 100U + static_cast<quint32>(i)));
    }
    const QString home = folder.path();
    RegisterProcess("load/32 layers/ours", QStringLiteral("load"), home, &ProcessTimes::own);
    RegisterProcess("load/32 layers/codec", QStringLiteral("codec"), home, &ProcessTimes::own);
    Register("load/32 layers, again/ours", [&](State& state) {
        for (auto _ : state) {
            state.SetIterationTime(LoadSeconds(window, path));
        }
    })->UseManualTime();
    Register("load/32 layers, again/codec", [&](State& state) {
        for (auto _ : state) {
            state.SetIterationTime(ReadSeconds(home));
        }
    })->UseManualTime();
    Register("save/32 layers/ours", [&](State& state) {
        for (auto _ : state) {
            window.SaveProjectFile(path);
        }
    })->UseRealTime();
    Register("save/32 layers, one changed/ours", [&](State& state) {
        KeepVersions(true);
        for (auto _ : state) {
            SaveChanged(window, path, state);
        }
    })->UseRealTime();
    Register("save/32 layers, one changed/without-versions", [&](State& state) {
        KeepVersions(false);
        for (auto _ : state) {
            SaveChanged(window, path, state);
        }
        KeepVersions(true);
    })->UseRealTime();
    QDir().mkpath(folder.filePath(QStringLiteral("copy")));
    Register("save/32 layers/codec", [&](State& state) {
        for (auto _ : state) {
            WriteLayers(masks, folder.filePath(QStringLiteral("copy")));
        }
    })->UseRealTime();
    RegisterProcess("start/first picture/ours", QStringLiteral("window"), home,
                    &ProcessTimes::untilAnswer);
    RegisterProcess("start/first picture/empty-window", QStringLiteral("empty-window"), home,
                    &ProcessTimes::untilAnswer);
    return RunBenchmarks(argc, argv);
}
