#pragma once

#include "layers/raster/PixelBits.h"
#include "layers/raster/Region.h"

#include <QtAlgorithms>

#include <new>

namespace raster {

/// What make() returns; an empty region when there is no memory for it.
template <typename Make>
Region RegionOrNone(Make make)
{
    try {
        return make();
    } catch (const std::bad_alloc&) {
        return {};
    }
}

/// Adds pixels to the end of a region, row by row and from left to right.
class SpanWriter
{
public:
    explicit SpanWriter(Region& region)
        : m_region(region)
    {
    }

    void BeginRow(int y) { m_y = y; }
    /// Bit i tells if the pixel x + i is in. Pixels that no word tells of are out.
    void AddPixels(int x, quint64 bits)
    {
        if (x != m_next) {
            EndRow();
        }
        AddEdges(x, bits ^ (bits << 1 | (m_isOpen ? 1 : 0)));
        m_next = x + WordLength;
    }
    /// Bit i tells that the pixels from x + i on are in if those before are out, or the reverse.
    void AddEdges(int x, quint64 edges)
    {
        for (; edges != 0; edges &= edges - 1) {
            const int at = x + static_cast<int>(qCountTrailingZeroBits(edges));
            if (m_isOpen) {
                m_region.push_back({m_y, m_begin, at});
            }
            m_begin = at;
            m_isOpen = !m_isOpen;
        }
    }
    /// Follows the last pixels of each row.
    void EndRow()
    {
        if (m_isOpen) {
            m_region.push_back({m_y, m_begin, m_next});
            m_isOpen = false;
        }
    }

private:
    Region& m_region;
    int m_y = 0;
    int m_begin = 0;
    int m_next = 0;
    bool m_isOpen = false;
};

} // namespace raster
