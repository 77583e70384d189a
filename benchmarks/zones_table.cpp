// The table of 20,000 zones in the editor's window: opening it, each keystroke of its filter, and
// dragging 500 zones while it is open. Opening and filtering are compared with Qt's proxy model
// over the same texts, dragging with a closed table. "longest" is the longest pause, in
// milliseconds.

#include "app/ProjectSettings.h"
#include "benchmarks/support/Canvas.h"
#include "benchmarks/support/NaturalProject.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/WindowUser.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "territories/ZoneTable.h"
#include "ui/DockZones.h"
#include "ui/QuillmapWindow.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QDir>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSettings>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTreeView>

#include <algorithm>
#include <cmath>
#include <memory>

using benchmark::State;

namespace {

constexpr int LayerSide = 2048;
constexpr int World = 15360;
constexpr int ZoneCount = 20000;
constexpr int TerritoryCount = 40;
constexpr int Dragged = 500;
/// It leaves fewer rows with each character.
const QString Typed = QStringLiteral("herd 1");

QuillmapWindow* window = nullptr;

template <typename T>
T* Child(const char* name)
{
    return window->findChild<T*>(QLatin1String(name));
}

void MakeZones(TerritoryTypeList& types)
{
    for (int i = 0; i < TerritoryCount; ++i) {
        if (i % 10 == 0) {
            types.AddType(new TerritoryType(QStringLiteral("animals %1").arg(i / 10)));
        }
        auto* territory = new Territory(QStringLiteral("herd %1").arg(i));
        types.Types().last()->AddTerritory(territory);
        // The first one is dragged.
        const int zones = i == 0 ? Dragged : (ZoneCount - Dragged) / (TerritoryCount - 1);
        for (int k = 0; k < zones; ++k) {
            auto* zone = new Zone(territory, 60.0F + float(k * 7 % 300));
            territory->AddZone(zone);
            // Multiples of irrational numbers are spread evenly.
            zone->setPos(std::fmod((i * 1000 + k) * 0.754877666, 1.0) * LayerSide,
                         std::fmod((i * 1000 + k) * 0.569840291, 1.0) * LayerSide);
        }
    }
}

void Settle()
{
    constexpr int milliseconds = 300;
    QElapsedTimer timer;
    timer.start();
    while (!timer.hasExpired(milliseconds)) {
        QCoreApplication::processEvents();
    }
}

/// Carries out the work and all that it causes, and keeps the longest time.
template <typename Work>
void Time(qint64& longest, Work work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    QCoreApplication::processEvents();
    longest = std::max(longest, timer.nsecsElapsed());
}

void Report(State& state, qint64 longest)
{
    constexpr double nanosecondsInMillisecond = 1e6;
    state.counters["longest"] = double(longest) / nanosecondsInMillisecond;
}

void ShowTable(bool isShown)
{
    Child<QWidget>("DockZones")->setVisible(isShown);
    QCoreApplication::processEvents();
}

void OpenOurs(State& state)
{
    qint64 longest = 0;
    for (auto _ : state) {
        Time(longest, [] { Child<QWidget>("DockZones")->show(); });
        state.PauseTiming();
        Settle();
        ShowTable(false);
        state.ResumeTiming();
    }
    Report(state, longest);
}

void FilterOurs(State& state)
{
    ShowTable(true);
    Settle();
    auto* line = Child<QLineEdit>("txtZonesFilter");
    qint64 longest = 0;
    for (auto _ : state) {
        for (const QChar typed : Typed) {
            Time(longest, [&] {
                QKeyEvent press(QEvent::KeyPress, typed.toUpper().unicode(), Qt::NoModifier, typed);
                QCoreApplication::sendEvent(line, &press);
            });
        }
        state.PauseTiming();
        line->completer()->popup()->hide();
        line->clear();
        Settle();
        state.ResumeTiming();
    }
    ShowTable(false);
    Report(state, longest);
}

/// The texts of the table in Qt's own model, below its proxy model.
struct PlainTable
{
    PlainTable()
    {
        const std::vector<ZoneRow> rows = ZoneRows(window->GetDocument().Types().Records(),
                                                   WorldScale(ProjectSettings::Instance()));
        for (const ZoneRow& row : rows) {
            QList<QStandardItem*> items;
            for (const ZoneColumn column : ZoneColumns) {
                items.append(new QStandardItem(CellText(row, column)));
            }
            model.appendRow(items);
        }
        proxy.setFilterKeyColumn(-1);
        proxy.setSourceModel(&model);
        view.setModel(&proxy);
        view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        view.resize(Child<QWidget>("DockZones")->size().expandedTo({900, 300}));
    }

