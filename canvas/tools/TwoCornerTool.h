#pragma once

#include "canvas/tools/ShapeTool.h"

#include <QRectF>

#include <optional>

/// Lines, rectangles and ellipses: the mouse is pressed at one corner and released at the other.
///
/// A line is as wide as the brush and has round ends. With Shift it goes on from where the line
/// before ended, and Ctrl turns it to a multiple of 15 degrees. The others are drawn from their
/// centre with Ctrl, and as square or circle with Shift.
class TwoCornerTool : public ShapeTool
{
public:
    using ShapeTool::ShapeTool;

    void Press(QGraphicsSceneMouseEvent& event) override;
    void Move(QGraphicsSceneMouseEvent& event) override;
    void Release(QGraphicsSceneMouseEvent& event) override;
    void FollowModifiers(Qt::KeyboardModifiers modifiers) override;

    /// Forgets where the last line ended.
    void Forget() { m_lastEnd.reset(); }

private:
    bool IsLine() const { return Kind() == PaintToolKind::Line; }
    QRectF Rect() const;
    QPointF LineEnd() const;
    raster::Region Pixels() const;
    double LineWidth() const;
    void Follow(QPointF mouse, Qt::KeyboardModifiers modifiers);

    QPointF m_from;
    QPointF m_mouse;
    Qt::KeyboardModifiers m_modifiers;
    std::optional<QPointF> m_lastEnd;
};
