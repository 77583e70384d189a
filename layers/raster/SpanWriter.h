#pragma once

#include "layers/raster/Region.h"

#include <QtGlobal>

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

/// Adds runs of pixels to the end of a region, row by row and from left to right.
class SpanWriter
{
public:
    explicit SpanWriter(Region& region)
        : m_region(region)
    {
    }

    void BeginRow(int y) { m_y = y; }
    /// A set bit says that a run begins or ends there, in turn. Bit i of word k is pixel
    /// x + 64 k + i.
    void AddEdges(int x, const quint64* words, int count);
    /// Ends a run that has no end yet.
    void EndRun(int x);

private:
    void AddFewEdges(int x, const quint64* words, int count);

    Region& m_region;
    int m_y = 0;
    bool m_isOpen = false;
    quint16 m_begin = 0;
};

} // namespace raster
