// Long lists in the docks: messages, layers and territories. Each is compared with a plain view of
// Qt on a plain model that does the same.

#include "app/ProjectSettings.h"
#include "benchmarks/support/RatioReporter.h"
#include "canvas/MainScene.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "ui/DialogCustomLayer.h"
#include "ui/DockLayerProps.h"
#include "ui/DockLayers.h"
#include "ui/DockStatus.h"
#include "ui/DockTerTypeProps.h"
#include "ui/DockTerTypes.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QListView>
#include <QStandardItemModel>
#include <QTimer>
#include <QTreeView>

using benchmark::State;

namespace {

constexpr int LogLines = 50000;
constexpr int LayerCount = 500;
constexpr int TerritoryCount = 2000;
constexpr int Messages = 32;

void Quiet(QtMsgType, const QMessageLogContext&, const QString&) {}

QString Message(int i)
{
    return QStringLiteral("12:34:56 - Loading layer \"layer %1\"...").arg(i);
}

void ShowNow(QWidget& widget)
{
    widget.resize(400, 300);
    widget.show();
    QCoreApplication::processEvents();
}

/// The messages of a load, after those of several hours.
void LogIntoOurs(State& state)
{
    DockStatus dock;
    auto* list = dock.findChild<QListView*>(QStringLiteral("messageListView"));
    list->model()->insertColumn(0);
    list->model()->insertRows(0, LogLines);
    ShowNow(dock);
    for (auto _ : state) {
        for (int i = 0; i < Messages; ++i) {
            dock.AddMessage(Message(i), Log::Info);
            QCoreApplication::processEvents();
        }
    }
}

void LogIntoBareList(State& state)
{
    QStandardItemModel model(LogLines, 1);
    QListView list;
    list.setUniformItemSizes(true);
    list.setModel(&model);
    ShowNow(list);
    for (auto _ : state) {
        for (int i = 0; i < Messages; ++i) {
            model.appendRow(new QStandardItem(Message(i)));
            list.scrollToBottom();
            QCoreApplication::processEvents();
        }
    }
}

struct BareTree
{
    BareTree() { view.setModel(&model); }

    QStandardItem* Add(QStandardItem* parent, int i)
    {
        auto* row = new QStandardItem(QStringLiteral("row %1").arg(i));
        row->setCheckable(true);
        parent->appendRow(row);
        view.setCurrentIndex(row->index());
        return row;
    }

    QStandardItemModel model;
    QTreeView view;
};

void CheckAll(QStandardItem* parent)
{
    for (int row = 0; row < parent->rowCount(); ++row) {
        parent->child(row)->setCheckState(Qt::Checked);
    }
}

/// Adds layers, shows all, hides all, and removes them from the first on.
void EditLayersInOurs(State& state)
{
    for (auto _ : state) {
        Document document;
        DockLayerProps props(document);
        DockLayers dock(document, &props);
        ShowNow(dock);
        for (int i = 0; i < LayerCount; ++i) {
            dock.AddPainted();
            dock.SelectRow(i);
        }
        CheckAll(document.Layers().model()->invisibleRootItem());
        QCoreApplication::processEvents();
        dock.HideAll();
        for (int i = 0; i < LayerCount; ++i) {
            dock.SelectRow(0);
            dock.Remove();
        }
        QCoreApplication::processEvents();
    }
}

void EditLayersInBareTree(State& state)
{
    for (auto _ : state) {
        BareTree tree;
        ShowNow(tree.view);
        for (int i = 0; i < LayerCount; ++i) {
            tree.Add(tree.model.invisibleRootItem(), i);
        }
        CheckAll(tree.model.invisibleRootItem());
        QCoreApplication::processEvents();
        for (int i = 0; i < LayerCount; ++i) {
            tree.model.item(i)->setCheckState(Qt::Unchecked);
        }
        for (int i = 0; i < LayerCount; ++i) {
            tree.view.setCurrentIndex(tree.model.index(0, 0));
            tree.model.removeRow(0);
        }
        QCoreApplication::processEvents();
    }
}

/// Adds territories to one type, makes each the current row for a moment, and shows all of them.
void EditTerritoriesInOurs(State& state)
{
    for (auto _ : state) {
        Document document;
        MainScene scene(64, 64, nullptr);
        DockTerTypeProps props(document);
        DockTerTypes dock(document, &scene, &props);
        ShowNow(dock);
        dock.AddTerritoryType();
        TerritoryType* type = document.Types().Types().first();
        auto* tree = dock.findChild<QTreeView*>(QStringLiteral("treeTerTypes"));
        for (int i = 0; i < TerritoryCount; ++i) {
            tree->setCurrentIndex(type->NewTerritory()->index());
        }
        CheckAll(type);
        QCoreApplication::processEvents();
    }
}

void EditTerritoriesInBareTree(State& state)
{
    for (auto _ : state) {
        BareTree tree;
        ShowNow(tree.view);
        QStandardItem* type = tree.Add(tree.model.invisibleRootItem(), 0);
        for (int i = 0; i < TerritoryCount; ++i) {
            tree.Add(type, i);
        }
        CheckAll(type);
        QCoreApplication::processEvents();
    }
}

void OpenOurDialog(State& state)
{
    Document document;
    LayerList& layers = document.Layers();
    for (int i = 0; i < LayerCount; ++i) {
        auto layer = std::make_unique<Layer>(0, 0, &layers, QStringLiteral("layer %1").arg(i));
        layer->SetImage(ProjectSettings::Instance().BlankLayerImage(), Qt::white);
        layers.AddLayer(std::move(layer));
    }
    for (auto _ : state) {
        DialogCustomLayer dialog(document, nullptr);
        ShowNow(dialog);
        dialog.findChild<QComboBox*>(QStringLiteral("cboInputA"))->setCurrentIndex(LayerCount - 1);
        while (dialog.isVisible()) {
            dialog.reject();
            QCoreApplication::processEvents();
        }
    }
}

void OpenBareDialog(State& state)
{
    QStandardItemModel model;
    for (int i = 0; i < LayerCount; ++i) {
        model.appendRow(new QStandardItem(QStringLiteral("layer %1").arg(i)));
    }
    for (auto _ : state) {
        QDialog dialog;
        QComboBox first(&dialog);
        QComboBox second(&dialog);
        first.setModel(&model);
        second.setModel(&model);
        ShowNow(dialog);
        first.setCurrentIndex(LayerCount - 1);
        QCoreApplication::processEvents();
        dialog.reject();
        QCoreApplication::processEvents();
    }
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
    ProjectSettings::Instance().SetSizes(64, 64, 640, 640);
    // With a window the layers behave as in the editor.
    const QWidget editorIsRunning;
    for (const auto& [name, work] : std::initializer_list<std::pair<const char*, void (*)(State&)>>{
             {"log/32 more behind 50000 lines/ours", LogIntoOurs},
             {"log/32 more behind 50000 lines/bare list", LogIntoBareList},
             {"edit/500 layers/ours", EditLayersInOurs},
             {"edit/500 layers/bare tree", EditLayersInBareTree},
             {"edit/2000 territories/ours", EditTerritoriesInOurs},
             {"edit/2000 territories/bare tree", EditTerritoriesInBareTree},
             {"dialog/500 layers/ours", OpenOurDialog},
             {"dialog/500 layers/bare dialog", OpenBareDialog}}) {
        benchmark::RegisterBenchmark(name, work)->Unit(benchmark::kMillisecond)->Iterations(1);
    }
    return RunBenchmarks(argc, argv);
}
