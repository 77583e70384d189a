#pragma once

#include <QCursor>
#include <QPointF>
#include <QRectF>

#include <optional>

class MainView;
class QEvent;
class QMouseEvent;
class QNativeGestureEvent;
class QPinchGesture;
class QWheelEvent;

/// What a view shows of the map.
struct ViewPlace
{
    /// The scene position in the middle of the view.
    QPointF center;
    /// View pixels for each layer pixel.
    float zoom = 1;
};

/// The ways of moving the map in a view: zooming in steps, fitting an area, dragging with the
/// middle button and pinching. None of them touches the mode, the selection or a stroke under way.
/// The view owns it.
class ViewMoves
{
public:
    explicit ViewMoves(MainView& view);

    /// Zooms one step of the zoom actions around the mouse, or around the middle of the view while
    /// the mouse is elsewhere.
    void Zoom(bool isIn);
    /// One notch of Ctrl and the wheel, around this view pixel.
    void Turn(QPointF pixel, bool isIn);
    /// Whether a notch keeps the place under the mouse there; otherwise it brings the place to the
    /// middle of the view.
    bool KeepsPlace() const { return m_keepsPlace; }
    void SetKeepsPlace(bool keepsPlace) { m_keepsPlace = keepsPlace; }

    ViewPlace Place() const;
    /// The edges of the map limit how far the place comes to the middle.
    void Show(const ViewPlace& place);
    /// The place that shows this part of the scene at the largest step at which all of it fits.
    ViewPlace PlaceToFit(const QRectF& area) const;

    /// An event of the viewport. Returns true if nobody else shall get it.
    bool TakeEvent(QEvent& event);
    /// Lets the map go, because the release of the middle button may never come.
    void EndDrag();

private:
    bool Press(const QMouseEvent& event);
    void Drag(const QMouseEvent& event);
    bool Pinch(const QNativeGestureEvent& event);
    void Pinch(const QPinchGesture& pinch);
    void ZoomBy(qreal factor, QPointF from, QPointF to);
    QPointF Middle() const;
    QPointF PlaceUnder(QPointF pixel) const;
    void ZoomAround(float zoom, QPointF place, QPointF pixel);

    MainView& m_view;
    bool m_keepsPlace = false;
    /// What the last zoom kept in its place, and the view pixel.
    QPointF m_keptPlace;
    QPointF m_keptPixel;
    /// The scene position that the middle button holds.
    std::optional<QPointF> m_held;
    /// Whether Qt made the last press of a touch. It may turn out to be the first of two fingers,
    /// and then what it began is taken back.
    bool m_isByFinger = false;
    /// What the viewport's cursor was before; none if it had no own one.
    std::optional<QCursor> m_cursorBefore;
};
