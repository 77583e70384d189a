#pragma once

#include "app/Tracked.h"
#include "canvas/tools/MapTool.h"
#include "canvas/tools/PaintOptions.h"
#include "layers/raster/Region.h"

#include <QPainterPath>
#include <QPointF>
#include <QSize>

/// A tool that draws an outline first, and paints its pixels on the current layer when it is done;
/// the right button erases them. Each shape is one step of the history. Corners are scene
/// positions. An unfinished shape is dropped when another layer or tool is chosen.
class ShapeTool : public MapTool
{
public:
    ShapeTool(const MapToolParts& parts, PaintToolKind kind)
        : MapTool(parts)
        , m_kind(kind)
    {
    }

    bool PressKey(const QKeyEvent& event) override;
    bool IsBusy() const override { return m_isHeld; }
    void Finish() override { Cancel(); }
    bool IsUnderWay() const override { return m_button != Qt::NoButton; }
    void Cancel() override;
    void Leave() override { Cancel(); }
    Qt::CursorShape Cursor() const override { return Qt::CrossCursor; }
    void FollowLayer(Layer* layer) override;

protected:
    PaintToolKind Kind() const { return m_kind; }
    /// Begins a shape, or goes on with it. False when the press is none of it: it has another
    /// button, or there is no layer.
    bool Begin(const QGraphicsSceneMouseEvent& event);
    /// Whether the event is about the button that draws, while it is held.
    bool IsRelease(const QGraphicsSceneMouseEvent& event) const;
    void SetHeld(bool isHeld);
    /// Shows the outline, and the text beside the mouse.
    void Show(const QPainterPath& outline, QPointF mouse, const QString& text) const;
    /// Ends the shape and paints or erases these pixels.
    void Complete(raster::Region pixels);
    /// The size of the current layer.
    QSize LayerSize() const;

    /// "120 x 80 m" and "144.2 m". In scene units.
    static QString SizeText(const QSizeF& size);
    static QString LengthText(QPointF way);

private:
    void Reset();

    PaintToolKind m_kind;
    Qt::MouseButton m_button = Qt::NoButton;
    bool m_isHeld = false;
    Tracked<Layer> m_layer;
};
