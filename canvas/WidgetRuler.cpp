#include "canvas/WidgetRuler.h"

#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace {

constexpr int Thickness = 32;
constexpr int FontPoints = 8;
constexpr double CursorOpacity = 0.4;

} // namespace

WidgetRuler::WidgetRuler(int orientation, QWidget* parent)
    : QWidget(parent)
    , m_orientation(orientation)
{
    setContentsMargins(0, 0, 0, 0);
    setMouseTracking(true);
    setAccessibleName(IsHorizontal() ? tr("Horizontal ruler") : tr("Vertical ruler"));
    QFont small(QStringLiteral("Helvetica"), FontPoints, QFont::Normal, false);
    small.setStyleHint(QFont::Helvetica);
    small.setHintingPreference(QFont::PreferNoHinting);
    setFont(small);
}

QSize WidgetRuler::minimumSizeHint() const
{
    return {Thickness, Thickness};
}

std::vector<RulerTick> WidgetRuler::Ticks() const
{
    return IsHorizontal() ? RulerTicks(m_scale, width(), height())
                          : RulerTicks(m_scale, height(), width());
}

template <typename Value>
void WidgetRuler::Change(Value& member, Value value)
{
    if (member != value) {
        member = value;
        update();
    }
}

void WidgetRuler::SetOrigin(float origin)
{
    Change(m_scale.origin, origin);
}

void WidgetRuler::SetUnit(float unit)
{
    Change(m_scale.unit, unit);
}

void WidgetRuler::SetZoom(float zoom)
{
    Change(m_scale.zoom, zoom);
}

void WidgetRuler::SetCursorPos(QPoint cursorPos)
{
    m_cursorPos = mapFromGlobal(cursorPos);
    update();
}

void WidgetRuler::SetMouseTrack(bool track)
{
    Change(m_isMouseTracked, track);
}

void WidgetRuler::FlipSign(bool flipSign)
{
    Change(m_scale.flipSign, flipSign);
}

void WidgetRuler::mouseMoveEvent(QMouseEvent* event)
{
    m_cursorPos = event->pos();
    update();
    QWidget::mouseMoveEvent(event);
}

void WidgetRuler::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setPen(Qt::black);
    painter.fillRect(rect(), Qt::white);
    for (const RulerTick& tick : Ticks()) {
        DrawTick(painter, tick);
    }
    if (m_isMouseTracked) {
        DrawCursor(painter);
    }
}

void WidgetRuler::DrawAcross(QPainter& painter, double along, double gap) const
{
    // A filled rectangle of one device pixel's width: with hundreds of ticks, lines of a cosmetic
    // pen take longer than the map.
    const QTransform toDevice = painter.deviceTransform();
    const QPointF start = toDevice.map(IsHorizontal() ? QPointF(along, gap) : QPointF(gap, along));
    const QPointF end = toDevice.map(QPointF(width(), height()));
    const QPointF corner(std::floor(start.x()), std::floor(start.y()));
    const QRectF line(corner, IsHorizontal() ? QSizeF(1, end.y() - corner.y())
                                             : QSizeF(end.x() - corner.x(), 1));
    painter.fillRect(toDevice.inverted().mapRect(line), Qt::black);
}

void WidgetRuler::DrawTick(QPainter& painter, const RulerTick& tick) const
{
    DrawAcross(painter, tick.position, tick.gap);
    if (tick.label.isEmpty()) {
        return;
    }
    const QPointF place =
        IsHorizontal() ? QPointF(tick.position + 1, tick.gap + 11) : QPointF(1, tick.position - 2);
    painter.drawText(QPoint(static_cast<int>(place.x()), static_cast<int>(place.y())), tick.label);
}

void WidgetRuler::DrawCursor(QPainter& painter) const
{
    painter.setOpacity(CursorOpacity);
    DrawAcross(painter, IsHorizontal() ? m_cursorPos.x() : m_cursorPos.y(), 0);
    painter.setOpacity(1);
}
