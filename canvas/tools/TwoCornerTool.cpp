#include "canvas/tools/TwoCornerTool.h"

#include "canvas/MainScene.h"
#include "document/Brush.h"
#include "layers/raster/Shapes.h"

#include <QGraphicsSceneMouseEvent>
#include <QPainterPathStroker>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace {

/// Turns the way to the nearest multiple of 15 degrees and keeps its length.
QPointF Snapped(QPointF way)
{
    constexpr double step = 15;
    constexpr int stepsOfQuarter = 6;
    const int steps = qRound(qRadiansToDegrees(std::atan2(way.y(), way.x())) / step);
    const double angle = qDegreesToRadians(steps * step);
    const QPointF direction(std::cos(angle), std::sin(angle));
    // Neither sine nor cosine is exactly 0 where it should be.
    const bool isStraight = steps % stepsOfQuarter == 0;
    return std::hypot(way.x(), way.y()) * (isStraight ? direction.toPoint() : direction);
}

/// The way with both parts as long as the longer one.
QPointF Squared(QPointF way)
{
    const double side = std::max(std::abs(way.x()), std::abs(way.y()));
    return {std::copysign(side, way.x()), std::copysign(side, way.y())};
}

} // namespace

void TwoCornerTool::Press(QGraphicsSceneMouseEvent& event)
{
    if (IsUnderWay() || !Begin(event)) {
        return;
    }
    m_from = PositionOf(event);
    if (IsLine() && m_lastEnd && event.modifiers().testFlag(Qt::ShiftModifier)) {
        m_from = *m_lastEnd;
    }
    Follow(PositionOf(event), event.modifiers());
}

void TwoCornerTool::Move(QGraphicsSceneMouseEvent& event)
{
    const QPointF position = PositionOf(event);
    Parts().scene.SetMousePosition(position);
    if (IsLine()) {
        Parts().scene.MoveBrush(position);
    }
    if (IsBusy()) {
        Follow(position, event.modifiers());
    }
    MapTool::Move(event);
}

void TwoCornerTool::Release(QGraphicsSceneMouseEvent& event)
{
    MapTool::Release(event);
    if (IsRelease(event)) {
        Follow(PositionOf(event), event.modifiers());
        if (IsLine()) {
            m_lastEnd = LineEnd();
        }
        Complete(Pixels());
    }
}

void TwoCornerTool::FollowModifiers(Qt::KeyboardModifiers modifiers)
{
    if (IsBusy()) {
        Follow(m_mouse, modifiers);
    }
}

QPointF TwoCornerTool::LineEnd() const
{
    const bool isSnapped = m_modifiers.testFlag(Qt::ControlModifier);
    return isSnapped ? m_from + Snapped(m_mouse - m_from) : m_mouse;
}

QRectF TwoCornerTool::Rect() const
{
    const bool isSquare = m_modifiers.testFlag(Qt::ShiftModifier);
    const QPointF way = isSquare ? Squared(m_mouse - m_from) : m_mouse - m_from;
    const bool isFromCentre = m_modifiers.testFlag(Qt::ControlModifier);
    return QRectF(isFromCentre ? m_from - way : m_from, m_from + way).normalized();
}

double TwoCornerTool::LineWidth() const
{
    const Brush* brush = Parts().scene.GetBrush();
    return brush ? brush->Size() : 0;
}

raster::Region TwoCornerTool::Pixels() const
{
    switch (Kind()) {
    case PaintToolKind::Line:
        return raster::LineRegion(m_from, LineEnd(), LineWidth(), LayerSize());
    case PaintToolKind::Rectangle:
        return raster::RectangleRegion(Rect(), LayerSize());
    default:
        return raster::EllipseRegion(Rect(), LayerSize());
    }
}

void TwoCornerTool::Follow(QPointF mouse, Qt::KeyboardModifiers modifiers)
{
    m_mouse = mouse;
    m_modifiers = modifiers;
    QPainterPath outline;
    if (IsLine()) {
        // A stroke around a point would be none.
        constexpr double least = 0.001;
        const QPointF end = LineEnd();
        outline.moveTo(m_from);
        outline.lineTo(end == m_from ? end + QPointF(least, 0) : end);
        QPainterPathStroker stroker;
        stroker.setWidth(LineWidth());
        stroker.setCapStyle(Qt::RoundCap);
        Show(stroker.createStroke(outline), mouse, LengthText(end - m_from));
        return;
    }
    if (Kind() == PaintToolKind::Rectangle) {
        outline.addRect(Rect());
    } else {
        outline.addEllipse(Rect());
    }
    Show(outline, mouse, SizeText(Rect().size()));
}
