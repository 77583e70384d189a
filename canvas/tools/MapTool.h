#pragma once

#include <QPoint>
#include <QPointF>

#include <Qt>

class Document;
class Layer;
class MainScene;
class MainView;
class QGraphicsSceneMouseEvent;
class QKeyEvent;

/// What a tool works with. The view owns the scene, and the scene its tools.
struct MapToolParts
{
    Document& document;
    MainScene& scene;
    MainView& view;
};

/// One way in which mouse and keys work on the map. The scene hands the events of its present mode
/// to one tool.
class MapTool
{
public:
    explicit MapTool(const MapToolParts& parts)
        : m_parts(parts)
    {
    }
    virtual ~MapTool() = default;
    MapTool(const MapTool&) = delete;
    MapTool& operator=(const MapTool&) = delete;

    virtual void Press(QGraphicsSceneMouseEvent& event) = 0;
    /// Qt reports a quick second press as a double click; most tools treat it as a press.
    virtual void DoublePress(QGraphicsSceneMouseEvent& event) { Press(event); }
    virtual void Move(QGraphicsSceneMouseEvent& event);
    virtual void Release(QGraphicsSceneMouseEvent& event);
    /// Returns whether the key is one of the tool's.
    virtual bool PressKey(const QKeyEvent& /*event*/) { return false; }
    /// Repeats the action of the keys that are held. The view calls it some 16 times a second.
    virtual void RepeatKeys() {}

    /// True while a press waits for its release.
    virtual bool IsBusy() const { return false; }
    /// Ends what is under way where it is, because its release may never come.
    virtual void Finish() {}
    /// True while there is something that Cancel takes back. Some tools need several presses.
    virtual bool IsUnderWay() const { return IsBusy(); }
    /// Takes back what is under way; nothing of it remains.
    virtual void Cancel() {}
    /// Takes back what the press that is held has begun: it was the first finger of a pinch.
    virtual void CancelPress() { Cancel(); }
    /// Another tool or mode comes next.
    virtual void Leave() { Finish(); }

    /// Over the map. The arrow stands for the view's own one.
    virtual Qt::CursorShape Cursor() const { return Qt::ArrowCursor; }
    /// Shift or Ctrl was pressed or released.
    virtual void FollowModifiers(Qt::KeyboardModifiers /*modifiers*/) {}
    /// This layer is painted from now on; null for none.
    virtual void FollowLayer(Layer* /*layer*/) {}

protected:
    const MapToolParts& Parts() const { return m_parts; }
    /// The scene position of the mouse, also between the view's pixels.
    QPointF PositionOf(const QGraphicsSceneMouseEvent& event) const;
    /// The layer pixel under the mouse, which may lie beside the map.
    QPoint PixelOf(const QGraphicsSceneMouseEvent& event) const;

private:
    MapToolParts m_parts;
};
