#include "territories/ZoneCircle.h"

#include <QCache>
#include <QImage>
#include <QPaintEngine>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

namespace {

constexpr int OutlineWidth = 2;
/// Half the side of the largest picture that is kept, in device pixels. Larger circles are few.
constexpr int MaxReach = 64;
/// QPainter rounds coordinates beyond this another way.
constexpr double LastPixel = 32000;
constexpr int CacheBytes = 64 << 20;
/// What an entry takes beside its pixels.
constexpr int EntryBytes = 256;

/// Made once: a map shows thousands of zones.
const QPen& OutlinePen(int grey)
{
    static const std::vector<QPen> pens = [] {
        std::vector<QPen> greys;
        for (int level = 0; level <= 255; ++level) {
            greys.emplace_back(QColor(level, level, level), OutlineWidth);
        }
        return greys;
    }();
    return pens[static_cast<std::size_t>(grey)];
}

void DrawPlainly(QPainter& painter, const ZoneCircle& circle)
{
    painter.setPen(OutlinePen(circle.grey));
    painter.setBrush(circle.fill);
    painter.drawEllipse(QPointF(), circle.radius, circle.radius);
}

/// Circles with equal keys have equal pixels.
struct Key
{
    /// Scale, place within a device pixel, and radius.
    std::array<double, 5> geometry;
    quint64 fill;
    int grey;

    bool operator==(const Key& other) const
    {
        return geometry == other.geometry && fill == other.fill && grey == other.grey;
    }
};

uint qHash(const Key& key, uint seed = 0)
{
    const uint geometryHash =
        qHashBits(key.geometry.data(), sizeof(double) * key.geometry.size(), seed);
    return geometryHash ^ ::qHash(key.fill, seed) ^ static_cast<uint>(key.grey);
}

/// Where a circle lies on the device.
struct Place
{
    QTransform toDevice;
    /// The pixel of the circle's centre.
    QPoint center;
    /// How many pixels on each side of it may be touched.
    QPoint reach;

    QPoint TopLeft() const { return center - reach; }
    QSize Size() const { return {2 * reach.x() + 1, 2 * reach.y() + 1}; }
};

/// False for painters that mix a circle's colours with each other or with the ground otherwise than
/// one pixel of a picture with the ground.
bool KeepsPixels(const QPainter& painter)
{
    return painter.paintEngine()->type() == QPaintEngine::Raster &&
           painter.compositionMode() == QPainter::CompositionMode_SourceOver &&
           painter.opacity() >= 1 && !painter.testRenderHint(QPainter::Antialiasing);
}

/// False for circles that are not kept as pictures.
bool FindPlace(Place& place, const QPainter& painter, qreal radius)
{
    const QTransform& toDevice = painter.deviceTransform();
    const double width = (radius + OutlineWidth) * std::abs(toDevice.m11());
    const double height = (radius + OutlineWidth) * std::abs(toDevice.m22());
    const bool isSmall = radius > 0 && width < MaxReach - 2 && height < MaxReach - 2;
    // Outlines of up to a pixel are drawn by other rules: the ground shines through thin ones, and
    // they are rounded otherwise in a picture.
    const bool isThick =
        OutlineWidth * std::abs(toDevice.m11()) > 1 && OutlineWidth * std::abs(toDevice.m22()) > 1;
    if (!isSmall || !isThick || toDevice.type() > QTransform::TxScale) {
        return false;
    }
    place.reach = {static_cast<int>(width) + 2, static_cast<int>(height) + 2};
    const double x = std::floor(toDevice.dx());
    const double y = std::floor(toDevice.dy());
    if (!(std::abs(x) < LastPixel && std::abs(y) < LastPixel)) {
        return false;
    }
    place.center = {static_cast<int>(x), static_cast<int>(y)};
    place.toDevice = toDevice;
    return true;
}

Key KeyOf(const ZoneCircle& circle, const Place& place)
{
    const QTransform& t = place.toDevice;
    return {{t.m11(), t.m22(), t.dx() - place.center.x(), t.dy() - place.center.y(), circle.radius},
            circle.fill.rgba64(),
            circle.grey};
}

QImage Picture(const ZoneCircle& circle, const Place& place)
{
    QImage picture(place.Size(), QImage::Format_ARGB32_Premultiplied);
    if (!picture.isNull()) {
        picture.fill(Qt::transparent);
        const QPoint topLeft = place.TopLeft();
        QPainter painter(&picture);
        painter.setTransform(place.toDevice *
                             QTransform::fromTranslate(-topLeft.x(), -topLeft.y()));
        DrawPlainly(painter, circle);
    }
    return picture;
}

void DrawPicture(QPainter& painter, const QImage& picture, const Place& place)
{
    const QTransform before = painter.worldTransform();
    painter.setWorldTransform(place.toDevice.inverted() * before);
    painter.drawImage(place.TopLeft(), picture);
    painter.setWorldTransform(before);
}

} // namespace

void DrawZoneCircle(QPainter& painter, const ZoneCircle& circle)
{
    static QCache<Key, QImage> cache(CacheBytes);
    Place place;
    if (!KeepsPixels(painter) || !FindPlace(place, painter, circle.radius)) {
        DrawPlainly(painter, circle);
        return;
    }
    const Key key = KeyOf(circle, place);
    const QImage* known = cache.object(key);
    if (known && !known->isNull()) {
        DrawPicture(painter, *known, place);
        return;
    }
    DrawPlainly(painter, circle);
    // Making a picture takes longer than drawing, and pays only for what is drawn time and again.
    auto entry = std::make_unique<QImage>(known ? Picture(circle, place) : QImage());
    const int bytes = EntryBytes + static_cast<int>(entry->sizeInBytes());
    cache.insert(key, entry.release(), bytes);
}
