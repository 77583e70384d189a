#include "territories/Zone.h"

#include "app/Ids.h"
#include "app/ProjectSettings.h"
#include "app/Xml.h"
#include "territories/Territory.h"
#include "territories/ZoneCircle.h"
#include "territories/ZoneIcons.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>
#include <QVariant>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <array>

namespace {

constexpr int DepthStep = 23;

/// Toward zero; numbers that no int holds give the nearest one, and no number gives 0.
int Truncated(double value)
{
    constexpr double limit = 1e9;
    return qIsNaN(value) ? 0 : static_cast<int>(qBound(-limit, value, limit));
}

/// The names of the fixed usages from Rest on; any other name is that of a dynamic event.
constexpr std::array<const char*, 4> UsageNames = {"Rest", "Graze", "Water", "HuntingGround"};

bool IsFixedUsage(int usage)
{
    return usage >= Zone::Rest && usage < Zone::DynamicEvent;
}

QLatin1String UsageName(int usage)
{
    return QLatin1String(UsageNames[static_cast<std::size_t>(usage - Zone::Rest)]);
}

int UsageOf(const QString& name)
{
    int usage = Zone::Rest;
    while (IsFixedUsage(usage) && name != UsageName(usage)) {
        ++usage;
    }
    return usage;
}

/// Draws the icon as wide as the zone's radius, but not wider than the icon itself. May leave the
/// painter scaled.
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

/// The nearest 32-bit number.
double InSinglePrecision(double value)
{
    // Optimising compilers drop a cast there and back; what is volatile they keep.
    const volatile auto rounded = static_cast<float>(value);
    return static_cast<double>(rounded);
}

/// World metres as files hold them: six significant digits of a 32-bit number.
QString MetresText(double metres)
{
    return QString::number(InSinglePrecision(metres), 'g', 6);
}

} // namespace

Zone::Zone(Territory* territory, QGraphicsItem* parent)
    : QGraphicsEllipseItem(parent)
    , m_id(NextId<Zone>())
    , m_color(territory ? territory->Color() : QColor(Qt::black))
{
    SetTerritory(territory);
    setData(Qt::UserRole, m_id);
    setZValue(MinDepth);
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

void Zone::SetRadius(float metres)
{
    SetSceneRadius(ProjectSettings::Instance().pixelsPerMetreX * metres);
}

void Zone::SetSceneRadius(float radius)
{
    m_radius = radius;
    const auto r = static_cast<qreal>(radius);
    setRect(-r, -r, 2 * r, 2 * r);
}

void Zone::SetUsage(int usage)
{
    m_usage = usage;
    update();
}

void Zone::SetCount(int& count, int value)
{
    count = value;
    if (m_holder) {
        m_holder->TotalsChanged();
    }
}

int Zone::Depth() const
{
    return Truncated(zValue());
}

void Zone::SetDepth(int depth)
{
    setZValue(qBound(MinDepth, depth, MaxDepth));
}

void Zone::BringToFront()
{
    SetDepth(Depth() + DepthStep);
}

void Zone::SendToBack()
{
    SetDepth(Depth() - DepthStep);
}

Zone* Zone::Copy() const
{
    auto* copy = new Zone(m_territory, ProjectSettings::Instance().metresPerPixelX * m_radius);
    copy->m_counts = m_counts;
    copy->m_usage = m_usage;
    copy->m_eventName = m_eventName;
    copy->setPos(scenePos());
    copy->setZValue(zValue());
    return copy;
}

void Zone::Read(const QXmlStreamReader& xml)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const QString name = TextAttribute(xml, QLatin1String("name"));
    m_counts.staticMin = IntAttribute(xml, QLatin1String("smin"), 0);
    m_counts.staticMax = IntAttribute(xml, QLatin1String("smax"), 0);
    m_counts.dynamicMin = IntAttribute(xml, QLatin1String("dmin"), 0);
    m_counts.dynamicMax = IntAttribute(xml, QLatin1String("dmax"), 0);
    m_usage = UsageOf(name);
    if (m_usage == DynamicEvent) {
        m_eventName = name;
    }
    const float x = FloatAttribute(xml, QLatin1String("x"), 0);
    const float z = FloatAttribute(xml, QLatin1String("z"), 0);
    // Computed in single precision. z is measured from the map's bottom edge.
    const float sceneX = settings.pixelsPerMetreX * x;
    const float sceneY = static_cast<float>(settings.layerHeight) - settings.pixelsPerMetreZ * z;
    setPos(static_cast<qreal>(sceneX), static_cast<qreal>(sceneY));
    SetRadius(FloatAttribute(xml, QLatin1String("r"), 0));
    SetDepth(IntAttribute(xml, QLatin1String("d"), 0));
}

QString Zone::Name() const
{
    return IsFixedUsage(m_usage) ? QString(UsageName(m_usage)) : m_eventName;
}

void Zone::Write(QXmlStreamWriter& xml, bool exportMode) const
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    const auto metresX = static_cast<double>(settings.metresPerPixelX);
    const auto metresZ = static_cast<double>(settings.metresPerPixelZ);
    xml.writeEmptyElement(QStringLiteral("zone"));
    WriteTextAttribute(xml, QLatin1String("name"), Name());
    xml.writeAttribute(QStringLiteral("smin"), QString::number(m_counts.staticMin));
    xml.writeAttribute(QStringLiteral("smax"), QString::number(m_counts.staticMax));
    xml.writeAttribute(QStringLiteral("dmin"), QString::number(m_counts.dynamicMin));
    xml.writeAttribute(QStringLiteral("dmax"), QString::number(m_counts.dynamicMax));
    xml.writeAttribute(QStringLiteral("x"), MetresText(metresX * scenePos().x()));
    xml.writeAttribute(QStringLiteral("z"),
                       MetresText(settings.worldHeight - metresZ * scenePos().y()));
    xml.writeAttribute(QStringLiteral("r"),
                       MetresText(static_cast<double>(settings.metresPerPixelX * m_radius)));
    if (!exportMode) {
        xml.writeAttribute(QStringLiteral("d"), QString::number(Depth()));
    }
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
    DrawIcon(*painter, m_usage, radius);
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
