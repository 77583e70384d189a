#include "canvas/LayersItem.h"

#include "canvas/MaskSampler.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionGraphicsItem>

#include <algorithm>

namespace {

/// The premultiplied colour that QPainter draws for an opaque colour at this opacity.
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
    : m_size(size.isEmpty() ? QSize(0, 0) : size)
{
    setShapeMode(BoundingRectShape);
    setFlag(ItemUsesExtendedStyleOption);
}

void LayersItem::Add(const QImage& mask, QRgb rgb, qreal opacity, int id)
{
    if (m_size.isEmpty() || mask.isNull()) {
        return;
    }
    m_pictures.append({mask, WithOpacity(rgb, opacity), id});
    PictureChanged();
}

LayersItem::Picture* LayersItem::PictureOf(int id)
{
    const auto found = std::find_if(m_pictures.begin(), m_pictures.end(),
                                    [id](const Picture& picture) { return picture.id == id; });
    return found == m_pictures.end() ? nullptr : &*found;
}

void LayersItem::Release(int id)
{
    if (Picture* picture = PictureOf(id)) {
        picture->mask = QImage();
    }
}

bool LayersItem::Replace(int id, const QImage& mask, const QRect& changed)
{
    Picture* picture = PictureOf(id);
    if (!picture) {
        return false;
    }
    picture->mask = mask;
    // Smooth scaling may show a pixel beyond its border.
    const QRectF shown = QRectF(changed).adjusted(-1, -1, 1, 1);
    m_tiles.Drop(shown);
    update(shown);
    return true;
}

void LayersItem::Clear()
{
    m_pictures.clear();
    PictureChanged();
}

void LayersItem::SetSize(QSize size)
{
    const QSize newSize = size.isEmpty() ? QSize(0, 0) : size;
    if (newSize == m_size) {
        return;
    }
    prepareGeometryChange();
    Scale(newSize);
    m_size = newSize;
    PictureChanged();
}

void LayersItem::Scale(QSize size)
{
    if (size.isEmpty()) {
        m_pictures.clear();
    }
    if (m_pictures.isEmpty()) {
        return;
    }
    const QTransform scale =
        QTransform::fromScale(static_cast<qreal>(size.width()) / m_size.width(),
                              static_cast<qreal>(size.height()) / m_size.height());
    const MaskSampler sampler(scale, m_size, {QPoint(), size});
    for (Picture& picture : m_pictures) {
        picture.mask = picture.mask.isNull() ? QImage() : sampler.Sampled(picture.mask);
    }
    const auto isLost = [](const Picture& picture) { return picture.mask.isNull(); };
    m_pictures.erase(std::remove_if(m_pictures.begin(), m_pictures.end(), isLost),
                     m_pictures.end());
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
        if (picture.mask.isNull()) {
            continue;
        }
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
