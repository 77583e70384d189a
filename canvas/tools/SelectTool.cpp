#include "canvas/tools/SelectTool.h"

#include "app/ProjectSettings.h"
#include "canvas/HeldKeys.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "canvas/ShapeMark.h"
#include "canvas/tools/MetresText.h"
#include "document/Document.h"
#include "territories/TerritoryRecords.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "territories/ZonePlaces.h"

#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>
#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

/// View pixels within which a zone snaps to another one.
constexpr qreal SnapReach = 8;
/// View pixels that the mouse may move in a click on a zone that would snap.
constexpr int ClickReach = 4;

/// The point of the grid that is nearest to the place in the world; in the scene.
QPointF OnGrid(QPointF place, int gridMetres)
{
    const WorldScale scale(ProjectSettings::Instance());
    const WorldCircle circle = InWorld({{}, place, 0}, scale);
    const double x = std::round(circle.x / gridMetres) * gridMetres;
    const double z = std::round(circle.z / gridMetres) * gridMetres;
    return PlaceAtMetres(place, x, z, scale);
}

} // namespace

void SelectTool::Press(QGraphicsSceneMouseEvent& event)
{
    if (event.button() == Qt::LeftButton) {
        Finish();
        Parts().scene.StandardPress(event);
        BeginDrag();
    }
}

void SelectTool::DoublePress(QGraphicsSceneMouseEvent& event)
{
    if (event.button() == Qt::LeftButton) {
        // A drag whose release never came ends here.
        Finish();
        Parts().scene.StandardDoublePress(event);
        BeginDrag();
    }
}

void SelectTool::Move(QGraphicsSceneMouseEvent& event)
{
    const QPointF mouse = event.scenePos();
    Snap(event);
    MapTool::Move(event);
    event.setScenePos(mouse);
    ShowWay(mouse);
}

void SelectTool::Release(QGraphicsSceneMouseEvent& event)
{
    MapTool::Release(event);
    EndDrag();
    // While a button is held the zones still follow the mouse.
    if (event.buttons() != Qt::NoButton) {
        BeginDrag();
    }
}

void SelectTool::BeginDrag()
{
    QVector<Zone*> zones = Parts().scene.SelectedZones();
    // With Ctrl a zone moves along without being selected.
    if (auto* grabbed = qgraphicsitem_cast<Zone*>(Parts().scene.mouseGrabberItem());
        grabbed && !zones.contains(grabbed)) {
        zones.append(grabbed);
    }
    m_dragStart.clear();
    for (Zone* zone : qAsConst(zones)) {
        m_dragStart.append({zone, zone->pos()});
    }
    Parts().document.SetHandBusy(IsBusy());
}

void SelectTool::EndDrag()
{
    std::vector<Edits::ZoneMove> moves;
    for (const auto& [zone, position] : qAsConst(m_dragStart)) {
        if (zone && zone->Holder() && zone->pos() != position) {
            moves.push_back({zone, position, zone->pos()});
        }
    }
    m_dragStart.clear();
    m_snap.reset();
    if (Parts().view.Shape().IsShown()) {
        Parts().view.Shape().Hide();
    }
    Parts().document.SetHandBusy(false);
    if (!moves.empty()) {
        Parts().document.Do(Edits::MoveZones(moves, false));
    }
}

/// The zone that the mouse holds; null for none.
Zone* SelectTool::Grabbed() const
{
    return qgraphicsitem_cast<Zone*>(Parts().scene.mouseGrabberItem());
}

/// Where the zone was when the mouse took hold of it; nothing for a zone that is not dragged.
std::optional<QPointF> SelectTool::StartOf(const Zone* zone) const
{
    for (const auto& [dragged, position] : m_dragStart) {
        if (zone && dragged == zone) {
            return position;
        }
    }
    return std::nullopt;
}

