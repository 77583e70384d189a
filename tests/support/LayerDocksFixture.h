#pragma once

#include "app/ProjectSettings.h"
#include "layers/CustomLayerWorker.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/Modals.h"
#include "tests/support/ProjectFixture.h"
#include "ui/DockLayerProps.h"
#include "ui/DockLayers.h"
#include "ui/TreeViewLayers.h"

#include <QAbstractItemModelTester>
#include <QMainWindow>
#include <QPushButton>

#include <memory>

/// The docks of layers in the active window of an empty project. The model is watched for breaking
/// the rules of item models, which fails the running test.
class LayerDocksFixture
{
public:
    LayerDocksFixture();
    ~LayerDocksFixture();
    Q_DISABLE_COPY(LayerDocksFixture)

    Layer* AddLayer(const QString& name, const QColor& color = Qt::white);
    LayerList* List() const { return dock->List(); }
    Layer* LayerAt(int row) const { return List()->LayerAt(row); }
    /// The names of the layers, in the order of the rows.
    QString Order() const;

    TreeViewLayers* Tree() const { return dock->findChild<TreeViewLayers*>(); }
    QPushButton* Button(const char* name) const;
    QAction* Action(const char* name) const;
    QRect RectOf(int row) const;
    void Click(int row);
    void ClickBox(int row);
    /// The texts of the menu that a right click opens, whose action of that name is then clicked;
    /// empty when there is no menu.
    QStringList UseMenu(QPoint position, const char* action);
    /// Types the name over that of the current layer, whose editor F2 opens.
    void Rename(const QString& name);

    static bool IsModified() { return ProjectSettings::Instance().modified; }

    ProjectFixture project;
    /// Names of the layers that were told to be selected.
    QStringList selected;
    std::unique_ptr<QMainWindow> window;
    DockLayerProps* props;
    DockLayers* dock;
    std::unique_ptr<QAbstractItemModelTester> tester;
};

/// Clicks the button of the custom layer dialog once it has computed its preview, the name being
/// typed first.
ModalAnswers::Answer ClickWhenIdle(const char* button, const QString& name = {});
