#include "canvas/MainScene.h"

#include "app/Log.h"
#include "app/ProjectSettings.h"
#include "canvas/Brush.h"
#include "canvas/CurrentLayerItem.h"
#include "canvas/LayersItem.h"
#include "canvas/MainView.h"
#include "canvas/OverlayItem.h"
#include "canvas/WorldItem.h"
#include "layers/Layer.h"
#include "territories/Territory.h"
#include "territories/Zone.h"

#include <QFileInfo>
#include <QGraphicsSceneMouseEvent>
#include <QImage>
#include <QPen>

#include <algorithm>
#include <utility>

namespace {

constexpr qreal WorldZ = 0.2;
constexpr qreal OverlayZ = 0.4;
constexpr qreal LayersZ = 0.6;
constexpr qreal CurrentZ = 0.8;
constexpr qreal BrushZ = 999;
constexpr float NewZoneRadius = 300.0F;

qreal OpacityOf(const Layer& layer)
{
    // Divided in 32 bits, so that maps look exactly as they always did.
    return static_cast<qreal>(static_cast<float>(layer.Color().alpha()) / 255.0F);
}

QVector<Zone*> SelectedZones(const QGraphicsScene& scene)
{
    QVector<Zone*> zones;
    const QList<QGraphicsItem*> items = scene.selectedItems();
    for (QGraphicsItem* item : items) {
        if (auto* zone = qgraphicsitem_cast<Zone*>(item)) {
            zones.append(zone);
        }
    }
    return zones;
}

} // namespace

MainScene::MainScene(float width, float height, MainView* parent)
    : QGraphicsScene(0, 0, static_cast<qreal>(width), static_cast<qreal>(height), parent)
    , m_view(parent)
    , m_worldItem(std::make_unique<WorldItem>())
    , m_overlayItem(std::make_unique<OverlayItem>())
    , m_layersItem(std::make_unique<LayersItem>(QSize(int(width), int(height))))
    , m_currentItem(std::make_unique<CurrentLayerItem>(m_painter))
{
    m_worldItem->hide();
    m_worldItem->setZValue(WorldZ);
    m_overlayItem->setZValue(OverlayZ);
    m_layersItem->setZValue(LayersZ);
    m_currentItem->setZValue(CurrentZ);
    addItem(m_worldItem.get());
    addItem(m_overlayItem.get());
    addItem(m_layersItem.get());
    addItem(m_currentItem.get());
    m_brushCursor.setZValue(BrushZ);
    m_brushCursor.setStartAngle(0);
    m_brushCursor.setFlag(QGraphicsItem::ItemIsMovable, true);
    m_brushCursor.setFlag(QGraphicsItem::ItemIsSelectable, false);
    m_brushCursor.setFlag(QGraphicsItem::ItemSendsGeometryChanges, true);
    addItem(&m_brushCursor);
    connect(this, &QGraphicsScene::selectionChanged, this, &MainScene::ChangeSelection);
}

MainScene::~MainScene()
{
    // Zones that are destroyed with the scene must not announce a change of the selection.
    blockSignals(true);
}

Territory* MainScene::CurrentTerritory() const
{
    return m_territory;
}

Layer* MainScene::CurrentLayer() const
{
    return m_painter.GetLayer();
}

void MainScene::ChangeWorld(QString file)
{
    // Opening a pipe would wait for a writer, maybe for ever.
    QImage picture = QFileInfo(file).isFile() ? QImage(file) : QImage();
    if (picture.isNull()) {
        LogError(QStringLiteral("Could not load background image '%1'.").arg(file));
        return;
    }
    const QSize size = ProjectSettings::Instance().LayerSize();
    if (!m_worldItem->Show(std::move(picture), size)) {
        LogError(QStringLiteral("Could not scale background image '%1' to %2x%3.")
                     .arg(file, QString::number(size.width()), QString::number(size.height())));
        return;
    }
    m_overlayItem->Show(m_overlayItem->Color(), size);
}

void MainScene::ClearWorld()
{
    m_worldItem->Clear();
}

void MainScene::ChangeWorldRGBA(QColor c)
{
    m_overlayItem->Show(QColor(c.rgb()), sceneRect().size().toSize());
    m_overlayItem->setOpacity(c.alphaF());
}

void MainScene::ChangeWorldColor(QColor c)
{
    QColor background = c;
    background.setAlpha(ProjectSettings::Instance().backgroundColor.alpha());
    ProjectSettings::Instance().backgroundColor = background;
    m_overlayItem->Show(c, sceneRect().size().toSize());
}

void MainScene::ChangeWorldAlpha(int alpha, float opacity)
{
    ProjectSettings::Instance().backgroundColor.setAlpha(alpha);
    m_overlayItem->setOpacity(static_cast<qreal>(opacity));
}

