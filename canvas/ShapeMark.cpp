#include "canvas/ShapeMark.h"

#include <QFontMetrics>
#include <QGraphicsView>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace {

/// In view pixels.
constexpr int LineReach = 4;
constexpr int TextGap = 16;
constexpr QSize TextMargin(10, 6);

/// How many elements of two paths are the same, from the first on.
int SameElements(const QPainterPath& a, const QPainterPath& b)
{
    const int count = std::min(a.elementCount(), b.elementCount());
    int same = 0;
    while (same < count && a.elementAt(same) == b.elementAt(same)) {
        ++same;
    }
    return same;
}

} // namespace

void ShapeMark::Show(const QPainterPath& outline, QPointF mouse, const QString& text)
{
    const int same = SameElements(m_outline, outline);
    UpdateOutline(m_outline, same);
    UpdateOutline(outline, same);
    m_view.viewport()->update(TextRect());
    m_outline = outline;
    m_mouse = mouse;
    m_text = text;
    const QSize size = QFontMetrics(m_view.font()).size(Qt::TextSingleLine, text) + TextMargin;
    m_textPlace = QRect(QPoint(TextGap, TextGap), size);
    const QPoint end = m_view.mapFromScene(mouse) + m_textPlace.bottomRight();
    if (end.x() >= m_view.viewport()->width()) {
        m_textPlace.moveRight(-TextGap);
    }
    if (end.y() >= m_view.viewport()->height()) {
        m_textPlace.moveBottom(-TextGap);
    }
    m_view.viewport()->update(TextRect());
}

void ShapeMark::Hide()
{
    UpdateOutline(m_outline, 0);
    m_view.viewport()->update(TextRect());
    m_outline = {};
    m_text.clear();
    m_textPlace = {};
}

/// Paints the lines anew that lead to the elements from the first one on.
void ShapeMark::UpdateOutline(const QPainterPath& outline, int first) const
{
    QPolygonF points;
    for (int i = std::max(first - 1, 0); i < outline.elementCount(); ++i) {
        points.append(outline.elementAt(i));
    }
    if (first < outline.elementCount()) {
        const QRect changed = m_view.mapFromScene(points.boundingRect()).boundingRect();
        m_view.viewport()->update(changed.adjusted(-LineReach, -LineReach, LineReach, LineReach));
    }
}

QRect ShapeMark::TextRect() const
{
    return m_textPlace.translated(m_view.mapFromScene(m_mouse)).adjusted(-1, -1, 1, 1);
}

void ShapeMark::Draw(QPainter& painter) const
{
    if (!IsShown()) {
        return;
    }
    const QTransform toView = painter.worldTransform();
    painter.save();
    painter.resetTransform();
    painter.setOpacity(1);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    const QPainterPath outline = toView.map(m_outline);
    // White on black is seen on every ground.
    for (const QPen& pen : {QPen(Qt::black, 3), QPen(Qt::white, 1)}) {
        painter.setPen(pen);
        painter.drawPath(outline);
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QRect text = m_textPlace.translated(toView.map(m_mouse).toPoint());
    const QPalette palette = QToolTip::palette();
    painter.setPen(palette.color(QPalette::ToolTipText));
    painter.setBrush(palette.brush(QPalette::ToolTipBase));
    painter.drawRect(text.adjusted(0, 0, -1, -1));
    painter.setFont(m_view.font());
    painter.drawText(text, Qt::AlignCenter, m_text);
    painter.restore();
}
