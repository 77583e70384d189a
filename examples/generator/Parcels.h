#pragma once

#include "Grid.h"

namespace generator {

/// A field of a farm, as a place in it sees it.
struct Parcel
{
    std::uint32_t id;
    /// Pixels to the edge of the field.
    float toEdge;
    /// Pixels across the furrows.
    float furrow;
};

/// The whole world is parcelled out, in blocks of strips that lie their own way; farmland shows
/// which parcels are used.
Parcel ParcelAt(Point place);

} // namespace generator
