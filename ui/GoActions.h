#pragma once

#include "ui/Bookmarks.h"
#include "ui/EditorParts.h"
#include "ui/Jumps.h"

#include <QList>
#include <QObject>

class QAction;

/// The Go menu: zooming, jumps to places and back, bookmarks, and the full screen.
class GoActions : public QObject
{
public:
    explicit GoActions(const EditorParts& parts);

    /// The view is about to jump, by a click in a dock for instance: what it shows now is a place
    /// to go back to. Call it once for a drag.
    void NoteJump() { m_jumps.Note(); }
    /// Shows the place and remembers the one before.
    void Jump(const ViewPlace& place) { m_jumps.To(place); }
    /// Jumps to where the whole area, in scene units, is shown as large as it fits, but not smaller
    /// than the wheel goes. Does nothing for an empty one.
    void JumpToArea(const QRectF& area);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ConnectMoves();
    void ConnectBookmarks();
    void FitMap();
    void FitSelection();
    void GoTo();
    void SetZoomAtMouse(bool isOn);
    void ShowFullScreen(bool isOn);
    void AddBookmark();
    void FillBookmarks();
    void GoToBookmark(const Bookmark& bookmark);

    EditorParts m_parts;
    Jumps m_jumps;
    Bookmarks m_bookmarks;
    QList<QAction*> m_listed;
};
