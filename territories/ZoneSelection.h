#pragma once

#include "app/Tracked.h"

#include <QPointer>
#include <QVector>

#include <vector>

class QGraphicsScene;
class Territory;
class Zone;

/// While it lives, zones are selected and deselected one by one, and their scene announces it once,
/// at the end. Who shows the selection looks at all of it, so thousands of announcements would take
/// minutes.
class SelectionChange
{
public:
    SelectionChange() = default;
    ~SelectionChange();
    Q_DISABLE_COPY(SelectionChange)

    /// Does nothing for a zone that is in no scene.
    void Set(Zone& zone, bool isSelected);

private:
    /// Null before the first change.
    QPointer<QGraphicsScene> m_scene;
    bool m_wasBlocked = false;
};

/// Selects zones of any territory. Those that are not the current territory's can be neither
/// selected nor moved by the mouse, and may be hidden. While they are selected, they are shown and
/// the mouse can deselect them, but not move them.
class ZoneSelection
{
public:
    /// Selects exactly these zones of the scene. After it, and after any other change of the
    /// selection, call Settle.
    void Set(QGraphicsScene& scene, const QVector<Zone*>& zones);
    /// Makes zones that are no longer selected what they were before Set. current: the territory
    /// whose zones stay as they are; may be null.
    void Settle(const Territory* current);

private:
    void Lend(Zone& zone);

    /// What a selected zone has only while it is selected.
    struct Loan
    {
        Tracked<Zone> zone;
        bool isSelectable = false;
        bool isShown = false;
    };
    std::vector<Loan> m_loans;
};
