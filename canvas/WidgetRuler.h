#pragma once

#include "canvas/RulerTicks.h"

#include <QPoint>
#include <QWidget>

class QPainter;

/// A ruler along an edge of the map view: ticks and world coordinates in metres, and a faint line
/// at the mouse position. The view owns one for each axis.
class WidgetRuler : public QWidget
{
    Q_OBJECT

public:
    enum Orientation
    {
        Horizontal = 0,
        Vertical = 1
    };

    WidgetRuler(int orientation, QWidget* parent);

    /// The pixel of the widget at which the world's 0 lies.
    float Origin() const { return m_scale.origin; }
    /// Metres per scene unit.
    float Unit() const { return m_scale.unit; }
    /// Pixels per scene unit.
    float Zoom() const { return m_scale.zoom; }
    /// In the widget's own coordinates.
    QPoint CursorPos() const { return m_cursorPos; }
    bool IsHorizontal() const { return m_orientation == Horizontal; }

    /// The ticks to draw, see RulerTicks.
    std::vector<RulerTick> Ticks() const;

    QSize minimumSizeHint() const override;

public slots:
    // Each setter repaints only if the value changes; that of the cursor position always repaints.
    void SetOrigin(float origin);
    void SetUnit(float unit);
    void SetZoom(float zoom);
    /// A position on the screen.
    void SetCursorPos(QPoint cursorPos);
    void SetMouseTrack(bool track);
    void FlipSign(bool flipSign);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    template <typename Value>
    void Change(Value& member, Value value);
    /// Draws a line from (along, gap) to (along, thickness) on a horizontal ruler.
    void DrawAcross(QPainter& painter, double along, double gap) const;
    void DrawTick(QPainter& painter, const RulerTick& tick) const;
    void DrawCursor(QPainter& painter) const;

    QPoint m_cursorPos;
    RulerScale m_scale;
    int m_orientation;
    bool m_isMouseTracked = true;
};
