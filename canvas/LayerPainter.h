#pragma once

#include "app/Tracked.h"

#include <QImage>
#include <QPointF>
#include <QRect>

#include <functional>

class Brush;
struct BrushPatch;
class Layer;
class QPainter;

enum class BrushAction
{
    None,
    Paint,
    Erase,
};

/// The working picture of the layer being edited, into which the brush paints.
///
/// By the rule of the program every brush step hands the whole picture to the layer, whose mask
/// becomes the pixels that equal the layer's colour. As long as the picture holds nothing but that
/// colour and clear pixels it is the mask, and a step paints a small patch of it in place; only
/// when other colours come in is a 32-bit picture made.
class LayerPainter
{
public:
    /// Takes the layer's present picture; null ends the editing.
    void Load(Layer* layer);
    Layer* GetLayer() const { return m_layer; }

    /// A filled circle at the brush's position, or a line from the point to there, and the
    /// hand-over that follows. Returns the layer pixels that may have changed. Without memory for
    /// it the layer keeps the mask that it has; the first time after Load an error is logged.
    QRect Dab(const Brush& brush, BrushAction action);
    QRect Segment(const Brush& brush, BrushAction action, QPointF from);

    /// Of the picture in layer pixels; empty without one.
    QSize Size() const { return m_mask.size(); }
    /// Paints the exposed part of the picture; layer pixels are scene units.
    void Paint(QPainter& painter, const QRectF& exposed) const;
    /// The picture as a Format_ARGB32_Premultiplied image; null without a layer.
    QImage Picture() const;

private:
    using Draw = std::function<void(QImage& image, const BrushPatch& patch)>;

    QRect Step(const Brush& brush, BrushAction action, const QRect& touched, const Draw& draw);
    // Each that returns a bool leaves mask and layer as they are, and returns false, when there is
    // no memory for more.
    bool Prepare(Layer& layer, const Brush& brush, BrushAction action);
    bool PaintPart(Layer& layer, const QRect& part, const Draw& draw);
    bool IsHandedOver(const Layer& layer) const;
    bool HandOverWhole(Layer& layer);
    bool HandOverPart(Layer& layer, const QRect& part, const QImage& patch);
    bool CopyMask();
    bool MakeArgb();
    void MissMemory(const Layer& layer);

    Tracked<Layer> m_layer;
    /// The mask of the last hand-over. It is the picture too, in m_rgb where it is 255, as long as
    /// there is no m_argb.
    QImage m_mask;
    QRgb m_rgb = 0;
    /// The picture when it has more colours.
    QImage m_argb;
    bool m_wasHandedOver = false;
    QRgb m_handedRgb = 0;
    bool m_wasMemoryMissed = false;
};