    QStandardItemModel model;
    QSortFilterProxyModel proxy;
    QTableView view;
};

void OpenPlain(State& state)
{
    qint64 longest = 0;
    for (auto _ : state) {
        std::unique_ptr<PlainTable> table;
        Time(longest, [&] {
            table = std::make_unique<PlainTable>();
            table->view.show();
        });
        state.PauseTiming();
        table.reset();
        state.ResumeTiming();
    }
    Report(state, longest);
}

void FilterPlain(State& state)
{
    PlainTable table;
    table.view.show();
    Settle();
    qint64 longest = 0;
    for (auto _ : state) {
        for (int length = 1; length <= Typed.size(); ++length) {
            Time(longest, [&] { table.proxy.setFilterFixedString(Typed.left(length)); });
        }
        state.PauseTiming();
        table.proxy.setFilterFixedString({});
        Settle();
        state.ResumeTiming();
    }
    Report(state, longest);
}

/// Drags all zones of the first territory to and fro, and takes it back.
void Drag(State& state, bool isOpen)
{
    ShowTable(isOpen);
    MainView& view = *Child<MainView>("paintView");
    MainScene& scene = *view.Scene();
    Territory* territory = window->GetDocument().Types().Types().first()->Territories().first();
    Child<QTreeView>("treeTerTypes")->setCurrentIndex(territory->index());
    window->SelectZoneMode(true);
    const QVector<Zone*> zones(territory->Zones().cbegin(), territory->Zones().cend());
    scene.SelectZones(zones);
    Settle();
    view.centerOn(zones.first()->pos());
    const QPoint start = view.mapFromScene(zones.first()->pos());
    SendMouse(view, QEvent::MouseButtonPress, start, Qt::LeftButton);
    QPoint end = start;
    qint64 longest = 0;
    int step = 0;
    for (auto _ : state) {
        ++step;
        end = start + QPoint(step % 20, step % 14);
        Time(longest, [&] { SendMouse(view, QEvent::MouseMove, end, Qt::LeftButton); });
    }
    Time(longest, [&] { SendMouse(view, QEvent::MouseButtonRelease, end, Qt::NoButton); });
    // What waits for a free moment counts too.
    for (int i = 0; i < 50; ++i) {
        Time(longest, [] {});
    }
    Report(state, longest);
    window->GetDocument().Undo();
    scene.clearSelection();
    ShowTable(false);
    Settle();
}

void DragWithTable(State& state)
{
    Drag(state, true);
}

void DragWithoutTable(State& state)
{
    Drag(state, false);
}

void Quiet(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    qInstallMessageHandler(Quiet);
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path()));
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetSizes(LayerSide, LayerSide, World, World);
    const QString path = folder.filePath(QStringLiteral("zones.xml"));
    settings.SetDir(QDir(folder.path()));
    {
        TerritoryTypeList types;
        MakeZones(types);
        if (!MakeProject(path, 1, types)) {
            return 1;
        }
    }
    QuillmapWindow editor{QString()};
    window = &editor;
    editor.resize(1600, 1000);
    editor.show();
    LoadSeconds(editor, path);
    editor.ShowTerritoryTypes(true);
    Settle();
    for (const auto& [name, work, times] :
         std::initializer_list<std::tuple<const char*, void (*)(State&), int>>{
             {"open/20000 zones/ours", OpenOurs, 1},
             {"open/20000 zones/proxy model", OpenPlain, 1},
             {"filter/20000 zones/ours", FilterOurs, 1},
             {"filter/20000 zones/proxy model", FilterPlain, 1},
             {"drag/500 of 20000/ours", DragWithTable, 40},
             {"drag/500 of 20000/table closed", DragWithoutTable, 40}}) {
        benchmark::RegisterBenchmark(name, work)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime()
            ->Iterations(times);
    }
    return RunBenchmarks(argc, argv);
}
