#pragma once

#include "canvas/MainView.h"
#include "canvas/SceneMode.h"
#include "tests/support/CanvasFixture.h"

#include <QEvent>
#include <QImage>

class QGraphicsEllipseItem;
class QRubberBand;
class WidgetRuler;

// Functions for tests of the scene and the view: what they show, and all input except mouse moves.

/// The z values of the scene's items.
constexpr qreal WorldZ = 0.2;
constexpr qreal OverlayZ = 0.4;
constexpr qreal LayersZ = 0.6;
constexpr qreal CurrentZ = 0.8;
constexpr qreal BrushZ = 999;

/// In pixels.
constexpr int RulerThickness = 32;

constexpr SceneMode Modes[] = {SceneMode::None,   SceneMode::Pan,    SceneMode::Paint,
                               SceneMode::Insert, SceneMode::Select, SceneMode::Query};

/// The picture of the scene's rectangle, with one pixel for each scene unit.
QImage Shown(MainScene& scene, QSize size);

/// What the item paints, likewise.
QImage PictureOf(QGraphicsItem& item);

/// The set pixels of a layer.
int Area(const Layer& layer);
bool IsSet(const Layer& layer, int x, int y);

template <typename Item>
Item* ItemOf(CanvasFixture& canvas, qreal z)
{
    return static_cast<Item*>(canvas.ItemAt(z));
}

QGraphicsEllipseItem* BrushCursor(CanvasFixture& canvas);
WidgetRuler* Ruler(const MainView& view, bool isHorizontal);
QRubberBand* Band(const MainView& view);

/// At a pixel of the viewport.
void Wheel(MainView& view, QPoint position, int delta, Qt::KeyboardModifiers modifiers);
void Zoom(MainView& view, int steps);
/// One round of the timer that repeats held keys.
void Tick(MainView& view);
void SendKey(MainView& view, QEvent::Type type, int key, quint32 scanCode,
             bool isAutoRepeat = false);
