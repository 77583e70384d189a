#pragma once

#include "app/ProjectSettings.h"
#include "canvas/BrushDock.h"
#include "canvas/HeldKeys.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/ProjectFixture.h"

#include <QEvent>
#include <QGraphicsItem>

/// A shown view of an empty project with one territory. The mouse is moved in scene positions,
/// which should be whole pixels of the view. One metre is one layer pixel.
class CanvasFixture
{
public:
    explicit CanvasFixture(QSize layerSize = {200, 160});

    MainScene& Scene() { return *view.Scene(); }
    static bool IsModified() { return ProjectSettings::Instance().IsModified(); }
    /// Returns the flag and sets it to false.
    static bool TakeModified();

    /// Makes a layer of the project's size, which must not be empty. The mask is clear except for
    /// one part.
    Layer* AddLayer(const QColor& color, const QRect& part = {});
    /// Makes the layer the one that is painted.
    void Edit(Layer* layer);
    Zone* AddZone(QPointF position, float radius = 10);

    QPoint At(QPointF scenePosition) const { return view.mapFromScene(scenePosition); }
    /// The scene's item with the z value.
    QGraphicsItem* ItemAt(qreal z);

    /// In pixels of the viewport.
    void Mouse(QEvent::Type eventType, QPoint position, Qt::MouseButton button,
               Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Press(QPointF position, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void DoubleClick(QPointF position, Qt::MouseButton button = Qt::LeftButton);
    void Move(QPointF position, Qt::MouseButtons buttons = Qt::LeftButton,
              Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Release(QPointF position, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void Click(QPointF position, Qt::MouseButton button = Qt::LeftButton);
    void Drag(QPointF from, QPointF to, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

    ProjectFixture project;
    Document document;
    LayerList& layers = document.Layers();
    TerritoryTypeList& types = document.Types();
    TerritoryType* type;
    Territory* territory;
    BrushDock dock;
    MainView view;
};
