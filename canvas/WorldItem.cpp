#include "canvas/WorldItem.h"

#include "canvas/DeviceImage.h"
#include "canvas/MaskSampler.h"
#include "layers/raster/Mask.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixelFormat>
#include <QStyleOptionGraphicsItem>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

/// QImage::scaled has one rule for the formats before this one, and draws the others by QPainter.
constexpr QImage::Format FirstDrawnFormat = QImage::Format_RGB32;
/// Blank pixels of the scaled picture have this place.
constexpr int NoPlace = -1;
constexpr int MaxByte = 255;

bool HasAlpha(QImage::Format format)
{
    return QImage::toPixelFormat(format).alphaUsage() == QPixelFormat::UsesAlpha;
}

/// A picture of the given format whose pixels tell one bit of their place, counted from 1.
QImage Ramp(QImage::Format format, QSize size, Qt::Orientation direction, int bit)
{
    QImage ramp(size, HasAlpha(format) ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    const QRgb clear = HasAlpha(format) ? 0U : 0xFF000000U;
    for (int y = 0; y < ramp.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(ramp.scanLine(y));
        for (int x = 0; x < ramp.width(); ++x) {
            const int place = direction == Qt::Horizontal ? x : y;
            line[x] = ((place + 1) >> bit & 1) != 0 ? 0xFFFFFFFFU : clear;
        }
    }
    return std::move(ramp).convertToFormat(format);
}

/// Scales the ramp, which is the top left part of a picture, as QImage::scaled scales the picture.
/// size is that of the result, scale that of the picture.
QImage ScaledRamp(const QImage& ramp, QSize size, const QTransform& scale)
{
    if (ramp.format() < FirstDrawnFormat) {
        return ramp.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    }
    QImage scaled(size, ramp.format());
    if (scaled.isNull()) {
        return {};
    }
    std::fill_n(scaled.bits(), scaled.sizeInBytes(), uchar(0));
    QPainter painter(&scaled);
    painter.setTransform(scale);
    painter.drawImage(0, 0, ramp);
    return scaled;
}

/// For each column or row of a picture of one size, scaled to another one, the column or row of
/// the picture that QImage::scaled takes it from. Qt's rule depends on the format, on the scale of
/// both directions and on the direction, so the places are asked of Qt: a narrow part of a picture
/// whose pixels hold their own place is scaled, one bit of the place at a time.
std::vector<int> Places(QImage::Format format, QSize from, QSize to, Qt::Orientation direction)
{
    const bool isHorizontal = direction == Qt::Horizontal;
    const auto along = [isHorizontal](QSize size) {
        return isHorizontal ? size.width() : size.height();
    };
    const auto across = [&along](QSize size) { return along(size.transposed()); };
    const auto oriented = [isHorizontal](int length, int thickness) {
        return isHorizontal ? QSize(length, thickness) : QSize(thickness, length);
    };
    std::vector<int> places(static_cast<std::size_t>(along(to)), 0);
    if (from == to) {
        std::iota(places.begin(), places.end(), 0);
        return places;
    }
    const QTransform scale = QTransform::fromScale(static_cast<qreal>(to.width()) / from.width(),
                                                   static_cast<qreal>(to.height()) / from.height());
    // Enough for the first row of the scaled picture, or for its first column.
    const int thickness = std::min(across(from), across(from) / across(to) + 2);
    const QSize rampSize = oriented(along(from), thickness);
    for (int bit = 0; along(from) >> bit != 0; ++bit) {
        const QImage ramp = Ramp(format, rampSize, direction, bit);
        const QImage scaled =
            ScaledRamp(ramp, oriented(along(to), 1), scale).convertToFormat(QImage::Format_ARGB32);
        if (scaled.isNull()) {
            return {};
        }
        for (int i = 0; i < along(to); ++i) {
            const QRgb pixel = scaled.pixel(isHorizontal ? i : 0, isHorizontal ? 0 : i);
            const int value = HasAlpha(format) ? qAlpha(pixel) : qRed(pixel);
            places[static_cast<std::size_t>(i)] |= (value > MaxByte / 2 ? 1 : 0) << bit;
        }
    }
    // The ramps count from 1, so that blank pixels are 0.
    std::transform(places.begin(), places.end(), places.begin(),
                   [](int place) { return place == 0 ? NoPlace : place - 1; });
    return places;
}

} // namespace

WorldItem::WorldItem()
{
    setShapeMode(BoundingRectShape);
    setFlag(ItemUsesExtendedStyleOption);
}

bool WorldItem::Show(QImage picture, QSize size)
{
    if (picture.isNull() || !raster::IsMaskSize(size)) {
        return false;
    }
    std::vector<int> columns = Places(picture.format(), picture.size(), size, Qt::Horizontal);
    std::vector<int> rows = Places(picture.format(), picture.size(), size, Qt::Vertical);
    QImage shown = QPixmap::fromImage(std::move(picture)).toImage();
    if (shown.format() != QImage::Format_RGB32) {
        shown = std::move(shown).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    if (shown.isNull() || columns.empty() || rows.empty()) {
        return false;
    }
    m_columns = std::move(columns);
    m_rows = std::move(rows);
    Take(shown, size);
    return true;
}

void WorldItem::Clear()
{
    m_columns = {};
    m_rows = {};
    Take({}, {0, 0});
}

void WorldItem::Take(const QImage& picture, QSize size)
{
    prepareGeometryChange();
    m_picture = picture;
    m_size = size;
    update();
}

QPixmap WorldItem::pixmap() const
{
    if (m_picture.isNull()) {
        return {};
    }
    return QPixmap::fromImage(Sampled({}, {QPoint(), m_size}));
}

QImage WorldItem::Sampled(const QTransform& toDevice, const QRect& device) const
{
    return MaskSampler(toDevice, m_size, device, m_picture.format())
        .SampledPicture(m_picture, m_columns, m_rows);
}

QPainterPath WorldItem::shape() const
{
    QPainterPath path;
    path.addRect(boundingRect());
    return path;
}

void WorldItem::paint(QPainter* painter, const QStyleOptionGraphicsItem* option,
                      QWidget* /*widget*/)
{
    if (m_picture.isNull()) {
        return;
    }
    if (!MaskSampler::CanSample(painter->deviceTransform())) {
        painter->drawPixmap(0, 0, pixmap());
        return;
    }
    DrawDeviceImage(*painter, option->exposedRect,
                    [this](const QTransform& toDevice, const QRect& device) {
                        return Sampled(toDevice, device);
                    });
}
