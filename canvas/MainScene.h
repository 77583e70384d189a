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
class WorldItem;
class Zone;

/// The map. It shows, from bottom to top, the world picture, an overlay colour, the visible layers,
/// the layer that is being edited, the zones and the brush cursor. One scene unit is one layer
/// pixel. The mode decides what the mouse does.
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
    /// Ends the stroke that is under way, if any.
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
    /// Never emitted: the zoom belongs to the view.
    void ZoomChanged(float factor);

public slots:
    /// Shows the picture in the file, scaled to the layer size without smoothing. If it cannot be
    /// loaded, an error is logged and the picture before stays.
    void ChangeWorld(QString file);
    /// Sets the overlay's colour and its opacity.
    void ChangeWorldRGBA(QColor c);
    /// Sets the overlay's colour. The project's background colour keeps its alpha.
    void ChangeWorldColor(QColor c);
    /// alpha is 0 to 255 and set in the project; opacity is 0 to 1 and set in the overlay.
    void ChangeWorldAlpha(int alpha, float opacity);
    void ChangeWorldVisibility(bool visible);
    /// Adds the layer, in its colour and opacity, beneath those added since ClearLayers.
    void AddLayer(Layer* layer);
    /// Hides the layer that is being edited. Its picture stays.
    void ClearCurrent();
    void ClearLayers();
    /// Begins to edit the layer. Null ends the editing.
    void ChangeLayer(Layer* layer);
    /// Does nothing. The new colour shows at the next ChangeLayer.
    void ChangeLayerColor(QColor c);
    void ChangeLayerAlpha(float opacity);
    void ChangeBrush(Brush* brush);
    /// Shows the brush's settings in its cursor.
    void RefreshBrush();
    void ChangeTerritory(Territory* t);
    void ChangeTerritoryColor(QColor color);
    /// alpha: 0 to 255. The opacity is ignored.
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
    std::unique_ptr<WorldItem> m_worldItem;
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
    /// The places of the dragged zones before the drag.
    QVector<QPair<Tracked<Zone>, QPointF>> m_dragStart;
};
