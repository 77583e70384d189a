#pragma once

#include "app/Tracked.h"
#include "canvas/tools/MapTool.h"
#include "document/edits/TerritoryEdits.h"

#include <QElapsedTimer>
#include <QPair>
#include <QPointF>
#include <QVector>

class Zone;

/// Selects and drags zones with the left button, and nudges, copies and pastes them by keys. A drag
/// is one step of the history, and so are nudges with less than a second between them.
class SelectTool : public MapTool
{
public:
    using MapTool::MapTool;

    void Press(QGraphicsSceneMouseEvent& event) override;
    void DoublePress(QGraphicsSceneMouseEvent& event) override;
    void Release(QGraphicsSceneMouseEvent& event) override;
    bool PressKey(const QKeyEvent& event) override;
    void RepeatKeys() override;

    bool IsBusy() const override { return !m_dragStart.isEmpty(); }
    void Finish() override;
    void Cancel() override;

private:
    void BeginDrag();
    void EndDrag();
    void LetGo();
    void CopySelection();
    void Paste();

    /// Where the zones were when the mouse took hold of them.
    QVector<QPair<Tracked<Zone>, QPointF>> m_dragStart;
    QVector<Tracked<Zone>> m_clipboard;
    QElapsedTimer m_lastNudge;
};
