#pragma once

#include "canvas/LayerPainter.h"
#include "canvas/tools/MapTool.h"

#include <QPointF>
#include <QRect>

/// The brush: the left button paints on the current layer, the right one erases. From press to
/// release is one stroke, and one step of the history. The middle button has no part in it.
class PaintTool : public MapTool
{
public:
    using MapTool::MapTool;

    void Press(QGraphicsSceneMouseEvent& event) override;
    void Move(QGraphicsSceneMouseEvent& event) override;
    void Release(QGraphicsSceneMouseEvent& event) override;
    /// Brackets and braces grow and shrink the brush.
    bool PressKey(const QKeyEvent& event) override;
    void RepeatKeys() override;

    bool IsBusy() const override { return m_stroke != BrushAction::None; }
    void Finish() override;
    void Cancel() override;
    void FollowLayer(Layer* layer) override;

    /// The map has moved below the mouse, which is at the position now: a stroke goes on from there
    /// and paints nothing between.
    void ContinueFrom(QPointF position) { m_strokePoint = position; }

private:
    void MoveBrush(QPointF position);
    void Show(const QRect& changed);

    BrushAction m_stroke = BrushAction::None;
    QPointF m_strokePoint;
    /// Layer pixels that the stroke may have changed.
    QRect m_changed;
};
