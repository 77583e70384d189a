#pragma once

#include "layers/raster/BitFieldRaster.h"

#include <array>

/// In how many fields each bit is set.
class FieldCounts
{
public:
    /// All rasters have as many bits.
    void Add(const raster::BitFieldRaster& fields);
    qint64 Of(int bit) const;

private:
    using ByteCounts = std::array<qint64, 256>;

    int m_bits = 0;
    /// How many words have which value in their lowest, second, third and highest byte. To count
    /// bytes is quicker than to look at every bit of every field.
    std::array<ByteCounts, 4> m_bytes{};
};
