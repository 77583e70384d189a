#pragma once

/// What the mouse does on the map.
enum class SceneMode
{
    None = 0,
    Pan = 1,
    Paint = 2,
    Insert = 3,
    Select = 4,
    Query = 5,
};
