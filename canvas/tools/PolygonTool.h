#pragma once

#include "canvas/tools/ShapeTool.h"

#include <QPolygonF>

/// Polygons: each click places a corner, and a drag one at either end. Enter or a double click
/// closes them, Backspace takes the last corner back. The map may be moved meanwhile, and other
/// windows be used.
///
/// The lasso's corners are wherever the mouse is while the button is held; the release closes it.
class PolygonTool : public ShapeTool
{
public:
    using ShapeTool::ShapeTool;

    void Press(QGraphicsSceneMouseEvent& event) override;
    void DoublePress(QGraphicsSceneMouseEvent& event) override;
    void Move(QGraphicsSceneMouseEvent& event) override;
    void Release(QGraphicsSceneMouseEvent& event) override;
    bool PressKey(const QKeyEvent& event) override;
    void Finish() override;
    void CancelPress() override;

private:
    bool IsLasso() const { return Kind() == PaintToolKind::Lasso; }
    void AddCorner(QPointF corner);
    void RemoveCorner();
    bool IsAway(QPointF place) const;
    void Close();
    void CloseByKey();
    void ShowOutline() const;

    QPolygonF m_corners;
    /// The number of corners before the last press.
    int m_cornersBefore = 0;
    QPointF m_mouse;
};
