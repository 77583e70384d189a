#include "canvas/tools/SelectTool.h"

#include "canvas/HeldKeys.h"
#include "canvas/MainScene.h"
#include "document/Document.h"
#include "territories/Zone.h"

#include <QGraphicsSceneMouseEvent>
#include <QKeyEvent>

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
    Parts().document.SetHandBusy(false);
    if (!moves.empty()) {
        Parts().document.Do(Edits::MoveZones(moves, false));
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
    const QPointF offset((int(keys.right) - int(keys.left)) * keys.SelectionStep(),
                         (int(keys.down) - int(keys.up)) * keys.SelectionStep());
    const QVector<Zone*> zones = Parts().scene.SelectedZones();
    // During a drag the mouse has hold of them.
    if (offset.isNull() || zones.isEmpty() || IsBusy()) {
        return;
    }
    if (!m_lastNudge.isValid() || m_lastNudge.hasExpired(restMilliseconds)) {
        Parts().document.EndGesture();
    }
    m_lastNudge.start();
    std::vector<Edits::ZoneMove> moves;
    for (Zone* zone : zones) {
        moves.push_back({zone, zone->pos(), zone->pos() + offset});
    }
    Parts().document.Do(Edits::MoveZones(moves, true));
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
