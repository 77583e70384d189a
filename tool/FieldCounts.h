#pragma once

#include "layers/raster/BitFieldRaster.h"

#include <array>

/// In how many fields each bit is set.
class FieldCounts
{
public:
    void Add(const raster::BitFieldRaster& fields);
    qint64 Of(int bit) const { return m_counts[static_cast<std::size_t>(bit)]; }
    /// Fields with any bit.
    qint64 Any() const { return m_any; }

private:
    void AddWord(quint32 word, qint64 times, int bits);

    std::array<qint64, 32> m_counts{};
    qint64 m_any = 0;
};
