#include "canvas/tools/PaintTool.h"

#include "canvas/BrushDock.h"
#include "canvas/HeldKeys.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/tools/PaintTools.h"
#include "document/Document.h"
#include "document/edits/PaintMask.h"

#include <QGraphicsSceneMouseEvent>

#include <memory>
#include <utility>

void PaintTool::Press(QGraphicsSceneMouseEvent& event)
{
    if (event.button() == Qt::MiddleButton) {
        return;
    }
    Finish();
    if (event.button() == Qt::LeftButton) {
        m_stroke = BrushAction::Paint;
    } else if (event.button() == Qt::RightButton) {
        m_stroke = BrushAction::Erase;
    } else {
        return;
    }
    Parts().document.SetHandBusy(true);
    m_changed = {};
    Parts().scene.Painter().BeginStroke(Parts().scene.GetPaintTools()->Options().Limit());
    MoveBrush(PositionOf(event));
    if (const Brush* brush = Parts().scene.GetBrush()) {
        Show(Parts().scene.Painter().Dab(*brush, m_stroke));
    }
}

void PaintTool::Move(QGraphicsSceneMouseEvent& event)
{
    const QPointF position = PositionOf(event);
    const QPointF from = m_strokePoint;
    Parts().scene.SetMousePosition(position);
    MoveBrush(position);
    const Brush* brush = Parts().scene.GetBrush();
    if (brush && IsBusy() && !Parts().view.IsMapMoving()) {
        Show(Parts().scene.Painter().Segment(*brush, m_stroke, from));
    }
    MapTool::Move(event);
}

void PaintTool::Release(QGraphicsSceneMouseEvent& event)
{
    if (event.button() != Qt::MiddleButton) {
        Finish();
    }
    MapTool::Release(event);
}

void PaintTool::MoveBrush(QPointF position)
{
    m_strokePoint = position;
    Parts().scene.MoveBrush(position);
}

void PaintTool::Show(const QRect& changed)
{
    m_changed |= changed;
    Parts().scene.ShowPainted(changed);
    if (Layer* layer = Parts().scene.Painter().GetLayer()) {
        emit Parts().document.Painted(layer, changed);
    }
}

void PaintTool::Finish()
{
    if (!IsBusy()) {
        return;
    }
    const bool isErasing = m_stroke == BrushAction::Erase;
    m_stroke = BrushAction::None;
    Document& document = Parts().document;
    document.SetHandBusy(false);
    LayerPainter& painter = Parts().scene.Painter();
    raster::MaskDelta delta = painter.EndStroke();
    Layer* layer = painter.GetLayer();
    if (!layer) {
        document.NoteChange();
        return;
    }
    const QString text =
        isErasing ? Document::tr("Erase stroke on %1") : Document::tr("Paint stroke on %1");
    document.Do(
        std::make_unique<PaintMask>(text.arg(layer->text()), *layer, std::move(delta), m_changed));
}

void PaintTool::Cancel()
{
    if (!IsBusy()) {
        return;
    }
    m_stroke = BrushAction::None;
    Parts().document.SetHandBusy(false);
    LayerPainter& painter = Parts().scene.Painter();
    painter.CancelStroke();
    Show(m_changed);
    // The picture was made anew from the mask, and may differ anywhere.
    Parts().scene.ShowPainted(QRect(QPoint(), painter.Size()));
}

void PaintTool::FollowLayer(Layer* layer)
{
    if (layer != Parts().scene.Painter().GetLayer()) {
        Finish();
    }
}

bool PaintTool::PressKey(const QKeyEvent& event)
{
    if (!HeldKeys::Instance().PressBracket(event)) {
        return false;
    }
    RepeatKeys();
    return true;
}

void PaintTool::RepeatKeys()
{
    const HeldKeys& keys = HeldKeys::Instance();
    BrushDock* dock = Parts().view.GetBrushDock();
    if (dock && keys.grow) {
        dock->GrowBy(keys.BrushStep());
    }
    if (dock && keys.shrink) {
        dock->ShrinkBy(keys.BrushStep());
    }
}
