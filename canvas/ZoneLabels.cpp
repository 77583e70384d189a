#include "canvas/ZoneLabels.h"

#include "document/Document.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "territories/ZoneIcons.h"

#include <QFontMetricsF>
#include <QGraphicsView>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

/// View pixels.
constexpr qreal Gap = 2;
constexpr qreal Margin = 3;
constexpr int Opacity = 200;

QString RangeText(int least, int most)
{
    return least == most ? QString::number(least)
                         : QStringLiteral("%1\u2013%2").arg(least).arg(most);
}

QString CountsText(const SpawnCounts& counts)
{
    return QStringLiteral("%1 | %2").arg(RangeText(counts.staticMin, counts.staticMax),
                                         RangeText(counts.dynamicMin, counts.dynamicMax));
}

/// Half the height of the icon, which is as wide as the radius, up to its own width.
qreal IconReach(const Zone& zone)
{
    const QPixmap icon = ZoneIcons::Icon(zone.GetUsage());
    const auto radius = static_cast<qreal>(zone.Radius());
    return icon.isNull() ? 0 : std::min(radius, qreal(icon.width())) / 2;
}

/// Where text of this size stands below the icon. Empty when the circle has no room for it.
QRectF PlaceIn(qreal radius, qreal iconReach, const QSizeF& text)
{
    const QSizeF size = text + QSizeF(2 * Margin, 0);
    const QRectF place(QPointF(-size.width() / 2, iconReach + Gap), size);
    return std::hypot(place.right(), place.bottom()) <= radius ? place : QRectF();
}

} // namespace

void ZoneLabels::SetDocument(Document& document)
{
    m_document = &document;
    // A zone that comes or goes changes the numbers of others.
    QObject::connect(&document, &Document::ZonesChanged, &m_view, [this] { Repaint(); });
}

void ZoneLabels::SetShown(bool areShown)
{
    m_areShown = areShown;
    m_view.viewport()->update();
}

void ZoneLabels::Repaint() const
{
    if (m_areShown && m_view.transform().m11() >= LowestZoom) {
        m_view.viewport()->update();
    }
}

/// Looks at all zones: thousands of them take less than a millisecond, and nothing has to be kept.
std::vector<ZoneLabels::Label> ZoneLabels::Labels(const QRectF& area, qreal zoom) const
{
    std::vector<Label> labels;
    if (!m_document || !m_areShown || zoom < LowestZoom) {
        return labels;
    }
    const QFontMetricsF metrics(m_view.font());
    const qreal line = metrics.height();
    const QVector<TerritoryType*> types = m_document->Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            int number = 0;
            for (const Zone* zone : territory->Zones()) {
                ++number;
                const auto radius = static_cast<qreal>(zone->Radius());
                const QRectF circle(zone->pos() - QPointF(radius, radius),
                                    2 * QSizeF(radius, radius));
                if (radius * zoom < line || !zone->isVisible() || zone->opacity() <= 0 ||
                    !circle.intersects(area)) {
                    continue;
                }
                const qreal icon = IconReach(*zone) * zoom;
                const QString first = QString::number(number);
                const QString second = CountsText(zone->Counts());
                const qreal firstWidth = metrics.horizontalAdvance(first);
                const qreal width = std::max(firstWidth, metrics.horizontalAdvance(second));
                const QRectF both = PlaceIn(radius * zoom, icon, {width, 2 * line});
                const QRectF one = PlaceIn(radius * zoom, icon, {firstWidth, line});
                if (!both.isEmpty()) {
                    labels.push_back({zone, first + QLatin1Char('\n') + second, both});
                } else if (!one.isEmpty()) {
                    labels.push_back({zone, first, one});
                }
            }
        }
    }
    return labels;
}

void ZoneLabels::Draw(QPainter& painter, const QRectF& area) const
{
    const QTransform toView = painter.worldTransform();
    const std::vector<Label> labels = Labels(area, toView.m11());
    if (labels.empty()) {
        return;
    }
    painter.save();
    painter.resetTransform();
    painter.setOpacity(1);
    painter.setFont(m_view.font());
    painter.setPen(Qt::black);
    const QColor ground(255, 255, 255, Opacity);
    for (const Label& label : labels) {
        // Whole pixels, so that text is sharp.
        const QRect place = label.place.translated(toView.map(label.zone->pos())).toRect();
        painter.fillRect(place, ground);
        painter.drawText(place, Qt::AlignCenter, label.text);
    }
    painter.restore();
}
