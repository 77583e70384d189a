#include "canvas/LayerPainter.h"

#include "app/Log.h"
#include "canvas/DeviceImage.h"
#include "canvas/MaskSampler.h"
#include "document/Brush.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"

#include <QPainter>

#include <cstring>
#include <utility>

void LayerPainter::Load(Layer* layer)
{
    m_layer = layer;
    m_argb = QImage();
    m_mask = layer ? layer->Image() : QImage();
    m_rgb = layer ? layer->Color().rgb() : 0;
    m_wasHandedOver = false;
    m_wasMemoryMissed = false;
}

void LayerPainter::BeginStroke(const PixelLimit& limit)
{
    m_recorded = {};
    m_limit = limit.Mask().size() == m_mask.size() ? limit : PixelLimit();
    m_isRecording = true;
}

raster::MaskDelta LayerPainter::EndStroke()
{
    m_isRecording = false;
    m_limit = {};
    if (std::exchange(m_wasLimited, false)) {
        // The next stroke may have another limit.
        m_wasHandedOver = false;
    }
    if (!m_recorded.DropUnchanged(m_mask)) {
        m_recorded = {};
    }
    return std::exchange(m_recorded, {});
}

void LayerPainter::CancelStroke()
{
    raster::MaskDelta before = EndStroke();
    if (Layer* layer = m_layer) {
        // The mask is exchanged in place, for which the layer alone must hold it.
        Load(nullptr);
        layer->SwapPixels(before);
        Load(layer);
    }
}

QRect LayerPainter::Dab(const Brush& brush, BrushAction action)
{
    return Step(brush, action, brush.DabRect(),
                [&brush, action](QImage& image, const BrushPatch& patch) {
                    if (action == BrushAction::Paint) {
                        brush.PaintDab(image, patch);
                    } else {
                        brush.EraseDab(image, patch);
                    }
                });
}

QRect LayerPainter::Segment(const Brush& brush, BrushAction action, QPointF from)
{
    const QPointF to = brush.Position();
    return Step(brush, action, brush.SegmentRect(from, to),
                [&brush, action, from, to](QImage& image, const BrushPatch& patch) {
                    if (action == BrushAction::Paint) {
                        brush.PaintSegment(image, from, to, patch);
                    } else {
                        brush.EraseSegment(image, from, to, patch);
                    }
                });
}

QRect LayerPainter::Step(const Brush& brush, BrushAction action, const QRect& touched,
                         const Draw& draw)
{
    Layer* layer = m_layer;
    if (!layer || m_mask.isNull()) {
        return {};
    }
    const uchar* const before = layer->Image().constBits();
    if (!Prepare(*layer, brush, action)) {
        MissMemory(*layer);
        return {};
    }
    const bool isOther = layer->Image().constBits() != before;
    const QRect part = action == BrushAction::None ? QRect() : Brush::PatchRect(touched, Size());
    if (!part.isEmpty() && !PaintPart(*layer, part, draw)) {
        MissMemory(*layer);
    }
    return isOther ? QRect(QPoint(), Size()) : part;
}

bool LayerPainter::Prepare(Layer& layer, const Brush& brush, BrushAction action)
{
    const bool isOtherColor = layer.Color().rgb() != m_rgb;
    // Translucent paint also gives other colours than the layer's.
    const bool paintsOtherColor =
        action == BrushAction::Paint && brush.PaintColor() != QColor(m_rgb);
    if ((isOtherColor || paintsOtherColor) && !MakeArgb()) {
        return false;
    }
    return IsHandedOver(layer) || HandOverWhole(layer);
}

bool LayerPainter::PaintPart(Layer& layer, const QRect& part, const Draw& draw)
{
    if (m_argb.isNull()) {
        QImage patch = raster::MaskToDisplay(m_mask.copy(part), m_rgb);
        draw(patch, {part.topLeft(), Size()});
        return HandOverPart(layer, part, patch);
    }
    if (m_limit.IsOn()) {
        return PaintLimitedArgb(layer, part, draw);
    }
    draw(m_argb, {});
    // If this fails, the next step hands over the whole picture.
    m_wasHandedOver = HandOverPart(layer, part, m_argb.copy(part));
    return m_wasHandedOver;
}

