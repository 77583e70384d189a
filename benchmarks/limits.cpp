// Projects at the ends of what the editor takes: each is opened, saved and exported in the window,
// in a process of its own, and the time and the memory of it are printed. So is the memory that a
// background takes on large layers, as a share of four bytes for each of its pixels.

#include "app/ProjectSettings.h"
#include "benchmarks/support/NaturalProject.h"
#include "benchmarks/support/WindowUser.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "ui/QuillmapWindow.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QScrollBar>
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

struct Background
{
    const char* name;
    QImage::Format format;
};

constexpr Background Backgrounds[] = {
    {"opaque", QImage::Format_RGB32},
    {"translucent", QImage::Format_ARGB32},
    {"of 256 colours", QImage::Format_Indexed8},
};
constexpr int BackgroundSize = 4096;
constexpr Case UnderBackground = {"", 16384, 15360, 0, 0};
/// Of four bytes for each pixel of the background.
constexpr double MostOfBackground = 1.1;

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

bool MakeBackground(const QString& path, QImage::Format format)
{
    QImage picture(BackgroundSize, BackgroundSize, QImage::Format_ARGB32);
    for (int y = 0; y < BackgroundSize; ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < BackgroundSize; ++x) {
            line[x] = qRgba(x / 16, y / 16, (x ^ y) & 0xC0, (x + y) & 0xFF);
        }
    }
    return picture.convertToFormat(format, Qt::ThresholdDither).save(path);
}

/// A number of bytes from the list of what this process uses.
double MemoryOf(const QByteArray& field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = status.readAll().split('\n');
        for (const QByteArray& line : lines) {
            if (line.startsWith(field)) {
                return line.mid(field.size()).simplified().split(' ').first().toDouble() * 1024;
            }
        }
    }
    return 0;
}

void ForgetPeak()
{
    QFile references(QStringLiteral("/proc/self/clear_refs"));
    if (references.open(QIODevice::WriteOnly)) {
        references.write("5");
    }
}

/// Shows the whole view at some zooms and places.
void LookAround(MainView& view)
{
    for (const double zoom : {0.25, 1.0, 12.5}) {
        view.setTransform(QTransform::fromScale(zoom, zoom));
        for (int i = 0; i <= 4; ++i) {
            view.horizontalScrollBar()->setValue(view.horizontalScrollBar()->maximum() * i / 4);
            view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() * i / 4);
            view.viewport()->repaint();
        }
    }
}

int ShowBackground(const Background& background, const QString& folder)
{
    const QString picture = folder + QStringLiteral("/world.png");
    QuillmapWindow window{QString()};
    window.show();
    LoadSeconds(window, folder + QStringLiteral("/limits.xml"));
    auto* view = window.findChild<MainView*>();
    LookAround(*view);
    ForgetPeak();
    const double before = MemoryOf("VmRSS:");
    QElapsedTimer sinceStart;
    sinceStart.start();
    view->Scene()->ChangeWorld(picture);
    const double loading = double(sinceStart.elapsed()) / 1000.0;
    LookAround(*view);
    constexpr double ownSize = 4.0 * BackgroundSize * BackgroundSize;
    const double kept = (MemoryOf("VmRSS:") - before) / ownSize;
    const double peak = (MemoryOf("VmHWM:") - before) / ownSize;
    std::printf("%-28s %8.2f s %10.2f %10.2f\n", background.name, loading, kept, peak);
    std::fflush(stdout);
    return kept <= MostOfBackground ? 0 : 1;
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
        const int number = arguments.at(2).toInt();
        const QString& folder = arguments.at(3);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder);
        qputenv("XDG_DATA_HOME", QFile::encodeName(folder));
        ProjectSettings::Instance().SetDir(QDir(folder));
        const QString path = folder + QStringLiteral("/limits.xml");
        if (arguments.at(1) == QLatin1String("--make-background")) {
            const QString picture = folder + QStringLiteral("/world.png");
            return MakeBackground(picture, Backgrounds[number].format) ? Make(UnderBackground, path)
                                                                       : 1;
        }
        if (arguments.at(1) == QLatin1String("--background")) {
            return ShowBackground(Backgrounds[number], folder);
        }
        const Case& wanted = Cases[number];
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
    std::printf("\nA background of %d x %d on layers of %d x %d, in parts of its own size\n",
                BackgroundSize, BackgroundSize, UnderBackground.layerSize,
                UnderBackground.layerSize);
    std::printf("%-28s %10s %10s %10s\n", "", "load", "kept", "peak");
    std::fflush(stdout);
    for (int i = 0; i < int(std::size(Backgrounds)); ++i) {
        const QTemporaryDir folder;
        if (RunInProcess("--make-background", i, folder.path()) != 0 ||
            RunInProcess("--background", i, folder.path()) != 0) {
            ++failures;
        }
    }
    return failures;
}
