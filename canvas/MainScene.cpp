#include "canvas/MainScene.h"

#include "app/ProjectSettings.h"
#include "app/Tracked.h"
#include "canvas/CurrentLayerItem.h"
#include "canvas/LayersItem.h"
#include "canvas/MainView.h"
#include "canvas/OverlayItem.h"
#include "canvas/WorldItem.h"
#include "canvas/tools/InsertTool.h"
#include "canvas/tools/NoTool.h"
#include "canvas/tools/PaintTools.h"
#include "canvas/tools/QueryTool.h"
#include "canvas/tools/SelectTool.h"
#include "document/Brush.h"
#include "document/Document.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/Layer.h"
#include "territories/Territory.h"
#include "territories/Zone.h"

#include <QGraphicsSceneMouseEvent>
#include <QMap>
#include <QPen>

#include <algorithm>
#include <utility>

namespace {

constexpr qreal WorldZ = 0.2;
constexpr qreal OverlayZ = 0.4;
constexpr qreal LayersZ = 0.6;
constexpr qreal CurrentZ = 0.8;
constexpr qreal BrushZ = 999;

qreal OpacityOf(const Layer& layer)
{
    // Divided in 32 bits, so that maps look exactly as they always did.
    return static_cast<qreal>(static_cast<float>(layer.Color().alpha()) / 255.0F);
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

void MainScene::SetDocument(Document& document)
{
    m_document = &document;
    document.SetZoneScene(this);
    connect(&document, &QObject::destroyed, this, &MainScene::ForgetDocument);
    connect(&document, &Document::AboutToClear, this, [this] { m_paintTools->LeaveProject(); });
    connect(&document, &Document::LayerMarksChanged, this,
            [this] { m_paintTools->ForgetRefusal(); });
    const MapToolParts parts{document, *this, *m_view};
    auto paintTools = std::make_unique<PaintTools>(parts);
    m_paintTools = paintTools.get();
    m_tools[SceneMode::None] = std::make_unique<NoTool>(parts);
    m_tools[SceneMode::Pan] = std::make_unique<NoTool>(parts);
    m_tools[SceneMode::Paint] = std::move(paintTools);
    m_tools[SceneMode::Insert] = std::make_unique<InsertTool>(parts);
    auto selectTool = std::make_unique<SelectTool>(parts);
    m_selectTool = selectTool.get();
    m_tools[SceneMode::Select] = std::move(selectTool);
    m_tools[SceneMode::Query] = std::make_unique<QueryTool>(parts);
}

/// A window destroys its members before the view, which is its child.
void MainScene::ForgetDocument()
{
    m_tools.clear();
    m_paintTools = nullptr;
    m_selectTool = nullptr;
    m_brush = nullptr;
    m_document = nullptr;
}

MapTool* MainScene::Tool() const
{
    const auto tool = m_tools.find(m_mode);
    return tool == m_tools.end() ? nullptr : tool->second.get();
}

Territory* MainScene::CurrentTerritory() const
{
    return m_document ? m_document->CurrentTerritory() : nullptr;
}

QVector<Zone*> MainScene::SelectedZones() const
{
    // Qt gives them in an order that differs from run to run.
    QMap<int, Zone*> zones;
    const QList<QGraphicsItem*> items = selectedItems();
    for (QGraphicsItem* item : items) {
        if (auto* zone = qgraphicsitem_cast<Zone*>(item)) {
            zones.insert(zone->Id(), zone);
        }
    }
    return QVector<Zone*>(zones.cbegin(), zones.cend());
}

void MainScene::SelectZones(const QVector<Zone*>& zones)
{
    // Zones that are selected during a drag would move with it from nowhere.
    LoseMouse();
    m_selection.Set(*this, zones);
    m_selection.Settle(CurrentTerritory());
}

void MainScene::DeselectOthers()
{
    const QVector<Zone*> selected = SelectedZones();
    QVector<Zone*> own;
    for (Zone* zone : selected) {
        if (zone->Holder() == CurrentTerritory()) {
            own.append(zone);
        }
    }
    if (own.size() != selected.size()) {
        SelectZones(own);
    }
}

Layer* MainScene::CurrentLayer() const
{
    return m_painter.GetLayer();
}

void MainScene::AddLayer(Layer* layer)
{
    if (layer) {
        m_layersItem->Add(layer->Image(), layer->Color().rgb(), OpacityOf(*layer), layer->Id());
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
    if (m_paintTools) {
        m_paintTools->FollowLayer(layer);
    }
    // Every brush step has handed its work over already, so there is nothing to hand over here.
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
    if (m_document) {
        m_document->SetCurrentTerritory(t);
    }
}

void MainScene::ChangeTerritoryColor(QColor color)
{
    if (Territory* territory = CurrentTerritory()) {
        m_document->Do(Edits::SetTerritoryColor(*territory, color));
    }
}

void MainScene::ChangeTerritoryAlpha(int alpha, float /*opacity*/)
{
    if (Territory* territory = CurrentTerritory()) {
        m_document->Do(Edits::SetTerritoryOpacity(*territory, alpha));
    }
}

void MainScene::ChangeSelection()
{
    m_selection.Settle(CurrentTerritory());
    emit ZoneSelected(selectedItems());
}

void MainScene::RemoveSelection()
{
    // What a drag has moved so far is a step of its own.
    LoseMouse();
    const QVector<Zone*> selected = SelectedZones();
    const QVector<Tracked<Zone>> tracked(selected.begin(), selected.end());
    // Whoever shows the selection forgets it before its zones go.
    clearSelection();
    QVector<Zone*> zones;
    for (const Tracked<Zone>& zone : tracked) {
        if (zone) {
            zones.append(zone);
        }
    }
    if (m_document) {
        m_document->Do(Edits::RemoveZones(zones));
    }
}

void MainScene::ChangeMode(SceneMode mode)
{
    if (MapTool* tool = Tool(); tool && tool->IsUnderWay() && mode != m_mode) {
        if (mode == SceneMode::Pan) {
            tool->Finish();
        } else {
            tool->Leave();
        }
    }
    m_mode = mode;
    if (m_paintTools) {
        m_paintTools->ForgetRefusal();
    }
    ShowToolCursor();
}

void MainScene::ShowToolCursor()
{
    m_brushCursor.setVisible(m_mode == SceneMode::Paint &&
                             (!m_paintTools || m_paintTools->ShowsBrush()));
    m_brushCursor.setPos(m_mousePosition);
    const MapTool* tool = Tool();
    const Qt::CursorShape shape = tool ? tool->Cursor() : Qt::ArrowCursor;
    // Whoever drags the map sets a cursor, too.
    if (shape != Qt::ArrowCursor) {
        m_view->viewport()->setCursor(shape);
    } else if (m_hasToolCursor) {
        m_view->viewport()->unsetCursor();
    }
    m_hasToolCursor = shape != Qt::ArrowCursor;
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
        ShowToolCursor();
        if (m_panEnded) {
            m_panEnded(m_mode);
        }
    }
}

void MainScene::ContinueStrokeFrom(QPointF position)
{
    if (m_paintTools) {
        m_paintTools->Brush().ContinueFrom(position);
    }
}

void MainScene::LoseMouse()
{
    if (MapTool* tool = Tool()) {
        tool->Finish();
    }
}

bool MainScene::CancelTool()
{
    MapTool* tool = Tool();
    const bool isUnderWay = tool && tool->IsUnderWay();
    if (isUnderWay) {
        tool->Cancel();
    }
    return isUnderWay;
}

void MainScene::CancelPress()
{
    if (MapTool* tool = Tool(); tool && tool->IsUnderWay()) {
        tool->CancelPress();
    }
}

void MainScene::mousePressEvent(QGraphicsSceneMouseEvent* event)
{
    if (MapTool* tool = Tool()) {
        tool->Press(*event);
    }
}

void MainScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent* event)
{
    if (MapTool* tool = Tool()) {
        tool->DoublePress(*event);
    }
}

void MainScene::mouseMoveEvent(QGraphicsSceneMouseEvent* event)
{
    m_mousePosition = event->scenePos();
    if (MapTool* tool = Tool()) {
        tool->Move(*event);
    }
}

void MainScene::mouseReleaseEvent(QGraphicsSceneMouseEvent* event)
{
    if (MapTool* tool = Tool()) {
        tool->Release(*event);
    }
}

void MainScene::StandardPress(QGraphicsSceneMouseEvent& event)
{
    QGraphicsScene::mousePressEvent(&event);
}

void MainScene::StandardDoublePress(QGraphicsSceneMouseEvent& event)
{
    QGraphicsScene::mouseDoubleClickEvent(&event);
}

void MainScene::StandardMove(QGraphicsSceneMouseEvent& event)
{
    QGraphicsScene::mouseMoveEvent(&event);
}

void MainScene::StandardRelease(QGraphicsSceneMouseEvent& event)
{
    QGraphicsScene::mouseReleaseEvent(&event);
}

void MainScene::focusInEvent(QFocusEvent* event)
{
    QGraphicsScene::focusInEvent(event);
}

void MainScene::focusOutEvent(QFocusEvent* event)
{
    QGraphicsScene::focusOutEvent(event);
}

void MainScene::MoveBrush(QPointF position)
{
    if (m_brush) {
        m_brush->SetPosition(position);
    }
    m_brushCursor.setPos(position);
}

void MainScene::ShowPainted(const QRect& changed)
{
    if (!changed.isEmpty()) {
        m_currentItem->update(changed);
    }
}

void MainScene::ReleasePixels(const Layer& layer)
{
    if (m_painter.GetLayer() == &layer) {
        m_painter.Load(nullptr);
    } else {
        m_layersItem->Release(layer.Id());
    }
}

bool MainScene::ReplacePixels(const Layer& layer, const QRect& changed)
{
    return m_layersItem->Replace(layer.Id(), layer.Image(), changed);
}