/// Qt moves all dragged zones by the way of the mouse since the press. So the mouse is moved to
/// where the zone that it holds snaps.
void SelectTool::Snap(QGraphicsSceneMouseEvent& event)
{
    const Zone* grabbed = Grabbed();
    const std::optional<QPointF> start = StartOf(grabbed);
    const bool isOff = m_options.snapTo == SnapTo::Nothing ||
                       event.modifiers().testFlag(Qt::ControlModifier) ||
                       !event.buttons().testFlag(Qt::LeftButton);
    if (!start || isOff) {
        return;
    }
    const QPointF pressed = event.buttonDownScenePos(Qt::LeftButton);
    const QPointF onScreen = (event.scenePos() - pressed) * static_cast<qreal>(Parts().view.Zoom());
    if (onScreen.manhattanLength() < ClickReach) {
        event.setScenePos(pressed);
        return;
    }
    const QPointF place = *start + event.scenePos() - pressed;
    event.setScenePos(event.scenePos() + SnappedPlace(*grabbed, place) - place);
}

QPointF SelectTool::SnappedPlace(const Zone& zone, QPointF place)
{
    if (m_options.snapTo == SnapTo::Grid) {
        return OnGrid(place, m_options.gridMetres);
    }
    if (!m_snap) {
        m_snap.emplace(Others());
    }
    return m_snap->Snapped({place, static_cast<qreal>(zone.Radius())},
                           SnapReach / static_cast<qreal>(Parts().view.Zoom()));
}

/// The zones that are seen and not dragged.
std::vector<SnapCircle> SelectTool::Others() const
{
    QSet<const Zone*> dragged;
    for (const auto& [zone, position] : m_dragStart) {
        dragged.insert(zone);
    }
    std::vector<SnapCircle> circles;
    const QVector<TerritoryType*> types = Parts().document.Types().Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            for (const Zone* zone : territory->Zones()) {
                if (zone->isVisible() && zone->opacity() > 0 && !dragged.contains(zone)) {
                    circles.push_back({zone->pos(), static_cast<qreal>(zone->Radius())});
                }
            }
        }
    }
    return circles;
}

/// mouse: in the scene.
void SelectTool::ShowWay(QPointF mouse) const
{
    const Zone* grabbed = Grabbed();
    const std::optional<QPointF> start = StartOf(grabbed);
    ShapeMark& mark = Parts().view.Shape();
    if (start && grabbed->pos() != *start) {
        const WorldCircle circle =
            InWorld(grabbed->Record(), WorldScale(ProjectSettings::Instance()));
        const QPointF way = WayInMetres(grabbed->pos() - *start);
        mark.Show({}, mouse,
                  Document::tr("X %1 m, Z %2 m, moved %3 m")
                      .arg(ShortMetres(circle.x), ShortMetres(circle.z),
                           ShortMetres(std::hypot(way.x(), way.y()))));
    } else if (mark.IsShown()) {
        mark.Hide();
    }
}

/// A pressed zone grabs the mouse until a release is sent.
void SelectTool::LetGo()
{
    QGraphicsSceneMouseEvent release(QEvent::GraphicsSceneMouseRelease);
    // A release of the left button would select the zone below.
    release.setButton(Qt::MiddleButton);
    release.setScenePos(Parts().scene.MousePosition());
    Parts().scene.StandardRelease(release);
}

void SelectTool::Finish()
{
    LetGo();
    EndDrag();
}

void SelectTool::Cancel()
{
    LetGo();
    for (const auto& [zone, position] : qAsConst(m_dragStart)) {
        if (zone) {
            // The drag has become no edit yet.
            zone->setPos(position); // NOLINT
        }
    }
    EndDrag();
}

bool SelectTool::PressKey(const QKeyEvent& event)
{
    if (HeldKeys::Instance().PressArrow(event)) {
        RepeatKeys();
        return true;
    }
    if (event.key() == Qt::Key_W && event.modifiers() == Qt::NoModifier) {
        SelectNextBelow();
        return true;
    }
    if (event.key() == Qt::Key_C) {
        CopySelection();
        return true;
    }
    if (event.key() == Qt::Key_V) {
        Paste();
        return true;
    }
    return false;
}

void SelectTool::RepeatKeys()
{
    constexpr qint64 restMilliseconds = 1000;
    const HeldKeys& keys = HeldKeys::Instance();
    const QPointF way((int(keys.right) - int(keys.left)) * keys.SelectionStep(),
                      (int(keys.down) - int(keys.up)) * keys.SelectionStep());
    const QVector<Zone*> zones = Parts().scene.SelectedZones();
    // During a drag the mouse has hold of them.
    if (way.isNull() || zones.isEmpty() || IsBusy()) {
        return;
    }
    if (!m_lastNudge.isValid() || m_lastNudge.hasExpired(restMilliseconds)) {
        Parts().document.EndGesture();
    }
    m_lastNudge.start();
    const std::vector<Edits::ZoneMove> moves =
        m_options.nudgeMetres == 0 ? MovesInPixels(zones, way) : MovesInMetres(zones, way);
    Parts().document.Do(Edits::MoveZones(moves, true));
    for (Nudged& nudged : m_nudged) {
        nudged.present = nudged.zone->pos();
    }
}

