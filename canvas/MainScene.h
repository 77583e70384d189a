#pragma once

#include "app/Tracked.h"
#include "canvas/LayerPainter.h"
#include "canvas/SceneMode.h"

#include <QColor>
#include <QGraphicsEllipseItem>
#include <QGraphicsScene>
#include <QPair>
#include <QPointF>
#include <QVector>

#include <functional>
#include <memory>
#include <utility>

class Brush;
class CurrentLayerItem;
class Layer;
class LayersItem;
class MainView;
class OverlayItem;
class Territory;
class Zone;

/// The map: from bottom to top the world picture, a colour laid over it, the visible layers, the
/// layer being edited, the zones and the brush cursor. One scene unit is one layer pixel. What the
/// mouse does depends on the mode.
class MainScene : public QGraphicsScene
{
    Q_OBJECT

public:
    /// Layer pixels.
    MainScene(float width, float height, MainView* parent);
    ~MainScene() override;

    SceneMode Mode() const { return m_mode; }
    QPointF MousePosition() const { return m_mousePosition; }
    Territory* CurrentTerritory() const;
    Layer* CurrentLayer() const;

    /// Pans while the space bar is held: the view drags the map. At the end the mode before is
    /// restored, whatever mode was set meanwhile, unless no panning began.
    void BeginPan();
    void EndPan();
    /// Is called at the end of panning with the mode that was restored; may be empty.
    void SetPanEnded(std::function<void(SceneMode)> callback) { m_panEnded = std::move(callback); }
    /// No world picture; the overlay stays.
    void ClearWorld();
    /// Whatever else ends a stroke than its button.
    void EndStroke();
    /// The map has moved below the mouse, which is at the position now: a stroke goes on from there
    /// and paints nothing between.
    void ContinueStrokeFrom(QPointF position) { m_strokePoint = position; }
    /// The mouse is somebody else's now: strokes and drags end where they are, because their
    /// release may never come.
    void LoseMouse();

signals:
    void ZoneSelected(QList<QGraphicsItem*> items);
    void ZoneInserted(Zone* z);
    /// For the view's zoom; the scene has none of its own.
    void ZoomChanged(float factor);

public slots:
    /// Shows the picture in the file, scaled to the layer size without smoothing; one that cannot
    /// be loaded logs an error and leaves the picture before.
    void ChangeWorld(QString file);
    /// The overlay in the opaque colour, at the colour's opacity.
    void ChangeWorldRGBA(QColor c);
    /// The overlay in the colour; the project's background colour keeps its alpha.
    void ChangeWorldColor(QColor c);
    /// alpha: 0 to 255, for the project; opacity: 0 to 1, for the overlay.
    void ChangeWorldAlpha(int alpha, float opacity);
    void ChangeWorldVisibility(bool visible);
    /// Draws the layer, in its colour and opacity, beneath those added since ClearLayers.
    void AddLayer(Layer* layer);
    /// Makes the layer being edited invisible; its picture stays.
    void ClearCurrent();
    void ClearLayers();
    /// Makes the layer the one being edited; null for none.
    void ChangeLayer(Layer* layer);
    /// Nothing: the new colour shows at the next ChangeLayer.
    void ChangeLayerColor(QColor c);
    void ChangeLayerAlpha(float opacity);
    void ChangeBrush(Brush* brush);
    /// Shows the brush's settings in its cursor.
    void RefreshBrush();
    void ChangeTerritory(Territory* t);
    void ChangeTerritoryColor(QColor color);
    /// The opacity is that of the alpha and not needed.
    void ChangeTerritoryAlpha(int alpha, float opacity);
    void ChangeSelection();
    /// Destroys the selected zones.
    void RemoveSelection();
    void ChangeMode(SceneMode mode);
    /// The size of the layers in pixels. Nothing is edited until the next ChangeLayer.
    void ChangeSize(int w, int h);

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent* event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    QPointF BrushPositionOf(const QGraphicsSceneMouseEvent& event) const;
    void Press(QGraphicsSceneMouseEvent* event);
    void PressInPaint(QGraphicsSceneMouseEvent* event);
    void PressInInsert(QPointF position);
    void PressInSelect(QGraphicsSceneMouseEvent* event);
    void PressInQuery(QPointF position);
    void PaintDab(QPointF position);
    void PaintStep(QPointF position);
    void MoveBrush(QPointF position);
    void ShowPainted(const QRect& changed);
    void BeginZoneDrag();
    void NoticeZoneDrag();

    LayerPainter m_painter;
    MainView* m_view;
    QPointF m_mousePosition;
    QPointF m_strokePoint;
    std::unique_ptr<QGraphicsPixmapItem> m_worldItem;
    std::unique_ptr<OverlayItem> m_overlayItem;
    std::unique_ptr<LayersItem> m_layersItem;
    std::unique_ptr<CurrentLayerItem> m_currentItem;
    QGraphicsEllipseItem m_brushCursor;
    Brush* m_brush = nullptr;
    Tracked<Territory> m_territory;
    SceneMode m_mode = SceneMode::None;
    SceneMode m_savedMode = SceneMode::None;
    bool m_isPanning = false;
    std::function<void(SceneMode)> m_panEnded;
    BrushAction m_stroke = BrushAction::None;
    /// Where the zones were when the mouse took hold of them.
    QVector<QPair<Tracked<Zone>, QPointF>> m_dragStart;
};
