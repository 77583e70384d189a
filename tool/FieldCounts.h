#pragma once

#include "layers/raster/BitFieldRaster.h"

#include <array>

/// Counts in how many fields each bit is set.
class FieldCounts
{
public:
    /// All rasters must have the same number of bits per field.
    void Add(const raster::BitFieldRaster& fields);
    qint64 Of(int bit) const;

private:
    using ByteCounts = std::array<qint64, 256>;

    int m_bits = 0;
    /// How many words have each value in their lowest, second, third and highest byte. Counting
    /// bytes is quicker than looking at every bit of every field.
    std::array<ByteCounts, 4> m_bytes{};
};
