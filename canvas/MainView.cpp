#include "canvas/MainView.h"

#include "app/ProjectSettings.h"
#include "canvas/BrushDock.h"
#include "canvas/HeldKeys.h"
#include "canvas/MainScene.h"
#include "canvas/PlaceMark.h"
#include "canvas/ShapeMark.h"
#include "canvas/ViewMoves.h"
#include "canvas/WidgetRuler.h"
#include "canvas/ZoneLabels.h"
#include "canvas/tools/MapTool.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRubberBand>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <cmath>

namespace {

constexpr float DefaultSceneSize = 2048.0F;
constexpr int RulerThickness = 32;
constexpr float DefaultUnit = 7.5F;
constexpr int KeyRepeatMilliseconds = 60;

bool IsTextBeingEdited()
{
    const QWidget* focus = QApplication::focusWidget();
    // Item views whose items can be renamed enable input methods too, but they edit in a separate
    // widget.
    return focus && focus->testAttribute(Qt::WA_InputMethodEnabled) &&
           !qobject_cast<const QAbstractItemView*>(focus);
}

/// The fraction of a pixel by which the mouse differs from event.pos(). On dense screens Qt keeps
/// it only in the position in the window.
QPointF FractionOf(const QMouseEvent& event, const QWidget& widget)
{
    const QPointF inWidget = event.windowPos() - widget.mapTo(widget.window(), QPoint());
    const QPointF fraction = inWidget - event.pos();
    // Events that a program makes may have no position in the window.
    const bool isFraction = qAbs(fraction.x()) <= 0.5 && qAbs(fraction.y()) <= 0.5;
    return isFraction ? fraction : QPointF();
}

} // namespace

MainView::MainView(QWidget* parent)
    : QGraphicsView(parent)
    , m_scene(std::make_unique<MainScene>(DefaultSceneSize, DefaultSceneSize, this))
    , m_band(new QRubberBand(QRubberBand::Rectangle, this))
    , m_horizontalRuler(new WidgetRuler(0, this))
    , m_verticalRuler(new WidgetRuler(1, this))
{
    setScene(m_scene.get());
    m_moves = std::make_unique<ViewMoves>(*this);
    m_mark = std::make_unique<PlaceMark>(*this);
    m_shape = std::make_unique<ShapeMark>(*this);
    m_labels = std::make_unique<ZoneLabels>(*this);
    setFocusPolicy(Qt::WheelFocus);
    setMouseTracking(true);
    setDragMode(NoDrag);
    // Every item sets all painter properties that it uses, so the view need not save them.
    setOptimizationFlag(DontSavePainterState);
    BuildLayout();
    for (QScrollBar* bar : {horizontalScrollBar(), verticalScrollBar()}) {
        connect(bar, &QScrollBar::valueChanged, this, &MainView::UpdateRulers);
        connect(bar, &QScrollBar::rangeChanged, this, &MainView::UpdateRulers);
    }
    m_keyTimer = startTimer(KeyRepeatMilliseconds, Qt::CoarseTimer);
}

MainView::~MainView() = default;

void MainView::BuildLayout()
{
    setViewportMargins(RulerThickness, RulerThickness, 0, 0);
    auto* corner = new QWidget(this);
    corner->setBackgroundRole(QPalette::Window);
    corner->setFixedSize(RulerThickness, RulerThickness);
    corner->setContentsMargins(0, 0, 0, 0);
    m_verticalRuler->FlipSign(true);
    auto* layout = new QGridLayout;
    layout->setOriginCorner(Qt::TopLeftCorner);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(corner, 0, 0);
    layout->addWidget(m_horizontalRuler, 0, 1);
    layout->addWidget(m_verticalRuler, 1, 0);
    layout->addWidget(viewport(), 1, 1);
    setLayout(layout);
}

void MainView::SetDocument(Document& document)
{
    m_scene->SetDocument(document);
    m_labels->SetDocument(document);
}

void MainView::SetBrushDock(BrushDock* dock)
{
    m_scene->ChangeBrush(dock->GetBrush());
    m_brushDock = dock;
    m_horizontalRuler->SetUnit(DefaultUnit);
    m_verticalRuler->SetUnit(DefaultUnit);
}

void MainView::SetSceneSize(int w, int h)
{
    m_scene->ChangeSize(w, h);
    SetRulerUnits(w, h);
    UpdateRulers();
}

void MainView::SetRulerUnits(int w, int h)
{
    const ProjectSettings& settings = ProjectSettings::Instance();
    m_horizontalRuler->SetUnit(static_cast<float>(settings.WorldWidth()) / static_cast<float>(w));
    m_verticalRuler->SetUnit(static_cast<float>(settings.WorldHeight()) / static_cast<float>(h));
}

void MainView::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    // A map that fits into the view is centred without scroll bars, so their signals do not report
    // the move.
    UpdateRulers();
}

