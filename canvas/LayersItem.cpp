#include "canvas/LayersItem.h"

#include "canvas/MaskSampler.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionGraphicsItem>

namespace {

/// The colour that QPainter makes of an opaque one at an opacity, premultiplied.
QRgb WithOpacity(QRgb rgb, qreal opacity)
{
    QImage source(1, 1, QImage::Format_ARGB32_Premultiplied);
    source.setPixel(0, 0, rgb | 0xFF000000U);
    QImage target(1, 1, QImage::Format_ARGB32_Premultiplied);
    target.fill(Qt::transparent);
    QPainter painter(&target);
    painter.setOpacity(opacity);
    painter.drawImage(0, 0, source);
    painter.end();
    return reinterpret_cast<const QRgb*>(target.constBits())[0];
}

} // namespace

LayersItem::LayersItem(QSize size)
    : m_size(size)
{
    setShapeMode(BoundingRectShape);
    setFlag(ItemUsesExtendedStyleOption);
}

void LayersItem::Add(const QImage& mask, QRgb rgb, qreal opacity)
{
    m_pictures.append({mask, WithOpacity(rgb, opacity)});
    PictureChanged();
}

void LayersItem::Clear()
{
    m_pictures.clear();
    PictureChanged();
}

void LayersItem::SetSize(QSize size)
{
    prepareGeometryChange();
    m_size = size;
    for (Picture& picture : m_pictures) {
        picture.mask = picture.mask.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    }
    PictureChanged();
}

QPixmap LayersItem::pixmap() const
{
    return QPixmap::fromImage(Compose({}, {QPoint(), m_size}));
}

void LayersItem::PictureChanged()
{
    m_tiles.Clear();
    update();
}

QRectF LayersItem::boundingRect() const
{
    return {QPointF(), QSizeF(m_size)};
}

QPainterPath LayersItem::shape() const
{
    QPainterPath path;
    path.addRect(boundingRect());
    return path;
}

QImage LayersItem::Compose(const QTransform& toDevice, const QRect& device) const
{
    QImage composed(device.size(), QImage::Format_ARGB32_Premultiplied);
    if (composed.isNull()) {
        return {};
    }
    composed.fill(Qt::transparent);
    const MaskSampler sampler(toDevice, m_size, device);
    for (const Picture& picture : m_pictures) {
        sampler.DrawBeneath(composed, picture.mask, picture.color);
    }
    return composed;
}

void LayersItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option,
                       QWidget* /*widget*/)
{
    if (m_pictures.isEmpty()) {
        return;
    }
    if (!MaskSampler::CanSample(painter->deviceTransform())) {
        painter->drawPixmap(0, 0, pixmap());
        return;
    }
    m_tiles.Draw(*painter, option->exposedRect,
                 [this](const QTransform& toDevice, const QRect& device) {
                     return Compose(toDevice, device);
                 });
}
