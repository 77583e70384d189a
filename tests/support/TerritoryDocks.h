#pragma once

#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/ProjectFixture.h"
#include "ui/DockTerTypeProps.h"
#include "ui/DockTerTypes.h"

#include <QMainWindow>
#include <QTreeView>

/// A shown window with the map and both territory docks, connected as in the editor. One metre is
/// one layer pixel. There are no types at first.
class TerritoryDocks
{
public:
    TerritoryDocks();

    MainScene& Scene() { return *view->Scene(); }
    TerritoryTypeList& List() { return *types->List(); }
    QTreeView& Tree() { return *Child<QTreeView>("treeTerTypes"); }
    /// Returns the flag and sets it to false.
    bool TakeModified();

    /// Adds a type to the list.
    TerritoryType* AddType(const QString& name);
    /// Adds a territory to the type. It is checked and visible, its zones are locked, and it has so
    /// many zones.
    Territory* AddTerritory(TerritoryType* type, const QString& name, int zones = 0);
    Zone* AddZone(Territory* territory, QPointF position = {50, 50}, float radius = 60);
    void MakeCurrent(const QStandardItem* item);
    /// Selects the zone on the map, so that the properties show it.
    void SelectZone(Zone* zone);

    /// The one object of either dock that has the name.
    template <typename T>
    T* Child(const char* name) const
    {
        T* child = types->findChild<T*>(QLatin1String(name));
        return child ? child : props->findChild<T*>(QLatin1String(name));
    }
    QString Text(const char* label) const;
    void Click(const char* button) const;
    /// Selects the text and types another one.
    void Type(const char* widget, const QString& text) const;

    ProjectFixture project;
    Document document;
    QMainWindow window;
    MainView* view;
    DockTerTypeProps* props;
    DockTerTypes* types;
};
