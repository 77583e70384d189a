#pragma once

#include "Grid.h"

namespace generator {

/// The field of a farm at a place.
struct Parcel
{
    std::uint32_t id;
    /// Pixels to the edge of the field.
    float toEdge;
    /// Pixels across the furrows.
    float furrow;
};

/// Divides the whole world into parcels, in blocks of strips with different directions. The
/// farmland decides which parcels are used.
Parcel ParcelAt(Point place);

} // namespace generator
