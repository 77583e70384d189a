#pragma once

#include "app/Tracked.h"
#include "canvas/PixelLimit.h"
#include "layers/Layer.h"

enum class PaintToolKind
{
    Brush,
    Line,
    Rectangle,
    Ellipse,
    Polygon,
    Lasso,
    Fill,
    Pick,
};

/// Where the tools may change pixels, seen from another layer.
enum class PaintWithin
{
    Anywhere,
    Inside,
    Outside,
};

/// What a fill spreads over from the pixel under the mouse.
enum class FillBounds
{
    /// The connected pixels that are alike in the current layer.
    Layer,
    /// The connected pixels that are alike in the current layer and in each ticked one.
    Ticked,
    /// All pixels of the current layer that are like it, connected or not.
    All,
};

/// What the user has set for all tools of the Paint mode.
struct PaintOptions
{
    PaintWithin within = PaintWithin::Anywhere;
    Tracked<Layer> withinLayer;
    FillBounds fillBounds = FillBounds::Layer;

    /// What may be painted on a layer of this size; nothing when the layer to paint within is gone.
    bool HasLimit() const { return within != PaintWithin::Anywhere; }
    bool IsUsable(QSize size) const
    {
        const Layer* layer = withinLayer;
        return !HasLimit() || (layer && layer->Image().size() == size);
    }
    /// As the layer is now. The options must be usable.
    PixelLimit Limit() const
    {
        const Layer* layer = withinLayer;
        return HasLimit() && layer ? PixelLimit(layer->Image(), within == PaintWithin::Inside)
                                   : PixelLimit();
    }
};
