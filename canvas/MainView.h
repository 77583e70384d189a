#pragma once

#include <QGraphicsView>
#include <QPoint>

#include <memory>
#include <optional>

class BrushDock;
class Document;
class MainScene;
class PlaceMark;
class ShapeMark;
class QRubberBand;
class Territory;
class ViewMoves;
class WidgetRuler;
class ZoneLabels;

/// Shows the map between two rulers: zooms, pans, selects with a rubber band, copies and nudges
/// zones, and turns keys into actions. Owns the scene.
class MainView : public QGraphicsView
{
    Q_OBJECT

public:
    explicit MainView(QWidget* parent = nullptr);
    ~MainView() override;

    MainScene* Scene() const { return m_scene.get(); }
    /// View pixels for each layer pixel.
    float Zoom() const { return m_zoom; }
    /// The ways of moving the map.
    ViewMoves& Moves() { return *m_moves; }
    /// The ring that points at a place.
    PlaceMark& Mark() { return *m_mark; }
    /// The outline of the shape that is being drawn.
    ShapeMark& Shape() { return *m_shape; }
    /// The numbers of zones over the map.
    ZoneLabels& Labels() { return *m_labels; }

    /// Zooms and scrolls so that the scene position comes to the view pixel, as far as the map's
    /// edges allow. Rulers, label and markers follow.
    void ShowAt(float zoom, QPointF place, QPointF pixel);
    /// Zooms and brings the scene position to the middle. Always emits ZoomChanged.
    void CenterAt(float zoom, QPointF place);
    /// The scene position at a view pixel and its fraction.
    QPointF PlaceAt(QPointF pixel) const;
    /// Where the mouse is over the map, in view pixels; nothing while it is elsewhere.
    std::optional<QPointF> MousePixel() const;

    /// The project that is shown and edited; it outlives the view.
    void SetDocument(Document& document);
    /// Null before SetBrushDock.
    BrushDock* GetBrushDock() const { return m_brushDock; }
    /// The dock whose brush paints; it must outlive the view.
    void SetBrushDock(BrushDock* dock);
    /// Sets the size of the layers in pixels. The rulers use the project's world size.
    void SetSceneSize(int w, int h);
    /// Makes the rulers show metres of the project's world, for a map of that many layer pixels.
    void SetRulerUnits(int w, int h);
    /// Moves the rulers' origins to the map's edges.
    void UpdateRulers();

    /// Whether the map is being zoomed or scrolled. Qt sends the scene mouse moves meanwhile,
    /// although the mouse stands still.
    bool IsMapMoving() const { return m_isMapMoving; }
    /// The way from the whole view pixel that Qt's scene events name to the mouse, in scene units.
    /// It is at most half a view pixel, and null unless a view pixel has several device pixels.
    QPointF MouseFraction() const;
    /// Selects the zones of the current territory that meet the map, in Select mode.
    void SelectAllZones();

signals:
    /// The user asks to switch a zone mode on or off.
    void ModeInsert(bool isOn);
    void ModeSelect(bool isOn);
    void ModeQuery(bool isOn);
    /// Given in view pixels from the rulers' origins; y grows upward.
    void MouseMoved(int x, int y);
    void ZoomChanged(float factor);
    /// A zone of the territory was clicked in the query mode.
    void TerritorySelected(Territory* t);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void enterEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void drawBackground(QPainter* painter, const QRectF& rect) override;
    void scrollContentsBy(int dx, int dy) override;
    void drawForeground(QPainter* painter, const QRectF& rect) override;
    bool viewportEvent(QEvent* event) override;

private:
    void BuildLayout();
    bool Cancel();
    void TellModifiers(const QKeyEvent& event);
    bool PressShortcut(QKeyEvent* event);
    void PressA();
    void ResetZoom();
    void Scroll(QWheelEvent& event);
    void TellRulers();
    void FollowMouse();
    void TellMouse();
    QPointF MapCorner() const;
    void NoteEvent(const QEvent& event);
    void NoteMouse(const QMouseEvent& event);
    void StartBand(QPoint position);
    void LoseMouse();
    QPoint RulerMargin() const;

    std::unique_ptr<MainScene> m_scene;
    std::unique_ptr<ViewMoves> m_moves;
    std::unique_ptr<PlaceMark> m_mark;
    std::unique_ptr<ShapeMark> m_shape;
    std::unique_ptr<ZoneLabels> m_labels;
    QRubberBand* m_band;
    QPoint m_bandOrigin;
    BrushDock* m_brushDock = nullptr;
    WidgetRuler* m_horizontalRuler;
    WidgetRuler* m_verticalRuler;
    float m_zoom = 1.0F;
    bool m_isMapMoving = false;
    /// The view pixels that are painted by themselves at present; empty if there are none.
    QRect m_strip;
    /// The position of the last mouse event in view pixels: its whole pixel, and the fraction.
    QPoint m_mousePixel;
    QPointF m_mouseFraction;
    /// Where mouse or wheel were last seen over the viewport; nothing once the mouse left it.
    std::optional<QPoint> m_mouse;
    int m_keyTimer = 0;
};
