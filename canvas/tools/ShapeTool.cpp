#include "canvas/tools/ShapeTool.h"

#include "app/Log.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/ShapeMark.h"
#include "canvas/tools/MetresText.h"
#include "canvas/tools/PaintRegion.h"
#include "canvas/tools/PaintTools.h"
#include "document/Document.h"

#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>

#include <cmath>
#include <utility>

namespace {

/// For the history.
QString StepText(PaintToolKind kind, bool isErasing)
{
    switch (kind) {
    case PaintToolKind::Line:
        return isErasing ? Document::tr("Erase line on %1") : Document::tr("Paint line on %1");
    case PaintToolKind::Rectangle:
        return isErasing ? Document::tr("Erase rectangle on %1")
                         : Document::tr("Paint rectangle on %1");
    case PaintToolKind::Ellipse:
        return isErasing ? Document::tr("Erase ellipse on %1")
                         : Document::tr("Paint ellipse on %1");
    default:
        return isErasing ? Document::tr("Erase polygon on %1")
                         : Document::tr("Paint polygon on %1");
    }
}

} // namespace

bool ShapeTool::Begin(const QGraphicsSceneMouseEvent& event)
{
    const bool isButton = event.button() == Qt::LeftButton || event.button() == Qt::RightButton;
    Layer* layer = Parts().document.CurrentLayer();
    if (!isButton || !layer || (IsUnderWay() && event.button() != m_button)) {
        return false;
    }
    m_button = event.button();
    m_layer = layer;
    SetHeld(true);
    return true;
}

bool ShapeTool::IsRelease(const QGraphicsSceneMouseEvent& event) const
{
    return m_isHeld && event.button() == m_button;
}

void ShapeTool::SetHeld(bool isHeld)
{
    if (isHeld != m_isHeld) {
        m_isHeld = isHeld;
        Parts().document.SetHandBusy(isHeld);
    }
}

void ShapeTool::Show(const QPainterPath& outline, QPointF mouse, const QString& text) const
{
    Parts().view.Shape().Show(outline, mouse, text);
}

QSize ShapeTool::LayerSize() const
{
    const Layer* layer = m_layer;
    return layer ? layer->Image().size() : QSize();
}

void ShapeTool::Reset()
{
    m_button = Qt::NoButton;
    m_layer = nullptr;
    Parts().view.Shape().Hide();
    SetHeld(false);
}

void ShapeTool::Complete(raster::Region pixels)
{
    Layer* layer = m_layer;
    const bool isErasing = m_button == Qt::RightButton;
    Reset();
    if (!layer || layer != Parts().document.CurrentLayer()) {
        return;
    }
    // The layer may have been locked since the first corner.
    const QString reason = Parts().scene.GetPaintTools()->WhyNot();
    if (!reason.isEmpty()) {
        LogInfo(reason);
        return;
    }
    PaintRegion(Parts(), *layer, StepText(m_kind, isErasing), std::move(pixels), isErasing);
}

void ShapeTool::Cancel()
{
    if (IsUnderWay()) {
        Reset();
    }
}

void ShapeTool::FollowLayer(Layer* layer)
{
    // While the row of the layer moves, no layer is painted for a moment.
    if (layer && layer != m_layer) {
        Cancel();
    }
}

bool ShapeTool::PressKey(const QKeyEvent& event)
{
    // Undo is the key of a menu, unless there is nothing to undo but the shape.
    QKeyEvent copy(event.type(), event.key(), event.modifiers());
    const bool isUndo = IsUnderWay() && copy.matches(QKeySequence::Undo);
    if (isUndo) {
        Cancel();
    }
    return isUndo;
}

QString ShapeTool::SizeText(const QSizeF& size)
{
    const QPointF metres = WayInMetres({size.width(), size.height()});
    return Document::tr("%1 \u00d7 %2 m").arg(ShortMetres(metres.x()), ShortMetres(metres.y()));
}

QString ShapeTool::LengthText(QPointF way)
{
    const QPointF metres = WayInMetres(way);
    return Document::tr("%1 m").arg(ShortMetres(std::hypot(metres.x(), metres.y())));
}
