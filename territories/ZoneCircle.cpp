#include "territories/ZoneCircle.h"

#include <QCache>
#include <QImage>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

constexpr int OutlineWidth = 2;
/// Half the side of the largest picture that is kept, in device pixels. There are few larger
/// circles.
constexpr int MaxReach = 64;
/// QPainter rounds coordinates beyond this in another way.
constexpr double LastPixel = 32000;
/// Zones on a map have few different radii.
constexpr int MaxPaths = 1000;
constexpr int CacheBytes = 64 << 20;
/// The memory of an entry in addition to its pixels.
constexpr int EntryBytes = 256;

/// Made only once, because a map shows thousands of zones.
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

void DrawEllipse(QPainter& painter, const ZoneCircle& circle)
{
    painter.setPen(OutlinePen(circle.grey));
    painter.setBrush(circle.fill);
    painter.drawEllipse(QPointF(), circle.radius, circle.radius);
}

struct Paths
{
    QPainterPath disc;
    QPainterPath outline;
};

/// The outline that QPainter makes of an ellipse and its pen. The radius must be positive.
const Paths& PathsOf(qreal radius)
{
    static QCache<qreal, Paths> cache(MaxPaths);
    if (const Paths* known = cache.object(radius)) {
        return *known;
    }
    auto* paths = new Paths;
    paths->disc.addEllipse(QPointF(), radius, radius);
    paths->outline = QPainterPathStroker(OutlinePen(0)).createStroke(paths->disc);
    cache.insert(radius, paths);
    return *paths;
}

/// Draws the same pixels as DrawEllipse with a thick outline, but faster.
void DrawPaths(QPainter& painter, const ZoneCircle& circle)
{
    const Paths& paths = PathsOf(circle.radius);
    painter.fillPath(paths.disc, circle.fill);
    painter.fillPath(paths.outline, OutlinePen(circle.grey).brush());
}

/// Circles with equal keys have equal pixels.
struct Key
{
    /// The scale, the place within a device pixel, and the radius.
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

/// The place of a circle on the device.
struct Place
{
    QTransform toDevice;
    /// The pixel of the circle's centre.
    QPoint center;
    /// How many pixels on each side of the centre the circle may touch.
    QPoint reach;

    QPoint TopLeft() const { return center - reach; }
    QSize Size() const { return {2 * reach.x() + 1, 2 * reach.y() + 1}; }
};

/// Of those below, the one that draws the circle's pixels again wherever it is moved by whole
/// pixels.
using Draw = void (*)(QPainter& painter, const ZoneCircle& circle);

/// Null if the circle must be drawn each time. Outlines of less than a pixel are translucent, and
/// the ends of their parts lie over one another.
Draw RepeatableDraw(const QPainter& painter, qreal radius)
{
    const QTransform& toDevice = painter.deviceTransform();
    if (painter.paintEngine()->type() != QPaintEngine::Raster || !(radius > 0) ||
        toDevice.type() > QTransform::TxScale || painter.testRenderHint(QPainter::Antialiasing)) {
        return nullptr;
    }
    const qreal across = OutlineWidth * std::abs(toDevice.m11());
    const qreal down = OutlineWidth * std::abs(toDevice.m22());
    if (across > 1 && down > 1) {
        return DrawPaths;
    }
    // QPainter draws an outline of one pixel in another way.
    return across == 1 && down == 1 ? DrawEllipse : nullptr;
}

/// False for circles that are not kept as pictures: large ones, and those whose colours would blend
/// differently if they were drawn as a picture.
bool FindPlace(Place& place, const QPainter& painter, qreal radius)
{
    const QTransform& toDevice = painter.deviceTransform();
    const double width = (radius + OutlineWidth) * std::abs(toDevice.m11());
    const double height = (radius + OutlineWidth) * std::abs(toDevice.m22());
    const double x = std::floor(toDevice.dx());
    const double y = std::floor(toDevice.dy());
    const bool isSmall = width < MaxReach - 2 && height < MaxReach - 2;
    const bool isNear = std::abs(x) < LastPixel && std::abs(y) < LastPixel;
    if (!isSmall || !isNear || painter.opacity() < 1 ||
        painter.compositionMode() != QPainter::CompositionMode_SourceOver) {
        return false;
    }
    place.toDevice = toDevice;
    place.center = {static_cast<int>(x), static_cast<int>(y)};
    place.reach = {static_cast<int>(width) + 2, static_cast<int>(height) + 2};
    return true;
}

Key KeyOf(const ZoneCircle& circle, const Place& place)
{
    const QTransform& t = place.toDevice;
    return {{t.m11(), t.m22(), t.dx() - place.center.x(), t.dy() - place.center.y(), circle.radius},
            circle.fill.rgba64(),
            circle.grey};
}

QImage Picture(const ZoneCircle& circle, const Place& place, Draw draw)
{
    QImage picture(place.Size(), QImage::Format_ARGB32_Premultiplied);
    if (!picture.isNull()) {
        picture.fill(Qt::transparent);
        const QPoint topLeft = place.TopLeft();
        QPainter painter(&picture);
        painter.setTransform(place.toDevice *
                             QTransform::fromTranslate(-topLeft.x(), -topLeft.y()));
        draw(painter, circle);
    }
    return picture;
}

/// Whether the circle lies on the device as a whole. Lines of one pixel are shortened at its edges.
bool IsOnDevice(const QPainter& painter, const Place& place)
{
    const QPaintDevice* device = painter.paintEngine()->paintDevice();
    return QRect(0, 0, device->width(), device->height()).contains({place.TopLeft(), place.Size()});
}

/// Whether only a part of the circle is painted, as where scrolling exposes the edge of the view.
bool IsCut(const QPainter& painter, qreal radius)
{
    const QRectF bounds(-radius, -radius, 2 * radius, 2 * radius);
    return painter.hasClipping() && !painter.clipBoundingRect().contains(bounds);
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
    const Draw draw = RepeatableDraw(painter, circle.radius);
    if (!draw) {
        DrawEllipse(painter, circle);
        return;
    }
    Place place;
    if (!FindPlace(place, painter, circle.radius) ||
        (draw == DrawEllipse && !IsOnDevice(painter, place))) {
        draw(painter, circle);
        return;
    }
    const Key key = KeyOf(circle, place);
    const QImage* known = cache.object(key);
    QImage picture = known ? *known : QImage();
    // Making a picture takes longer than drawing, so a circle must be drawn repeatedly before it
    // pays. While the view is scrolled, the other parts of the circle are exposed next.
    const bool pays = known || IsCut(painter, circle.radius);
    if (picture.isNull() && pays) {
        picture = Picture(circle, place, draw);
    }
    if (!known || known->isNull()) {
        const int bytes = EntryBytes + static_cast<int>(picture.sizeInBytes());
        cache.insert(key, new QImage(picture), bytes);
    }
    if (picture.isNull()) {
        draw(painter, circle);
    } else {
        DrawPicture(painter, picture, place);
    }
}
