#pragma once

#include "app/ProjectSettings.h"
#include "canvas/BrushDock.h"
#include "canvas/HeldKeys.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
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

/// A shown view of an empty project with one territory, whose mouse is moved in scene positions.
/// One metre is one layer pixel; positions are meant to be whole pixels of the view.
class CanvasFixture
{
public:
    explicit CanvasFixture(QSize layerSize = {200, 160});

    MainScene& Scene() { return *view.Scene(); }
    bool& Modified() { return ProjectSettings::Instance().modified; }
    /// The flag, which is false from then on.
    bool TakeModified();

    /// Of the project's size, which is not empty, and clear; a part of it is set.
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
    LayerList layers;
    TerritoryTypeList types;
    TerritoryType* type;
    Territory* territory;
    BrushDock dock;
    MainView view;
};
