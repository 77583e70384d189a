#pragma once

#include "canvas/LayerPainter.h"
#include "canvas/SceneMode.h"
#include "canvas/tools/MapTool.h"
#include "territories/ZoneSelection.h"

#include <QColor>
#include <QGraphicsEllipseItem>
#include <QGraphicsScene>
#include <QPointF>
#include <QVector>

#include <functional>
#include <map>
#include <memory>
#include <utility>

class Brush;
class CurrentLayerItem;
class Document;
class Layer;
class LayersItem;
class MainView;
class OverlayItem;
class PaintTools;
class SelectTool;
class Territory;
class WorldItem;
class Zone;

/// The map: from bottom to top the world picture, a colour laid over it, the visible layers, the
/// layer being edited, the zones and the brush cursor. One scene unit is one layer pixel. What
/// mouse and keys do is up to the tool of the present mode.
class MainScene : public QGraphicsScene
{
    Q_OBJECT

public:
    /// width, height: of the scene, in layer pixels.
    MainScene(float width, float height, MainView* parent);
    ~MainScene() override;

    /// The project that is shown and edited. Without one nothing is edited.
    void SetDocument(Document& document);
    /// What mouse and keys do in the present mode; null without a document.
    MapTool* Tool() const;

    SceneMode Mode() const { return m_mode; }
    QPointF MousePosition() const { return m_mousePosition; }
    void SetMousePosition(QPointF position) { m_mousePosition = position; }
    Territory* CurrentTerritory() const;
    Layer* CurrentLayer() const;
    /// By ascending id. They may belong to several territories.
    QVector<Zone*> SelectedZones() const;
    /// Selects exactly these zones, whichever territory holds them, in any mode. Zones of other
    /// territories than the current one are shown while selected, and the mouse cannot move them.
    /// It ends a drag. ZoneSelected is emitted at most once.
    void SelectZones(const QVector<Zone*>& zones);
    /// Deselects the zones of all but the current territory.
    void DeselectOthers();

    /// The tools of the Paint mode; null without a document.
    PaintTools* GetPaintTools() const { return m_paintTools; }
    /// The tool of the Select mode; null without a document.
    SelectTool* GetSelectTool() const { return m_selectTool; }
    /// Shows over the map which tool works there.
    void ShowToolCursor();

    LayerPainter& Painter() { return m_painter; }
    /// Null before ChangeBrush.
    const Brush* GetBrush() const { return m_brush; }
    /// Moves the brush and its cursor to the position.
    void MoveBrush(QPointF position);
    /// Repaints these layer pixels of the layer being edited.
    void ShowPainted(const QRect& changed);
    /// Releases all references to the layer's mask, because it is about to change in place.
    void ReleasePixels(const Layer& layer);
    /// Shows again the mask of a layer that is not being edited. changed: where it differs from
    /// what was shown. False when the layer is not shown.
    bool ReplacePixels(const Layer& layer, const QRect& changed);
    /// Loads the mask of the edited layer again after ReleasePixels.
    void ReloadPixels(Layer& layer) { m_painter.Load(&layer); }
    /// Qt's own handling, which selects and moves items.
    void StandardPress(QGraphicsSceneMouseEvent& event);
    void StandardDoublePress(QGraphicsSceneMouseEvent& event);
    void StandardMove(QGraphicsSceneMouseEvent& event);
    void StandardRelease(QGraphicsSceneMouseEvent& event);

    /// Pans while the space bar is held: the view drags the map. At the end the mode before is
    /// restored, whatever mode was set meanwhile, unless no panning began.
    void BeginPan();
    void EndPan();
    /// Is called at the end of panning with the mode that was restored; may be empty.
    void SetPanEnded(std::function<void(SceneMode)> callback) { m_panEnded = std::move(callback); }
    /// Paints the world picture and the colour over it, in scene units.
    void PaintWorld(QPainter& painter);
    /// Is called when PaintWorld would paint something else; may be empty.
    void SetWorldChanged(std::function<void()> callback) { m_worldChanged = std::move(callback); }
    /// No world picture; the overlay stays.
    void ClearWorld();
    /// The map has moved below the mouse, which is at the position now.
    void ContinueStrokeFrom(QPointF position);
    /// Ends strokes and drags where they are. Call it when another window or widget gets the mouse,
    /// because the release may never come.
    void LoseMouse();
    /// Takes back the stroke, drag or shape under way; false when there is none.
    bool CancelTool();
    /// Takes back only what the press that is held has begun.
    void CancelPress();

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
    /// Removes the selected zones from the project.
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
    void ForgetDocument();
    void TellWorldChanged() const;

    LayerPainter m_painter;
    MainView* m_view;
    Document* m_document = nullptr;
    PaintTools* m_paintTools = nullptr;
    SelectTool* m_selectTool = nullptr;
    bool m_hasToolCursor = false;
    /// By mode.
    std::map<SceneMode, std::unique_ptr<MapTool>> m_tools;
    QPointF m_mousePosition;
    std::unique_ptr<WorldItem> m_worldItem;
    std::unique_ptr<OverlayItem> m_overlayItem;
    std::unique_ptr<LayersItem> m_layersItem;
    std::unique_ptr<CurrentLayerItem> m_currentItem;
    QGraphicsEllipseItem m_brushCursor;
    Brush* m_brush = nullptr;
    SceneMode m_mode = SceneMode::None;
    SceneMode m_savedMode = SceneMode::None;
    ZoneSelection m_selection;
    bool m_isPanning = false;
    std::function<void(SceneMode)> m_panEnded;
    std::function<void()> m_worldChanged;
};