/// way: layer pixels.
std::vector<Edits::ZoneMove> SelectTool::MovesInPixels(const QVector<Zone*>& zones, QPointF way)
{
    m_nudged.clear();
    std::vector<Edits::ZoneMove> moves;
    for (Zone* zone : zones) {
        moves.push_back({zone, zone->pos(), zone->pos() + way});
    }
    return moves;
}

/// way: steps of the chosen metres. The numbers are as near as places can be.
std::vector<Edits::ZoneMove> SelectTool::MovesInMetres(const QVector<Zone*>& zones, QPointF way)
{
    const bool goesOn = std::equal(zones.begin(), zones.end(), m_nudged.begin(), m_nudged.end(),
                                   [](const Zone* zone, const Nudged& nudged) {
                                       return zone == nudged.zone && zone->pos() == nudged.present;
                                   });
    if (!goesOn) {
        m_nudged.clear();
        m_nudgedBy = {};
        for (const Zone* zone : zones) {
            m_nudged.push_back({zone, zone->pos(), zone->pos()});
        }
    }
    m_nudgedBy += way * m_options.nudgeMetres;
    const WorldScale scale(ProjectSettings::Instance());
    std::vector<Edits::ZoneMove> moves;
    for (int i = 0; i < zones.size(); ++i) {
        const QPointF start = m_nudged[static_cast<std::size_t>(i)].start;
        moves.push_back(
            {zones[i], zones[i]->pos(), MovedPlace(start, m_nudgedBy.x(), -m_nudgedBy.y(), scale)});
    }
    return moves;
}

/// Selects the next lower zone of the current territory under the mouse. After the lowest one comes
/// the topmost.
void SelectTool::SelectNextBelow()
{
    const MainView& view = Parts().view;
    const std::optional<QPointF> pixel = view.MousePixel();
    const Territory* territory = Parts().document.CurrentTerritory();
    if (IsBusy() || !territory) {
        return;
    }
    // The map may have moved below the mouse.
    const QPointF place =
        pixel ? view.PlaceAt(*pixel) + view.MouseFraction() : Parts().scene.MousePosition();
    // The topmost one comes first.
    const QList<QGraphicsItem*> items = Parts().scene.items(place);
    QVector<Zone*> stack;
    for (QGraphicsItem* item : items) {
        auto* zone = qgraphicsitem_cast<Zone*>(item);
        if (zone && zone->Holder() == territory) {
            stack.append(zone);
        }
    }
    const auto selected = std::find_if(stack.cbegin(), stack.cend(),
                                       [](const Zone* zone) { return zone->isSelected(); });
    const auto index = selected == stack.cend() ? -1 : int(selected - stack.cbegin());
    if (!stack.isEmpty()) {
        Parts().scene.SelectZones({stack[(index + 1) % stack.size()]});
    }
}

void SelectTool::CopySelection()
{
    if (!HeldKeys::Instance().ctrl || !Parts().document.CurrentTerritory()) {
        return;
    }
    m_clipboard.clear();
    const QVector<Zone*> zones = Parts().scene.SelectedZones();
    for (Zone* zone : zones) {
        m_clipboard.append(zone);
    }
}

void SelectTool::Paste()
{
    Territory* territory = Parts().document.CurrentTerritory();
    // Zones that were removed since they were copied are not pasted.
    QVector<Zone*> zones;
    for (const Tracked<Zone>& zone : qAsConst(m_clipboard)) {
        if (zone && zone->scene()) {
            zones.append(zone);
        }
    }
    if (HeldKeys::Instance().ctrl && territory && !zones.isEmpty()) {
        const QPointF offset = Parts().scene.MousePosition() - zones.first()->scenePos();
        Parts().document.Do(Edits::PasteZones(*territory, zones, offset));
    }
}
