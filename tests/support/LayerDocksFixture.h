#pragma once

#include "app/ProjectSettings.h"
#include "document/Document.h"
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

/// The docks of layers in the active window of an empty project. A model tester fails the running
/// test if the model breaks the rules of item models.
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
    /// The names in the rows that the tree shows.
    QString ShownRows() const;

    TreeViewLayers* Tree() const { return dock->findChild<TreeViewLayers*>(); }
    QPushButton* Button(const char* name) const;
    QAction* Action(const char* name) const;
    QRect RectOf(int row) const;
    void Click(int row);
    void ClickBox(int row);
    /// Right-clicks, returns the texts of the menu that opens, and clicks the action of that name.
    /// Empty if no menu opens.
    QStringList UseMenu(QPoint position, const char* action);
    /// Renames the current layer: presses F2 and types the name.
    void Rename(const QString& name);

    static bool IsModified() { return ProjectSettings::Instance().IsModified(); }

    ProjectFixture project;
    Document document;
    /// Names of the layers that were told to be selected.
    QStringList selected;
    std::unique_ptr<QMainWindow> window;
    DockLayerProps* props;
    DockLayers* dock;
    std::unique_ptr<QAbstractItemModelTester> tester;
};

/// Types the name into the custom layer dialog and clicks the button after the preview has been
/// computed.
ModalAnswers::Answer ClickWhenIdle(const char* button, const QString& name = {});
