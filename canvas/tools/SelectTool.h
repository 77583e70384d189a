#pragma once

#include "app/Tracked.h"
#include "canvas/tools/MapTool.h"
#include "canvas/tools/MoveOptions.h"
#include "canvas/tools/ZoneSnap.h"
#include "document/edits/TerritoryEdits.h"

#include <QElapsedTimer>
#include <QPair>
#include <QPointF>
#include <QVector>

#include <optional>
#include <vector>

class Zone;

/// Selects and drags zones with the left button, and nudges, copies and pastes them by keys. A drag
/// is one step of the history, and so are nudges with less than a second between them. During a
/// drag, the place of the zone under the mouse and its way stand beside the mouse.
class SelectTool : public MapTool
{
public:
    using MapTool::MapTool;

    void Press(QGraphicsSceneMouseEvent& event) override;
    void DoublePress(QGraphicsSceneMouseEvent& event) override;
    void Move(QGraphicsSceneMouseEvent& event) override;
    void Release(QGraphicsSceneMouseEvent& event) override;
    bool PressKey(const QKeyEvent& event) override;
    void RepeatKeys() override;

    void SetOptions(const MoveOptions& options) { m_options = options; }

    bool IsBusy() const override { return !m_dragStart.isEmpty(); }
    void Finish() override;
    void Cancel() override;

private:
    struct Nudged
    {
        const Zone* zone = nullptr;
        QPointF start;
        QPointF present;
    };

    void BeginDrag();
    void EndDrag();
    void LetGo();
    Zone* Grabbed() const;
    std::optional<QPointF> StartOf(const Zone* zone) const;
    void Snap(QGraphicsSceneMouseEvent& event);
    QPointF SnappedPlace(const Zone& zone, QPointF place);
    std::vector<SnapCircle> Others() const;
    void ShowWay(QPointF mouse) const;
    std::vector<Edits::ZoneMove> MovesInPixels(const QVector<Zone*>& zones, QPointF way);
    std::vector<Edits::ZoneMove> MovesInMetres(const QVector<Zone*>& zones, QPointF way);
    void SelectNextBelow();
    void CopySelection();
    void Paste();

    /// Where the zones were when the mouse took hold of them.
    QVector<QPair<Tracked<Zone>, QPointF>> m_dragStart;
    QVector<Tracked<Zone>> m_clipboard;
    QElapsedTimer m_lastNudge;
    MoveOptions m_options;
    /// What the zones that are dragged snap to; nothing before it is asked.
    std::optional<ZoneSnap> m_snap;
    /// The zones that the last nudges in metres moved, and their way since the first one (metres,
    /// downward is positive). Steps are reckoned from where the zones were at first, because the
    /// numbers of places are rounded at each step.
    std::vector<Nudged> m_nudged;
    QPointF m_nudgedBy;
};
