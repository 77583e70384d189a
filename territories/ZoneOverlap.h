#pragma once

#include "territories/ZoneTable.h"

#include <vector>

/// For each row whether its circle touches or covers another one of the same type, by the numbers
/// that files hold. Circles with a negative radius, or whose numbers are not finite, touch none.
/// 20,000 circles take some milliseconds, also when many lie upon one another.
std::vector<bool> OverlappingRows(const std::vector<ZoneRow>& rows);