/// Scrolling exposes a strip at each of two edges. Qt looks at all items within the bounds of what
/// is exposed, which are nearly all of the view, so each strip is painted by itself.
void MainView::paintEvent(QPaintEvent* event)
{
    constexpr int mostStrips = 3;
    const QRegion& region = event->region();
    // Where view pixels have fractions of device pixels, strips would not end where Qt ends them.
    const bool isExact = devicePixelRatioF() == std::floor(devicePixelRatioF());
    if (region.rectCount() > mostStrips || !isExact) {
        QGraphicsView::paintEvent(event);
        return;
    }
    for (const QRect& rect : region) {
        const QScopedValueRollback<QRect> strip(m_strip, rect);
        QPaintEvent part(rect);
        QGraphicsView::paintEvent(&part);
    }
}

void MainView::drawBackground(QPainter* painter, const QRectF& rect)
{
    if (!m_strip.isEmpty()) {
        // The view does not save the painter's state, so the items are clipped too.
        const QTransform toView = painter->worldTransform();
        painter->setWorldTransform({});
        painter->setClipRect(m_strip);
        painter->setWorldTransform(toView);
    }
    QGraphicsView::drawBackground(painter, rect);
}

void MainView::drawForeground(QPainter* painter, const QRectF& rect)
{
    QGraphicsView::drawForeground(painter, rect);
    m_labels->Draw(*painter, rect);
    m_shape->Draw(*painter);
    m_mark->Draw(*painter);
}

void MainView::keyPressEvent(QKeyEvent* event)
{
    if (event->isAutoRepeat()) {
        return;
    }
    HeldKeys::Instance().RefreshModifiers();
    TellModifiers(*event);
    MapTool* tool = m_scene->Tool();
    const bool isConsumed = (event->key() == Qt::Key_Escape && Cancel()) ||
                            (tool && tool->PressKey(*event)) || PressShortcut(event);
    if (!isConsumed) {
        QGraphicsView::keyPressEvent(event);
    }
}

/// The modifiers of a key event are those before it.
void MainView::TellModifiers(const QKeyEvent& event)
{
    Qt::KeyboardModifier changed = Qt::NoModifier;
    if (event.key() == Qt::Key_Shift) {
        changed = Qt::ShiftModifier;
    } else if (event.key() == Qt::Key_Control) {
        changed = Qt::ControlModifier;
    }
    MapTool* tool = m_scene->Tool();
    if (tool && changed != Qt::NoModifier) {
        Qt::KeyboardModifiers modifiers = event.modifiers();
        tool->FollowModifiers(modifiers.setFlag(changed, event.type() == QEvent::KeyPress));
    }
}

/// Takes back what the mouse is doing; false when it does nothing.
bool MainView::Cancel()
{
    const bool isBand = m_band->isVisible();
    m_band->hide();
    return m_scene->CancelTool() || isBand;
}

bool MainView::PressShortcut(QKeyEvent* event)
{
    const HeldKeys& keys = HeldKeys::Instance();
    const SceneMode mode = m_scene->Mode();
    const bool hasTerritory = m_scene->CurrentTerritory() != nullptr;
    switch (event->key()) {
    case Qt::Key_Space:
        // Both ways of panning have a cursor.
        Moves().EndDrag();
        m_scene->BeginPan();
        return true;
    case Qt::Key_0:
        if (keys.ctrl) {
            ResetZoom();
            event->accept();
        }
        return true;
    case Qt::Key_A:
        PressA();
        return true;
    case Qt::Key_D:
        if (keys.shift && mode == SceneMode::Select && hasTerritory) {
            m_scene->RemoveSelection();
        }
        return true;
    case Qt::Key_Q:
        if (keys.shift) {
            emit ModeQuery(mode != SceneMode::Query);
        }
        return true;
    case Qt::Key_S:
        if (keys.shift && (mode == SceneMode::Select || hasTerritory)) {
            emit ModeSelect(mode != SceneMode::Select);
        }
        return true;
    default:
        return false;
    }
}

void MainView::PressA()
{
    const HeldKeys& keys = HeldKeys::Instance();
    if (!m_scene->CurrentTerritory()) {
        return;
    }
    if (keys.ctrl && m_scene->Mode() == SceneMode::Select) {
        SelectAllZones();
    } else if (keys.shift) {
        emit ModeInsert(m_scene->Mode() != SceneMode::Insert);
    }
}

void MainView::SelectAllZones()
{
    // Zones that are selected during a drag would move with it from nowhere.
    LoseMouse();
    // While zones of other territories are selected they can be selected, so they would stay so.
    m_scene->DeselectOthers();
    const ProjectSettings& settings = ProjectSettings::Instance();
    QPainterPath map;
    map.addRect(0, 0, settings.LayerWidth(), settings.LayerHeight());
    m_scene->setSelectionArea(map, Qt::IntersectsItemShape, QTransform());
}

