#include "document/Brush.h"

#include "app/Xml.h"

#include <QImage>
#include <QLineF>
#include <QPainter>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cmath>

namespace {

/// QPainter uses another arithmetic to clip shapes that extend beyond this many pixels.
constexpr int PainterLimit = 32767;
/// Rectangles of touched pixels are cut off here, so that their sizes fit an int.
constexpr double FarAway = 1 << 29;
/// Pixels that a shape may touch beyond its size, because of its outline and of rounding.
constexpr double Margin = 2;

bool IsFinite(const QPointF& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

int Bounded(double value)
{
    return static_cast<int>(std::clamp(value, -FarAway, FarAway));
}

QRect TouchedRect(const QPointF& from, const QPointF& to, float radius)
{
    if (!IsFinite(from) || !IsFinite(to)) {
        return {};
    }
    const double reach = std::abs(static_cast<double>(radius)) + Margin;
    const auto [left, right] = std::minmax({from.x(), to.x()});
    const auto [top, bottom] = std::minmax({from.y(), to.y()});
    return {QPoint(Bounded(std::floor(left - reach)), Bounded(std::floor(top - reach))),
            QPoint(Bounded(std::ceil(right + reach)), Bounded(std::ceil(bottom + reach)))};
}

/// Rounds an ellipse to whole pixels if QPainter would treat it as lying on whole pixels. With a
/// thin pen QPainter does so up to a relative error of 1e-12. In a part of the layer, coordinates
/// are smaller and the allowed error too, so the ellipse is rounded before it is moved to the part.
QRectF OnWholePixels(const QRectF& ellipse)
{
    const bool isNear = std::abs(ellipse.left()) < FarAway && std::abs(ellipse.top()) < FarAway &&
                        std::max(ellipse.width(), ellipse.height()) < PainterLimit;
    if (!isNear) {
        return ellipse;
    }
    const QPoint topLeft(static_cast<int>(ellipse.left()), static_cast<int>(ellipse.top()));
    const QSize size(static_cast<int>(ellipse.right()) - topLeft.x(),
                     static_cast<int>(ellipse.bottom()) - topLeft.y());
    const QRectF whole(topLeft, size);
    return whole == ellipse ? whole : ellipse;
}

/// Moves an end of a line that lies beyond a bound onto the bound. Returns false if the whole line
/// lies beyond it.
bool CutEnd(double& along, double& across, double otherAlong, double otherAcross, double high)
{
    constexpr double low = -1;
    const bool isBelow = along < low;
    if (!isBelow && along <= high) {
        return true;
    }
    if (isBelow ? otherAlong <= low : otherAlong >= high) {
        return false;
    }
    const double bound = isBelow ? low : high;
    across += (otherAcross - across) / (otherAlong - along) * (bound - along);
    along = bound;
    return true;
}

/// Cuts a line of one pixel's width where QPainter would cut it in the whole layer, just beyond the
/// border, with the same rounding. In a part of the layer the coordinates differ and would be
/// rounded in another way. Returns false if nothing is left.
bool CutThinLine(QLineF& line, const QSize& layerSize)
{
    QPointF from = line.p1();
    QPointF to = line.p2();
    const double right = layerSize.width() + 1.0;
    const double bottom = layerSize.height() + 1.0;
    const bool isLeft = CutEnd(from.rx(), from.ry(), to.x(), to.y(), right) &&
                        CutEnd(to.rx(), to.ry(), from.x(), from.y(), right) &&
                        CutEnd(from.ry(), from.rx(), to.y(), to.x(), bottom) &&
                        CutEnd(to.ry(), to.rx(), from.y(), from.x(), bottom);
    line = {from, to};
    return isLeft;
}

/// How an operation changes the pixels that it touches.
struct Ink
{
    QColor color;
    QPainter::CompositionMode mode;
};

Ink Eraser()
{
    return {Qt::transparent, QPainter::CompositionMode_Clear};
}

void DrawDab(QImage& image, const QPoint& origin, const Ink& ink, const QRectF& ellipse)
{
    QPainter painter(&image);
    painter.translate(-origin);
    painter.setCompositionMode(ink.mode);
    painter.setPen(QColor(Qt::transparent));
    painter.setBrush(QBrush(ink.color, Qt::SolidPattern));
    painter.drawEllipse(ellipse);
}

void DrawSegment(QImage& image, const BrushPatch& patch, const Ink& ink, QLineF line, int size)
{
    if (image.isNull() || !IsFinite(line.p1()) || !IsFinite(line.p2())) {
        return;
    }
    const bool isThin = size <= 1;
    if (isThin && !patch.layerSize.isEmpty() && !CutThinLine(line, patch.layerSize)) {
        return;
    }
    QPainter painter(&image);
    painter.translate(-patch.origin);
    painter.setCompositionMode(ink.mode);
    painter.setPen(QPen(QBrush(ink.color, Qt::SolidPattern), size, Qt::SolidLine, Qt::RoundCap,
                        Qt::RoundJoin));
    painter.drawLine(line);
}

} // namespace

void Brush::SetSize(int size)
{
    m_size = size;
    m_radius = static_cast<float>(size) * 0.5F;
}

QRectF Brush::Ellipse() const
{
    const auto radius = static_cast<double>(m_radius);
    const QRectF ellipse(m_position.x() - radius, m_position.y() - radius, 2 * radius, 2 * radius);
    return ellipse.normalized();
}

void Brush::PaintDab(QImage& image, const BrushPatch& patch) const
{
    if (!image.isNull() && IsFinite(m_position)) {
        const Ink ink = {m_paintColor, QPainter::CompositionMode_SourceOver};
        DrawDab(image, patch.origin, ink, Ellipse());
    }
}

void Brush::EraseDab(QImage& image, const BrushPatch& patch) const
{
    if (!image.isNull() && IsFinite(m_position)) {
        DrawDab(image, patch.origin, Eraser(), OnWholePixels(Ellipse()));
    }
}

void Brush::PaintSegment(QImage& image, const QPointF& from, const QPointF& to,
                         const BrushPatch& patch) const
{
    const Ink ink = {m_paintColor, QPainter::CompositionMode_SourceOver};
    DrawSegment(image, patch, ink, {from, to}, m_size);
}

void Brush::EraseSegment(QImage& image, const QPointF& from, const QPointF& to,
                         const BrushPatch& patch) const
{
    DrawSegment(image, patch, Eraser(), {from, to}, m_size);
}

QRect Brush::DabRect() const
{
    return TouchedRect(m_position, m_position, m_radius);
}

QRect Brush::SegmentRect(const QPointF& from, const QPointF& to) const
{
    return TouchedRect(from, to, m_radius);
}

QRect Brush::PatchRect(const QRect& touched, const QSize& layerSize)
{
    if (layerSize.isEmpty()) {
        return {};
    }
    const QRect layer(QPoint(0, 0), layerSize);
    const QRect patch = touched & layer;
    const bool isNear = touched.left() >= -PainterLimit && touched.top() >= -PainterLimit &&
                        touched.right() <= PainterLimit && touched.bottom() <= PainterLimit &&
                        touched.width() <= PainterLimit && touched.height() <= PainterLimit;
    return patch.isEmpty() || isNear ? patch : layer;
}

void Brush::ReadXml(QXmlStreamReader& xml)
{
    // A project without these attributes shows an almost black, fully transparent cursor, as old
    // projects always have.
    constexpr quint32 defaultColor = 3;
    constexpr quint32 defaultOutlineColor = 2;
    constexpr int defaultSize = 32;
    m_color.setRgba(UIntAttribute(xml, QLatin1String("color"), defaultColor));
    SetSize(IntAttribute(xml, QLatin1String("size"), defaultSize));
    m_hasOutline = IntAttribute(xml, QLatin1String("outline"), 0) != 0;
    m_outlineColor.setRgba(UIntAttribute(xml, QLatin1String("outline_color"), defaultOutlineColor));
    m_outlineWidth = IntAttribute(xml, QLatin1String("outline_width"), 1);
}

void Brush::WriteXml(QXmlStreamWriter& xml) const
{
    xml.writeEmptyElement(QStringLiteral("brush"));
    xml.writeAttribute(QStringLiteral("color"), QString::number(m_color.rgba()));
    xml.writeAttribute(QStringLiteral("outline"), QString::number(m_hasOutline ? 1 : 0));
    xml.writeAttribute(QStringLiteral("outline_color"), QString::number(m_outlineColor.rgba()));
    xml.writeAttribute(QStringLiteral("outline_width"), QString::number(m_outlineWidth));
    xml.writeAttribute(QStringLiteral("size"), QString::number(m_size));
}
