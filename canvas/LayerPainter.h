#pragma once

#include "app/Tracked.h"
#include "canvas/PixelLimit.h"
#include "layers/raster/MaskDelta.h"

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
/// Every brush step hands the whole picture to the layer, whose mask becomes the pixels that equal
/// the layer's colour. As long as the picture holds only that colour and clear pixels, the mask
/// says everything about it, and a step paints a small patch of the mask in place. A 32-bit picture
/// is made only when another colour is painted.
class LayerPainter
{
public:
    /// Begins to edit the layer's present picture. Null ends the editing.
    void Load(Layer* layer);
    Layer* GetLayer() const { return m_layer; }

    /// Paint a filled circle at the brush's position, or a line from the point to there, and hand
    /// the result over to the layer. They return the layer pixels that may have changed. Without
    /// enough memory the layer keeps its mask; the first such failure after Load is logged.
    QRect Dab(const Brush& brush, BrushAction action);
    QRect Segment(const Brush& brush, BrushAction action, QPointF from);

    /// Begins to record the mask as it was before the stroke; EndStroke returns the record. Until
    /// then only the limit's pixels change. A limit of another size is none.
    void BeginStroke(const PixelLimit& limit = {});
    raster::MaskDelta EndStroke();
    /// Gives the layer back the mask that it had at BeginStroke.
    void CancelStroke();

    /// The size of the picture in layer pixels; empty without one.
    QSize Size() const { return m_mask.size(); }
    /// Paints the exposed part of the picture; layer pixels are scene units.
    void Paint(QPainter& painter, const QRectF& exposed) const;
    /// The picture as a Format_ARGB32_Premultiplied image; null without a layer.
    QImage Picture() const;

private:
    using Draw = std::function<void(QImage& image, const BrushPatch& patch)>;

    QRect Step(const Brush& brush, BrushAction action, const QRect& touched, const Draw& draw);
    // The functions that return a bool return false if there is not enough memory. Mask and layer
    // do not change then.
    bool Prepare(Layer& layer, const Brush& brush, BrushAction action);
    bool PaintPart(Layer& layer, const QRect& part, const Draw& draw);
    bool IsHandedOver(const Layer& layer) const;
    bool HandOverWhole(Layer& layer);
    bool HandOverPart(Layer& layer, const QRect& part, const QImage& patch);
    bool PaintLimitedArgb(Layer& layer, const QRect& part, const Draw& draw);
    bool MakeArgb();
    void MissMemory(const Layer& layer);

    Tracked<Layer> m_layer;
    /// The mask of the last hand-over. While m_argb is null, the picture is m_rgb where the mask is
    /// 255.
    QImage m_mask;
    QRgb m_rgb = 0;
    /// The picture, if it has more colours than m_rgb.
    QImage m_argb;
    /// What the stroke under way has changed of the mask.
    raster::MaskDelta m_recorded;
    bool m_isRecording = false;
    PixelLimit m_limit;
    /// The limit kept pixels that the hand-over of the whole picture would have changed.
    bool m_wasLimited = false;
    bool m_wasHandedOver = false;
    QRgb m_handedRgb = 0;
    bool m_wasMemoryMissed = false;
};