void MainScene::ChangeWorldVisibility(bool visible)
{
    m_worldItem->setVisible(visible);
    m_overlayItem->setVisible(visible);
}

void MainScene::AddLayer(Layer* layer)
{
    if (layer) {
        m_layersItem->Add(layer->Image(), layer->Color().rgb(), OpacityOf(*layer));
    }
}

void MainScene::ClearCurrent()
{
    m_currentItem->setOpacity(0.0);
}

void MainScene::ClearLayers()
{
    m_layersItem->Clear();
}

void MainScene::ChangeLayer(Layer* layer)
{
    // Every brush step has already handed its result over to the former layer.
    m_painter.Load(layer);
    m_currentItem->PictureChanged();
    m_currentItem->setOpacity(layer ? OpacityOf(*layer) : 0.0);
}

void MainScene::ChangeLayerColor(QColor /*c*/) {}

void MainScene::ChangeLayerAlpha(float opacity)
{
    m_currentItem->setOpacity(static_cast<qreal>(opacity));
}

void MainScene::ChangeBrush(Brush* brush)
{
    m_brush = brush;
    RefreshBrush();
}

void MainScene::RefreshBrush()
{
    if (!m_brush) {
        return;
    }
    m_brushCursor.setBrush(m_brush->Color());
    // Files may hold a negative width, which a pen does not accept.
    const int outlineWidth = std::max(m_brush->OutlineWidth(), 0);
    m_brushCursor.setPen(m_brush->HasOutline() ? QPen(m_brush->OutlineColor(), outlineWidth,
                                                      Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin)
                                               : QPen(Qt::transparent));
    const auto radius = static_cast<qreal>(m_brush->Radius());
    m_brushCursor.setRect(-radius, -radius, m_brush->Size(), m_brush->Size());
    m_brushCursor.setPos(m_brush->Position());
}

void MainScene::ChangeTerritory(Territory* t)
{
    m_territory = t;
}

void MainScene::ChangeTerritoryColor(QColor color)
{
    if (Territory* territory = m_territory) {
        territory->SetColor(color);
    }
}

void MainScene::ChangeTerritoryAlpha(int alpha, float /*opacity*/)
{
    if (Territory* territory = m_territory) {
        territory->SetAlpha(alpha);
    }
}

void MainScene::ChangeSelection()
{
    emit ZoneSelected(selectedItems());
}

void MainScene::RemoveSelection()
{
    const QVector<Zone*> selected = SelectedZones(*this);
    const QVector<Tracked<Zone>> zones(selected.begin(), selected.end());
    // Clear the selection first, so that no widget shows a zone that is being destroyed.
    clearSelection();
    for (const Tracked<Zone>& zone : zones) {
        // A destroyed zone removes itself from the scene, its territory's table and the totals.
        const std::unique_ptr<Zone> removed(zone.Get());
    }
    ProjectSettings::Instance().modified = true;
}

void MainScene::ChangeMode(SceneMode mode)
{
    m_brushCursor.setVisible(mode == SceneMode::Paint);
    m_brushCursor.setPos(m_mousePosition);
    m_mode = mode;
}

void MainScene::ChangeSize(int w, int h)
{
    setSceneRect(0, 0, w, h);
    m_layersItem->SetSize({w, h});
    m_painter.Load(nullptr);
    m_currentItem->PictureChanged();
}

void MainScene::BeginPan()
{
    EndStroke();
    if (!m_isPanning) {
        m_isPanning = true;
        m_savedMode = m_mode;
        ChangeMode(SceneMode::Pan);
        m_view->setDragMode(QGraphicsView::ScrollHandDrag);
    }
}

void MainScene::EndPan()
{
    if (m_isPanning) {
        m_isPanning = false;
        ChangeMode(m_savedMode);
        m_view->setDragMode(QGraphicsView::NoDrag);
        if (m_panEnded) {
            m_panEnded(m_mode);
        }
    }
}

void MainScene::EndStroke()
{
    if (m_stroke != BrushAction::None) {
        m_stroke = BrushAction::None;
        ProjectSettings::Instance().modified = true;
    }
}

void MainScene::LoseMouse()
{
    EndStroke();
    // Without a release, the zones would also receive the next press and be dragged from where this
    // drag began. A release of the left button would select the zone below, so the middle one is
    // sent.
    QGraphicsSceneMouseEvent release(QEvent::GraphicsSceneMouseRelease);
    release.setButton(Qt::MiddleButton);
    release.setScenePos(m_mousePosition);
    QGraphicsScene::mouseReleaseEvent(&release);
    NoticeZoneDrag();
    m_dragStart.clear();
}

void MainScene::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    Press(event);
}

void MainScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    // Qt reports a quick second press as a double click; treat it as a press.
    if (m_mode == SceneMode::Select && event->button() == Qt::LeftButton) {
        // End a former drag whose release never arrived.
        LoseMouse();
        QGraphicsScene::mouseDoubleClickEvent(event);
        BeginZoneDrag();
    } else {
        Press(event);
    }
}

void MainScene::Press(QGraphicsSceneMouseEvent* event)
{
    EndStroke();
    const bool isLeft = event->button() == Qt::LeftButton;
    if (m_mode == SceneMode::Paint) {
        PressInPaint(event);
    } else if (m_mode == SceneMode::Insert && isLeft) {
        PressInInsert(event->scenePos());
    } else if (m_mode == SceneMode::Select && isLeft) {
        PressInSelect(event);
    } else if (m_mode == SceneMode::Query && isLeft) {
        PressInQuery(event->scenePos());
    }
}

QPointF MainScene::BrushPositionOf(const QGraphicsSceneMouseEvent& event) const
{
    return event.scenePos() + m_view->MouseFraction();
}

void MainScene::PressInPaint(QGraphicsSceneMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_stroke = BrushAction::Paint;
    } else if (event->button() == Qt::RightButton) {
        m_stroke = BrushAction::Erase;
    } else {
        return;
    }
    PaintDab(BrushPositionOf(*event));
}

void MainScene::PressInInsert(QPointF position)
{
    Territory* territory = m_territory;
    if (!territory) {
        return;
    }
    auto* zone = new Zone(territory, NewZoneRadius);
    zone->setPos(position);
    addItem(zone);
    territory->AddZone(zone);
    ProjectSettings::Instance().modified = true;
    emit ZoneInserted(zone);
}

void MainScene::PressInSelect(QGraphicsSceneMouseEvent* event)
{
    LoseMouse();
    QGraphicsScene::mousePressEvent(event);
    BeginZoneDrag();
}

void MainScene::BeginZoneDrag()
{
    QVector<Zone*> zones = SelectedZones(*this);
    // With Ctrl held, the pressed zone is dragged too without being selected.
    if (auto* grabbed = qgraphicsitem_cast<Zone*>(mouseGrabberItem())) {
        zones.append(grabbed);
    }
    m_dragStart.clear();
    for (Zone* zone : qAsConst(zones)) {
        m_dragStart.append({zone, zone->pos()});
    }
}

void MainScene::PressInQuery(QPointF position)
{
    auto* zone = qgraphicsitem_cast<Zone*>(itemAt(position, QTransform()));
    Territory* territory = zone ? zone->Holder() : nullptr;
    if (!territory) {
        return;
    }
    // The receiver unlocks the territory's zones and clears the selection, so the zone is selected
    // afterwards.
    const Tracked<Zone> tracked(zone);
    emit m_view->TerritorySelected(territory);
    if (tracked) {
        zone->setSelected(true);
    }
}

void MainScene::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    m_mousePosition = event->scenePos();
    if (m_mode == SceneMode::Paint) {
        m_mousePosition = BrushPositionOf(*event);
        if (m_stroke == BrushAction::None || m_view->IsMapMoving()) {
            MoveBrush(m_mousePosition);
        } else {
            PaintStep(m_mousePosition);
        }
    }
    QGraphicsScene::mouseMoveEvent(event);
}

void MainScene::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    EndStroke();
    QGraphicsScene::mouseReleaseEvent(event);
    NoticeZoneDrag();
    // While another button is held, the zones still follow the mouse.
    if (event->buttons() == Qt::NoButton) {
        m_dragStart.clear();
    }
}

void MainScene::NoticeZoneDrag()
{
    for (const auto& [zone, position] : qAsConst(m_dragStart)) {
        if (zone && zone->pos() != position) {
            ProjectSettings::Instance().modified = true;
        }
    }
}

void MainScene::focusInEvent(QFocusEvent* event)
{
    QGraphicsScene::focusInEvent(event);
}

void MainScene::focusOutEvent(QFocusEvent* event)
{
    QGraphicsScene::focusOutEvent(event);
}

void MainScene::PaintDab(QPointF position)
{
    MoveBrush(position);
    if (m_brush) {
        ShowPainted(m_painter.Dab(*m_brush, m_stroke));
    }
}

void MainScene::PaintStep(QPointF position)
{
    const QPointF from = m_strokePoint;
    MoveBrush(position);
    if (m_brush) {
        ShowPainted(m_painter.Segment(*m_brush, m_stroke, from));
    }
}

void MainScene::MoveBrush(QPointF position)
{
    if (m_brush) {
        m_brush->SetPosition(position);
    }
    m_strokePoint = position;
    m_brushCursor.setPos(position);
}

void MainScene::ShowPainted(const QRect& changed)
{
    if (!changed.isEmpty()) {
        m_currentItem->update(changed);
    }
}