bool LayerPainter::PaintLimitedArgb(Layer& layer, const QRect& part, const Draw& draw)
{
    QImage patch = m_argb.copy(part);
    if (patch.isNull()) {
        return false;
    }
    draw(patch, {part.topLeft(), Size()});
    m_limit.PutBack(patch, part.topLeft(), m_argb);
    for (int y = 0; y < part.height(); ++y) {
        std::memcpy(m_argb.scanLine(part.y() + y) + part.x() * int(sizeof(QRgb)),
                    patch.constScanLine(y), static_cast<std::size_t>(patch.bytesPerLine()));
    }
    m_wasHandedOver = HandOverPart(layer, part, patch);
    return m_wasHandedOver;
}

void LayerPainter::MissMemory(const Layer& layer)
{
    if (!m_wasMemoryMissed) {
        m_wasMemoryMissed = true;
        // Log last, because the events that logging processes may load another layer.
        LogError(QStringLiteral("There is no memory to paint on layer '%1'.").arg(layer.text()));
    }
}

bool LayerPainter::IsHandedOver(const Layer& layer) const
{
    return m_wasHandedOver && m_handedRgb == layer.Color().rgb() &&
           m_mask.constBits() == layer.Image().constBits();
}

bool LayerPainter::HandOverWhole(Layer& layer)
{
    const QRgb rgb = layer.Color().rgb();
    QImage mask = m_mask;
    if (!m_argb.isNull()) {
        mask = raster::ImageToMask(m_argb, rgb);
    } else if (!raster::IsBinary(m_mask)) {
        mask = raster::ImageToMask(raster::MaskToDisplay(m_mask, m_rgb), rgb);
    }
    if (mask.isNull()) {
        return false;
    }
    // A mask with greys, or another colour's picture, changes as a whole.
    const bool isOther = mask.constBits() != layer.Image().constBits();
    if (isOther && m_limit.IsOn()) {
        m_limit.PutBack(mask, {}, layer.Image());
        m_wasLimited = true;
    }
    if (m_isRecording && isOther && !m_recorded.Touch(layer.Image(), layer.Image().rect())) {
        return false;
    }
    m_mask = mask;
    m_handedRgb = rgb;
    m_wasHandedOver = true;
    layer.TakePaintedMask(m_mask);
    return true;
}

bool LayerPainter::HandOverPart(Layer& layer, const QRect& part, const QImage& patch)
{
    QImage patchMask = raster::ImageToMask(patch, layer.Color().rgb());
    if (patchMask.isNull()) {
        return false;
    }
    if (m_limit.IsOn()) {
        m_limit.PutBack(patchMask, part.topLeft(), m_mask);
    }
    if (m_isRecording && !m_recorded.Touch(m_mask, part)) {
        return false;
    }
    // The layer releases its reference, so the image is unshared and writing does not copy it.
    layer.TakePaintedMask({});
    const bool isWritable = raster::Unshare(m_mask);
    for (int y = 0; y < part.height() && isWritable; ++y) {
        std::memcpy(m_mask.scanLine(part.y() + y) + part.x(), patchMask.constScanLine(y),
                    static_cast<std::size_t>(part.width()));
    }
    layer.TakePaintedMask(m_mask);
    return isWritable;
}

bool LayerPainter::MakeArgb()
{
    if (m_argb.isNull()) {
        m_argb = raster::MaskToDisplay(m_mask, m_rgb);
    }
    return !m_argb.isNull();
}

void LayerPainter::Paint(QPainter& painter, const QRectF& exposed) const
{
    if (m_mask.isNull()) {
        return;
    }
    if (!m_argb.isNull() || !MaskSampler::CanSample(painter.deviceTransform())) {
        painter.drawImage(0, 0, Picture());
        return;
    }
    DrawDeviceImage(painter, exposed, [this](const QTransform& toDevice, const QRect& device) {
        QImage image(device.size(), QImage::Format_ARGB32_Premultiplied);
        if (!image.isNull()) {
            image.fill(Qt::transparent);
            MaskSampler(toDevice, Size(), device).DrawBeneath(image, m_mask, m_rgb);
        }
        return image;
    });
}

QImage LayerPainter::Picture() const
{
    return m_argb.isNull() ? raster::MaskToDisplay(m_mask, m_rgb) : m_argb;
}
