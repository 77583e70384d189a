#include "document/versions/StoredPicture.h"

#include "layers/raster/Mask.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr QRgb Ground = 0xFF303030;

/// The layer pixel under the centre of a picture pixel.
int LayerPixel(int index, int layerLength, int length)
{
    return static_cast<int>((2 * qint64(index) + 1) * layerLength / (2 * qint64(length)));
}

QImage Shrunk(const QImage& mask, const QColor& color, QSize size)
{
    QImage shrunk(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        const uchar* pixels = mask.constScanLine(LayerPixel(y, mask.height(), size.height()));
        auto* to = reinterpret_cast<QRgb*>(shrunk.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const bool isSet = pixels[LayerPixel(x, mask.width(), size.width())] == raster::MaskSet;
            to[x] = isSet ? color.rgba() : qRgba(0, 0, 0, 0);
        }
    }
    return shrunk;
}

} // namespace

StoredPicture::StoredPicture(const StoredProject& stored, int length)
    : m_stored(stored)
    , m_outline(OutlineOf(stored.text))
    , m_image(
          m_outline.layerSize.scaled(length, length, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)),
          QImage::Format_ARGB32_Premultiplied)
    , m_left(m_outline.layers.size())
{
    m_image.fill(Ground);
}

bool StoredPicture::Step()
{
    if (m_left == 0) {
        return false;
    }
    const ProjectOutline::Layer& layer = m_outline.layers[--m_left];
    const QImage mask = layer.isVisible ? m_stored.masks(m_left, layer.name) : QImage();
    if (!mask.isNull()) {
        QPainter painter(&m_image);
        painter.drawImage(0, 0, Shrunk(mask, layer.color, m_image.size()));
    }
    return true;
}
