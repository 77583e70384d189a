#pragma once

#include "World.h"

namespace generator {

/// The areas as a designer would draw them: they follow the picture, with rounded edges and without
/// tiny patches.
class LayerMasks
{
public:
    explicit LayerMasks(const World& world);

    Mask Coast() const;
    Mask Harbours() const;
    Mask FishingGrounds() const;
    Mask FreshWater() const;
    Mask Swamps() const;
    Mask Forest() const;
    Mask DeepForest() const;
    Mask Meadows() const;
    Mask Farmland() const;
    Mask Villages() const;
    Mask Towns() const;
    Mask Roads() const;
    Mask NorthHills() const;
    Mask SnowPeaks() const;
    Mask MilitaryZones() const;
    Mask Airfields() const;
    Mask Isles() const;

private:
    /// The cells for which chooses(x, y, cell) is true; only those on land by default.
    template <typename Chooser>
    Mask Where(Chooser chooses) const;
    Mask Compounds(bool isAirfield) const;
    Mask Settlements(bool isTown) const;

    const World& m_world;
};

} // namespace generator
