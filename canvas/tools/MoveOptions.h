#pragma once

/// What zones that are dragged come to rest at.
enum class SnapTo
{
    Nothing,
    /// Whole multiples of some metres in X and Z.
    Grid,
    /// Centres and rims.
    Zones,
};

/// How the Select mode moves zones. The user sets it.
struct MoveOptions
{
    /// Metres of one step of the arrow keys; 0 for one layer pixel.
    int nudgeMetres = 0;
    SnapTo snapTo = SnapTo::Nothing;
    /// Metres.
    int gridMetres = 100;
};