void MainView::keyReleaseEvent(QKeyEvent* event)
{
    if (event->isAutoRepeat()) {
        return;
    }
    if (event->key() == Qt::Key_Space) {
        m_scene->EndPan();
    }
    HeldKeys::Instance().Release(*event);
    TellModifiers(*event);
    QGraphicsView::keyReleaseEvent(event);
}

void MainView::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_keyTimer) {
        QGraphicsView::timerEvent(event);
    } else if (MapTool* tool = m_scene->Tool()) {
        tool->RepeatKeys();
    }
}

/// Keeps where the mouse is.
void MainView::NoteEvent(const QEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        NoteMouse(static_cast<const QMouseEvent&>(event));
        break;
    case QEvent::Enter: {
        const QPoint mouse = viewport()->mapFromGlobal(QCursor::pos());
        if (viewport()->rect().contains(mouse)) {
            m_mouse = mouse;
        }
        break;
    }
    case QEvent::Leave:
        m_mouse.reset();
        break;
    default:
        break;
    }
}

void MainView::NoteMouse(const QMouseEvent& event)
{
    // The map may have moved below the mouse since.
    m_scene->ContinueStrokeFrom(mapToScene(m_mousePixel) + MouseFraction());
    m_mousePixel = event.pos();
    m_mouse = event.pos();
    m_mouseFraction = FractionOf(event, *viewport());
}

QPointF MainView::MouseFraction() const
{
    return transform().inverted().map(m_mouseFraction);
}

QPoint MainView::RulerMargin() const
{
    return {m_verticalRuler->width(), m_horizontalRuler->height()};
}

void MainView::mouseMoveEvent(QMouseEvent* event)
{
    m_horizontalRuler->SetCursorPos(event->globalPos());
    m_verticalRuler->SetCursorPos(event->globalPos());
    if (m_band->isVisible() && m_scene->Mode() == SceneMode::Select) {
        m_band->setGeometry(QRect(m_bandOrigin, event->pos() + RulerMargin()).normalized());
    } else {
        m_band->setGeometry(0, 0, 0, 0);
    }
    TellMouse();
    QGraphicsView::mouseMoveEvent(event);
}

void MainView::mousePressEvent(QMouseEvent* event)
{
    QGraphicsView::mousePressEvent(event);
    StartBand(event->pos());
}

void MainView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (dragMode() == ScrollHandDrag) {
        // The base class starts dragging the map only on a press.
        QGraphicsView::mousePressEvent(event);
    } else {
        QGraphicsView::mouseDoubleClickEvent(event);
    }
    StartBand(event->pos());
}

void MainView::StartBand(QPoint position)
{
    if (m_scene->Mode() != SceneMode::Select || !m_scene->selectedItems().isEmpty()) {
        return;
    }
    m_bandOrigin = position + RulerMargin();
    m_band->setGeometry(QRect(m_bandOrigin, QSize()));
    m_band->show();
}

void MainView::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_band->isVisible() && m_scene->Mode() == SceneMode::Select &&
        m_scene->selectedItems().isEmpty()) {
        // The selected area keeps the band's left and top, which include the rulers; only its size
        // is reduced by them. Designers are used to where the band catches zones.
        const QPoint margin = RulerMargin();
        QPainterPath area;
        area.addRect(m_band->x(), m_band->y(), m_band->width() - margin.x(),
                     m_band->height() - margin.y());
        m_scene->setSelectionArea(mapToScene(area), Qt::IntersectsItemShape, QTransform());
    }
    m_band->hide();
    QGraphicsView::mouseReleaseEvent(event);
}

void MainView::enterEvent(QEvent* event)
{
    QGraphicsView::enterEvent(event);
    if (!IsTextBeingEdited()) {
        setFocus(Qt::MouseFocusReason);
    }
}

void MainView::focusOutEvent(QFocusEvent* event)
{
    // Releases go to another widget from now on, and would leave the keys held forever.
    HeldKeys::Instance().ReleaseAll();
    m_scene->EndPan();
    LoseMouse();
    QGraphicsView::focusOutEvent(event);
}

bool MainView::viewportEvent(QEvent* event)
{
    NoteEvent(*event);
    if (m_moves->TakeEvent(*event)) {
        return true;
    }
    const bool isLost = event->type() == QEvent::UngrabMouse || event->type() == QEvent::Hide ||
                        (event->type() == QEvent::EnabledChange && !viewport()->isEnabled());
    if (isLost) {
        LoseMouse();
    }
    return QGraphicsView::viewportEvent(event);
}

void MainView::LoseMouse()
{
    m_band->hide();
    m_moves->EndDrag();
    m_scene->LoseMouse();
}
