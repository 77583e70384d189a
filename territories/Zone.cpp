#include "territories/Zone.h"

#include "app/Ids.h"
#include "app/ProjectSettings.h"
#include "app/Xml.h"
#include "territories/Territory.h"
#include "territories/TerritoryRecords.h"
#include "territories/ZoneCircle.h"
#include "territories/ZoneIcons.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QVariant>
#include <QXmlStreamReader>

namespace {

constexpr int DepthStep = 23;

/// Toward zero; numbers that no int holds give the nearest one, and no number gives 0.
int Truncated(double value)
{
    constexpr double limit = 1e9;
    return qIsNaN(value) ? 0 : static_cast<int>(qBound(-limit, value, limit));
}

/// Icons are as wide as their zone's radius, up to their own width, and may leave the painter
/// scaled.
void DrawIcon(QPainter& painter, int usage, qreal radius)
{
    const QPixmap icon = ZoneIcons::Icon(usage);
    if (icon.isNull()) {
        return;
    }
    const qreal scale = qBound(0.05, radius / icon.width(), 1.0);
    painter.scale(scale, scale);
    const QRect place(Truncated(-icon.width() * 0.5), Truncated(-icon.height() * 0.5), icon.width(),
                      icon.height());
    const bool isEnlarged = painter.deviceTransform().m11() > 1;
    const QPixmap dense = isEnlarged ? ZoneIcons::DenseIcon(usage) : QPixmap();
    if (dense.isNull()) {
        painter.drawPixmap(place.topLeft(), icon);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.drawPixmap(place, dense);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
}

} // namespace

Zone::Zone(Territory* territory, QGraphicsItem* parent)
    : QGraphicsEllipseItem(parent)
    , m_id(NextId<Zone>())
    , m_color(territory ? territory->Color() : QColor(Qt::black))
{
    SetTerritory(territory);
    setData(Qt::UserRole, m_id);
    SetDepth(MinDepth);
    setStartAngle(0);
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
}

Zone::Zone(Territory* territory, float radiusMetres, QGraphicsItem* parent)
    : Zone(territory, parent)
{
    SetRadius(radiusMetres);
}

Zone::~Zone()
{
    if (m_holder) {
        m_holder->RemoveZone(m_id);
    }
    SetTerritory(nullptr);
}

void Zone::SetTerritory(Territory* territory)
{
    if (m_territory) {
        m_territory->m_referrers.remove(this);
    }
    m_territory = territory;
    if (m_territory) {
        m_territory->m_referrers.insert(this);
    }
}

void Zone::SetColor(const QColor& color)
{
    m_color = color;
    update();
}

ZoneValues Zone::Values() const
{
    ZoneValues values = m_values;
    values.depth = Depth();
    return values;
}

void Zone::SetValues(const ZoneValues& values)
{
    m_values.eventName = values.eventName;
    m_values.counts = values.counts;
    SetRadius(values.radius);
    SetUsage(values.usage);
    SetDepth(values.depth);
    TotalsChanged();
}

void Zone::SetRadius(float metres)
{
    m_values.radius = metres;
    m_radius = ProjectSettings::Instance().PixelsPerMetreX() * metres;
    const auto r = static_cast<qreal>(m_radius);
    setRect(-r, -r, 2 * r, 2 * r);
}

void Zone::SetUsage(int usage)
{
    m_values.usage = usage;
    update();
}

void Zone::SetCount(int& count, int value)
{
    count = value;
    TotalsChanged();
}

void Zone::TotalsChanged() const
{
    if (m_holder) {
        m_holder->TotalsChanged();
    }
}

void Zone::SetDepth(int depth)
{
    setZValue(qBound(MinDepth, depth, MaxDepth));
}

int Zone::Depth() const
{
    return Truncated(zValue());
}

int Zone::DepthInFront() const
{
    return qBound(MinDepth, Depth() + DepthStep, MaxDepth);
}

int Zone::DepthBehind() const
{
    return qBound(MinDepth, Depth() - DepthStep, MaxDepth);
}

Zone* Zone::Copy() const
{
    auto* copy = new Zone(m_territory);
    ZoneValues values = Values();
    values.radius = ProjectSettings::Instance().MetresPerPixelX() * m_radius;
    copy->SetValues(values);
    copy->setPos(scenePos());
    return copy;
}

void Zone::Read(const QXmlStreamReader& xml)
{
    ZoneValues values;
    values.ReadXml(xml);
    SetValues(values);
    setPos(InScene(FloatAttribute(xml, QLatin1String("x"), 0),
                   FloatAttribute(xml, QLatin1String("z"), 0),
                   WorldScale(ProjectSettings::Instance())));
}

ZoneRecord Zone::Record() const
{
    return {Values(), scenePos(), m_radius};
}

void Zone::Write(QXmlStreamWriter& xml, bool exportMode) const
{
    ::Write(xml, Record(), WorldScale(ProjectSettings::Instance()), exportMode);
}

void Zone::paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* /*widget*/)
{
    if (option->state & QStyle::State_Selected) {
        const QRectF bounds = boundingRect();
        painter->setBrush(Qt::transparent);
        painter->setPen(QPen(QBrush(Qt::red), 3, Qt::DotLine, Qt::SquareCap, Qt::SvgMiterJoin));
        painter->drawRect(Truncated(bounds.x() + 3), Truncated(bounds.y() + 3),
                          Truncated(bounds.width() - 6), Truncated(bounds.height() - 6));
    }
    const auto radius = static_cast<qreal>(m_radius);
    DrawZoneCircle(*painter, {radius, m_color, qBound(MinDepth, Depth(), MaxDepth)});
    DrawIcon(*painter, m_values.usage, radius);
}

QVariant Zone::itemChange(GraphicsItemChange change, const QVariant& value)
{
    if (change != ItemPositionChange) {
        return QGraphicsEllipseItem::itemChange(change, value);
    }
    const QPointF position = value.toPointF();
    return QPointF(InSinglePrecision(position.x()), InSinglePrecision(position.y()));
}

void Zone::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* /*event*/) {}
