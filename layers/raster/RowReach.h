#pragma once

#include "layers/raster/DiscShape.h"
#include "layers/raster/EdgeStack.h"

#include <QSize>

#include <vector>

namespace raster {

/// How far the pixels of one row of a binary mask reach into the rows above and below it: for each
/// pixel the number of rows, its own included, in which the disc around it holds the nearest set
/// pixel of its own row; 0 where that pixel is out of reach. T is uchar, qint16 or qint32: the
/// maximum of bytes is one instruction when they are unsigned, that of words when they are signed.
template <typename T>
class RowReach
{
public:
    /// True when T is wide enough.
    static bool Holds(const DiscShape& disc, QSize picture);

    /// The disc's radius is more than 15.
    RowReach(const DiscShape& disc, QSize picture);

    /// The values of a row of 0 and 255, valid until the next call. flip: 0 or 255, inverts what is
    /// read.
    const T* Of(const uchar* pixels, uchar flip);
    /// The first set pixel and the first clear one in turn of that row; empty where its runs are
    /// too short for them to be of use.
    const std::vector<int>& Edges() const { return m_edges; }
    /// The values of the row that has these edges, of which there are some.
    const T* Of(EdgeStack::Edges edges);
    /// The values of a row that has none.
    const T* OfBusy(const uchar* pixels, uchar flip);

private:
    void FillGap(int gap, int run);
    void FillByDistances(const uchar* pixels, uchar set);
    void FillUnknown(const uchar* distances);

    int m_width;
    int m_radius;
    int m_farDistance;
    /// The values by their distance from the nearest set pixel, 0 to m_radius, and backwards;
    /// behind them, as behind m_reach, is room for a chunk.
    std::vector<T> m_outward;
    std::vector<T> m_inward;
    std::vector<int> m_edges;
    std::vector<int> m_unknown;
    std::vector<uchar> m_distances;
    std::vector<uchar> m_nearer;
    std::vector<T> m_reach;
};

} // namespace raster
