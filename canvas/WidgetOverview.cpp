#include "canvas/WidgetOverview.h"

#include "canvas/MainScene.h"
#include "canvas/MainView.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

/// Around the map, so that the frame is not cut off.
constexpr int Margin = 4;
/// The frame of a view that is zoomed in far stays large enough to be found.
constexpr int MinFrame = 6;

QRect Grown(const QRect& rect, int by)
{
    return rect.adjusted(-by, -by, by, by);
}

/// Covers what DrawFrame draws.
QRegion FrameRegion(const QRect& frame)
{
    return QRegion(Grown(frame, 2)) - QRegion(Grown(frame, -2));
}

/// A white line between two black ones, which is seen on every map.
void DrawFrame(QPainter& painter, const QRect& frame)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(Qt::black);
    painter.drawRect(Grown(frame, 1));
    painter.drawRect(Grown(frame, -1));
    painter.setPen(Qt::white);
    painter.drawRect(frame);
}

} // namespace

WidgetOverview::WidgetOverview(Document& document, MainView& view, QWidget* parent)
    : QWidget(parent)
    , m_view(view)
    , m_overview(document, *view.Scene())
{
    connect(&m_overview, &OverviewPicture::Changed, this, &WidgetOverview::ShowChanged);
    connect(view.Scene(), &QGraphicsScene::sceneRectChanged, this, [this] { update(); });
}

QSize WidgetOverview::sizeHint() const
{
    constexpr QSize usual(240, 240);
    return usual;
}

QSize WidgetOverview::minimumSizeHint() const
{
    constexpr QSize smallest(200, 120);
    return smallest;
}

QRectF WidgetOverview::MapRect() const
{
    const QSizeF map = m_view.sceneRect().size();
    const QSizeF room = QSizeF(size()) - QSizeF(2 * Margin, 2 * Margin);
    if (map.isEmpty() || room.isEmpty()) {
        return {};
    }
    const QSizeF shown = map.scaled(room, Qt::KeepAspectRatio);
    // At the top: docks are often higher than wide.
    return {QPointF((width() - shown.width()) / 2, Margin), shown};
}

QTransform WidgetOverview::FromMap() const
{
    const QRectF rect = MapRect();
    const QSizeF map = m_view.sceneRect().size();
    return {rect.width() / map.width(), 0, 0, rect.height() / map.height(), rect.x(), rect.y()};
}

QRect WidgetOverview::FrameRect() const
{
    if (MapRect().isEmpty()) {
        return {};
    }
    const QRectF shown = m_view.mapToScene(m_view.viewport()->rect()).boundingRect();
    QRectF frame = FromMap().mapRect(shown & m_view.sceneRect());
    const QSizeF size = frame.size().expandedTo({MinFrame, MinFrame});
    const QPointF center = frame.center();
    frame = QRectF(center - QPointF(size.width() / 2, size.height() / 2), size);
    // The line lies on the pixels at the edges.
    return frame.toRect().adjusted(0, 0, -1, -1);
}

void WidgetOverview::SetSeen(bool isSeen)
{
    m_overview.SetActive(isSeen);
    if (isSeen) {
        m_view.viewport()->installEventFilter(this);
        m_frame = FrameRect();
    } else {
        m_view.viewport()->removeEventFilter(this);
    }
}

bool WidgetOverview::eventFilter(QObject* watched, QEvent* event)
{
    // Whatever moves or zooms the view repaints it.
    if (event->type() == QEvent::Paint) {
        FollowView();
    }
    return QWidget::eventFilter(watched, event);
}

void WidgetOverview::FollowView()
{
    const QRect frame = FrameRect();
    if (frame != m_frame) {
        update(FrameRegion(m_frame) | FrameRegion(frame));
        m_frame = frame;
    }
}

void WidgetOverview::ShowChanged(const QRect& rect)
{
    const QSize picture = m_overview.Picture().size();
    const QRectF map = MapRect();
    const QTransform toMap =
        QTransform::fromScale(map.width() / picture.width(), map.height() / picture.height()) *
        QTransform::fromTranslate(map.x(), map.y());
    // Smoothing reaches into the pixels beside.
    update(toMap.mapRect(QRectF(rect.adjusted(-1, -1, 1, 1))).toAlignedRect());
}

void WidgetOverview::paintEvent(QPaintEvent* /*event*/)
{
    const QRectF map = MapRect();
    const QImage& picture = m_overview.Picture();
    if (map.isEmpty() || picture.isNull()) {
        return;
    }
    QPainter painter(this);
    painter.fillRect(map, palette().base());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(map, picture);
    m_frame = FrameRect();
    DrawFrame(painter, m_frame);
}

void WidgetOverview::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_view.isEnabled() && !MapRect().isEmpty()) {
        emit AboutToJump();
        MoveView(event->pos());
    }
}

void WidgetOverview::mouseDoubleClickEvent(QMouseEvent* event)
{
    // Qt reports a quick second press as a double click.
    mousePressEvent(event);
}

void WidgetOverview::mouseMoveEvent(QMouseEvent* event)
{
    if ((event->buttons() & Qt::LeftButton) != 0 && m_view.isEnabled() && !MapRect().isEmpty()) {
        MoveView(event->pos());
    }
}

void WidgetOverview::MoveView(QPoint position)
{
    const QRectF map = m_view.sceneRect();
    const QPointF place = FromMap().inverted().map(QPointF(position) + QPointF(0.5, 0.5));
    m_view.centerOn(qBound(map.left(), place.x(), map.right()),
                    qBound(map.top(), place.y(), map.bottom()));
}
