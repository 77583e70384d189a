#include "canvas/LayerPainter.h"

#include "canvas/Brush.h"
#include "canvas/DeviceImage.h"
#include "canvas/MaskSampler.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"

#include <QPainter>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

bool IsTwoValued(const QImage& mask)
{
    for (int y = 0; y < mask.height(); ++y) {
        const uchar* row = mask.constScanLine(y);
        const auto isOther = [](uchar pixel) {
            return pixel != raster::MaskClear && pixel != raster::MaskSet;
        };
        if (std::any_of(row, row + mask.width(), isOther)) {
            return false;
        }
    }
    return true;
}

} // namespace

void LayerPainter::Load(Layer* layer)
{
    m_layer = layer;
    m_argb = QImage();
    m_mask = layer ? layer->Image() : QImage();
    m_rgb = layer ? layer->Color().rgb() : 0;
    m_wasHandedOver = false;
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
    const bool isOtherColor = layer->Color().rgb() != m_rgb;
    // Translucent paint, and shades between two colours of a picture, are other colours too.
    const bool paintsOtherColor =
        action == BrushAction::Paint && brush.PaintColor() != QColor(m_rgb);
    if (isOtherColor || paintsOtherColor) {
        MakeArgb();
    }
    if (!IsHandedOver(*layer)) {
        HandOverWhole(*layer);
    }
    if (action == BrushAction::None) {
        return {};
    }
    const QRect part = Brush::PatchRect(touched, Size());
    if (part.isEmpty()) {
        return {};
    }
    if (m_argb.isNull()) {
        QImage patch = raster::MaskToDisplay(m_mask.copy(part), m_rgb);
        draw(patch, {part.topLeft(), Size()});
        HandOverPart(*layer, part, patch);
    } else {
        draw(m_argb, {});
        HandOverPart(*layer, part, m_argb.copy(part));
    }
    return part;
}

bool LayerPainter::IsHandedOver(const Layer& layer) const
{
    return m_wasHandedOver && m_handedRgb == layer.Color().rgb() &&
           m_mask.constBits() == layer.Image().constBits();
}

void LayerPainter::HandOverWhole(Layer& layer)
{
    const QRgb rgb = layer.Color().rgb();
    if (!m_argb.isNull()) {
        m_mask = raster::ImageToMask(m_argb, rgb);
    } else if (!IsTwoValued(m_mask)) {
        m_mask = raster::ImageToMask(raster::MaskToDisplay(m_mask, m_rgb), rgb);
    }
    m_handedRgb = rgb;
    m_wasHandedOver = true;
    layer.TakePaintedMask(m_mask);
}

void LayerPainter::HandOverPart(Layer& layer, const QRect& part, const QImage& patch)
{
    const QImage patchMask = raster::ImageToMask(patch, layer.Color().rgb());
    // With the layer's hold on the mask given up, this is the only one, and writing does not copy.
    layer.TakePaintedMask({});
    for (int y = 0; y < part.height(); ++y) {
        std::memcpy(m_mask.scanLine(part.y() + y) + part.x(), patchMask.constScanLine(y),
                    static_cast<std::size_t>(part.width()));
    }
    layer.TakePaintedMask(m_mask);
}

void LayerPainter::MakeArgb()
{
    if (m_argb.isNull()) {
        m_argb = raster::MaskToDisplay(m_mask, m_rgb);
    }
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
