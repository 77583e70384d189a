#include "tests/support/TerritoryDocks.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>

TerritoryDocks::TerritoryDocks()
    : project({2000, 1600}, {2000, 1600})
    , view(new MainView)
    , props(new DockTerTypeProps(document))
    , types(new DockTerTypes(document, view->Scene(), props))
{
    view->SetDocument(document);
    view->SetSceneSize(2000, 1600);
    window.setCentralWidget(view);
    window.addDockWidget(Qt::RightDockWidgetArea, types);
    window.addDockWidget(Qt::RightDockWidgetArea, props);
    MainScene* scene = view->Scene();
    const auto mode = [scene](SceneMode entered) {
        return [scene, entered](bool isOn) {
            scene->clearSelection();
            scene->ChangeMode(SceneMode::None);
            scene->ChangeMode(isOn ? entered : SceneMode::None);
        };
    };
    QObject::connect(types, &DockTerTypes::InsertClicked, scene, mode(SceneMode::Insert));
    QObject::connect(types, &DockTerTypes::SelectClicked, scene, mode(SceneMode::Select));
    QObject::connect(types, &DockTerTypes::QueryClicked, scene, mode(SceneMode::Query));
    QObject::connect(types, &DockTerTypes::Selected, scene, &MainScene::ChangeTerritory);
    QObject::connect(view, &MainView::ModeInsert, types, &DockTerTypes::InsertMode);
    QObject::connect(view, &MainView::ModeSelect, types, &DockTerTypes::SelectMode);
    QObject::connect(view, &MainView::ModeQuery, types, &DockTerTypes::QueryMode);
    QObject::connect(view, &MainView::TerritorySelected, types, &DockTerTypes::Select);
    QObject::connect(scene, &MainScene::ZoneSelected, types,
                     [this](const QList<QGraphicsItem*>& items) {
                         types->SetSelectionControlsEnabled(!items.isEmpty());
                     });
    QObject::connect(
        scene, &MainScene::ZoneSelected, props, [this](const QList<QGraphicsItem*>& items) {
            const bool isOne = items.size() == 1;
            props->ShowZone(isOne ? qgraphicsitem_cast<Zone*>(items.first()) : nullptr);
        });
    window.resize(1000, 720);
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) {
        qFatal("The window does not become active.");
    }
}

bool TerritoryDocks::TakeModified()
{
    const bool isModified = ProjectSettings::Instance().IsModified();
    ProjectSettings::Instance().SetModified(false);
    return isModified;
}

TerritoryType* TerritoryDocks::AddType(const QString& name)
{
    auto* type = new TerritoryType(name);
    List().AddType(type);
    return type;
}

Territory* TerritoryDocks::AddTerritory(TerritoryType* type, const QString& name, int zones)
{
    auto* territory = new Territory(name);
    for (int i = 0; i < zones; ++i) {
        AddZone(territory, QPointF(100 + 130 * i, 100));
    }
    territory->SetZonesEditable(false);
    territory->SetVisible(true);
    territory->setCheckState(Qt::Checked);
    type->AddTerritory(territory);
    return territory;
}

Zone* TerritoryDocks::AddZone(Territory* territory, QPointF position, float radius)
{
    auto* zone = new Zone(territory, radius);
    zone->setPos(position);
    territory->AddZone(zone);
    Scene().addItem(zone);
    return zone;
}

void TerritoryDocks::MakeCurrent(const QStandardItem* item)
{
    Tree().setCurrentIndex(item ? item->index() : QModelIndex());
}

void TerritoryDocks::SelectZone(Zone* zone)
{
    Scene().clearSelection();
    zone->setSelected(true);
}

QString TerritoryDocks::Text(const char* label) const
{
    return Child<QLabel>(label)->text();
}

void TerritoryDocks::Click(const char* button) const
{
    auto* widget = Child<QAbstractButton>(button);
    // Only the circle and the text of a radio button react to clicks.
    const QPoint left(8, widget->height() / 2);
    QTest::mouseClick(widget, Qt::LeftButton, {},
                      widget->inherits("QRadioButton") ? left : QPoint());
}

void TerritoryDocks::Type(const char* widget, const QString& text) const
{
    auto* edit = Child<QWidget>(widget);
    edit->setFocus();
    if (auto* line = qobject_cast<QLineEdit*>(edit)) {
        line->selectAll();
    } else if (auto* box = qobject_cast<QSpinBox*>(edit)) {
        box->selectAll();
    }
    QTest::keyClicks(edit, text);
}
