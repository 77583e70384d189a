// quillmap-tool on a project with 32 layers of 2048 x 2048 pixels and 6 + 4 flag types, each run in
// a separate process, compared with a process that only reads and writes the same files.

#include "app/ProjectSettings.h"
#include "benchmarks/support/NaturalProject.h"
#include "benchmarks/support/RatioReporter.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cstdio>

using benchmark::State;

namespace {

constexpr int Side = 2048;
constexpr int LayerCount = 32;
constexpr int UsageCount = 6;
constexpr int ValueCount = 4;
constexpr double MiB = 1024.0 * 1024.0;
constexpr const char* OnceOption = "--once";

/// Reads the project's files, and writes as many bytes as the map has, with the same safety as the
/// tool.
int CopyFiles(bool isWriting)
{
    const QDir folder(QStringLiteral("layers"));
    QStringList names = {QStringLiteral("bench.xml")};
    for (int i = 0; i < LayerCount; ++i) {
        names.append(folder.filePath(LayerName(i) + QStringLiteral(".tga")));
    }
    for (const QString& name : qAsConst(names)) {
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly)) {
            return 1;
        }
        benchmark::DoNotOptimize(file.readAll());
    }
    if (!isWriting) {
        return 0;
    }
    constexpr int header = 24;
    const QByteArray map(header + Side * Side + Side * Side / 2, '\x55');
    QSaveFile file(QStringLiteral("copy.map"));
    return file.open(QIODevice::WriteOnly) && file.write(map) == map.size() && file.commit() ? 0
                                                                                             : 1;
}

void Run(State& state, const QString& program, const QStringList& arguments)
{
    for (auto _ : state) {
        if (QProcess::execute(program, arguments) != 0) {
            state.SkipWithError("the program failed");
        }
    }
}

void Register(const char* name, const QString& program, const QStringList& arguments)
{
    benchmark::RegisterBenchmark(name, [=](State& state) { Run(state, program, arguments); })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(1);
}

/// The peak resident memory of this process's children.
void PrintPeakMemory()
{
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    std::printf("\npeak memory of export: %.1f MiB; 64 MiB + one byte a pixel of a layer: %.1f\n",
                static_cast<double>(usage.ru_maxrss) / 1024.0, 64 + Side * Side / MiB);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && qstrcmp(argv[1], OnceOption) == 0) {
        return CopyFiles(qstrcmp(argv[2], "copy") == 0);
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    QDir::setCurrent(folder.path());
    const QString project = QStringLiteral("bench.xml");
    ProjectSettings::Instance().SetSizes(Side, Side, 15360, 15360);
    AddFlagTypes(UsageCount, ValueCount);
    if (!MakeProject(project, LayerCount)) {
        return 1;
    }
    const QString tool = QStringLiteral(BENCH_TOOL);
    const QStringList exporting = {QStringLiteral("export"), QStringLiteral("--quiet"), project};
    if (QProcess::execute(tool, exporting) != 0) {
        return 1;
    }
    PrintPeakMemory();

    const QString self = QCoreApplication::applicationFilePath();
    const QStringList copying = {QLatin1String(OnceOption), QStringLiteral("copy")};
    const QStringList reading = {QLatin1String(OnceOption), QStringLiteral("read")};
    Register("export/32 layers/ours", tool, exporting);
    Register("export/32 layers/read-and-write", self, copying);
    for (const char* command : {"check", "info"}) {
        const std::string work = std::string(command) + "/32 layers/";
        Register((work + "ours").c_str(), tool,
                 {QLatin1String(command), QStringLiteral("--quiet"), project});
        Register((work + "read").c_str(), self, reading);
    }
    return RunBenchmarks(argc, argv);
}
