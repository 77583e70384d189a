#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRect>
#include <QString>

class QGraphicsView;
class QPainter;

/// The outline of the shape that is being drawn, and its size beside the mouse. It is no item of
/// the scene. The view owns it and draws it over the map. Only changed parts are painted anew, such
/// as the last corners of a large polygon.
class ShapeMark
{
public:
    explicit ShapeMark(QGraphicsView& view)
        : m_view(view)
    {
    }

    /// In the scene. The text stands beside the mouse, where there is room for it.
    void Show(const QPainterPath& outline, QPointF mouse, const QString& text);
    void Hide();
    bool IsShown() const { return !m_text.isEmpty(); }
    const QPainterPath& Outline() const { return m_outline; }
    const QString& Text() const { return m_text; }
    /// The painter works in scene coordinates. Lines and text have the same size at every zoom.
    void Draw(QPainter& painter) const;

private:
    void UpdateOutline(const QPainterPath& outline, int first) const;
    QRect TextRect() const;

    QGraphicsView& m_view;
    QPainterPath m_outline;
    QString m_text;
    QPointF m_mouse;
    /// From the mouse to the text, in view pixels.
    QRect m_textPlace;
};
