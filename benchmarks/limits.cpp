// The largest and smallest projects that the editor accepts. Each is opened, saved and exported in
// the window of a separate process, and its time and memory are printed.

#include "app/ProjectSettings.h"
#include "benchmarks/support/NaturalProject.h"
#include "benchmarks/support/WindowUser.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "ui/QuillmapWindow.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cstdio>

namespace {

struct Case
{
    const char* name;
    int layerSize;
    int worldSize;
    int layers;
    int zones;
};

constexpr Case Cases[] = {
    {"200 layers of 2048 x 2048", 2048, 15360, 200, 0},
    {"8 layers of 16384 x 16384", 16384, 15360, 8, 0},
    {"20,000 zones", 2048, 15360, 1, 20000},
    {"a world of 1 m", 2048, 1, 2, 100},
    {"a world of 65536 m", 2048, 65536, 2, 100},
    {"layers of 32 x 32", 32, 15360, 2, 100},
    {"layers of 33 x 33", 33, 15360, 2, 100},
    {"layers of 1001 x 1001", 1001, 15360, 2, 100},
};

void Quiet(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    if (type == QtCriticalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(message));
    }
}

void AddZones(TerritoryTypeList& types, int count)
{
    constexpr int zonesPerTerritory = 100;
    auto* type = new TerritoryType(QStringLiteral("herds"));
    types.AddType(type);
    Territory* territory = nullptr;
    for (int i = 0; i < count; ++i) {
        if (i % zonesPerTerritory == 0) {
            territory = new Territory(QStringLiteral("herd %1").arg(i / zonesPerTerritory));
            type->AddTerritory(territory);
        }
        auto* zone = new Zone(territory, 50.0F);
        territory->AddZone(zone);
        zone->setPos(i * 37 % 2048, i * 101 % 2048);
    }
}

int Make(const Case& made, const QString& path)
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetSizes(made.layerSize, made.layerSize, made.worldSize, made.worldSize);
    constexpr int typeCount = 6;
    AddFlagTypes(typeCount, typeCount);
    TerritoryTypeList types;
    AddZones(types, made.zones);
    return MakeProject(path, made.layers, types) ? 0 : 1;
}

int Edit(const Case& edited, const QString& path)
{
    QuillmapWindow window{QString()};
    window.show();
    const double loading = LoadSeconds(window, path);
    QElapsedTimer sinceStart;
    sinceStart.start();
    const bool isSaved = window.SaveProjectFile(path);
    const double saving = double(sinceStart.restart()) / 1000.0;
    window.SaveAreaMap();
    const double exporting = double(sinceStart.elapsed()) / 1000.0;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%-28s %8.2f s %8.2f s %8.2f s %8.0f MiB%s\n", edited.name, loading, saving,
                exporting, double(usage.ru_maxrss) / 1024.0, isSaved ? "" : "  NOT SAVED");
    std::fflush(stdout);
    return isSaved ? 0 : 1;
}

int RunInProcess(const char* what, int number, const QString& folder)
{
    return QProcess::execute(QCoreApplication::applicationFilePath(),
                             {QLatin1String(what), QString::number(number), folder});
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    qInstallMessageHandler(Quiet);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4) {
        const Case& wanted = Cases[arguments.at(2).toInt()];
        const QString folder = arguments.at(3);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder);
        ProjectSettings::Instance().projectDir = QDir(folder);
        const QString path = folder + QStringLiteral("/limits.xml");
        return arguments.at(1) == QLatin1String("--make") ? Make(wanted, path) : Edit(wanted, path);
    }
    std::printf("%-28s %10s %10s %10s %12s\n", "", "load", "save", "map", "peak memory");
    std::fflush(stdout);
    int failures = 0;
    for (int i = 0; i < int(std::size(Cases)); ++i) {
        const QTemporaryDir folder;
        if (RunInProcess("--make", i, folder.path()) != 0 ||
            RunInProcess("--edit", i, folder.path()) != 0) {
            ++failures;
        }
    }
    return failures;
}
