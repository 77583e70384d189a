#pragma once

#include "layers/raster/DiscShape.h"
#include "layers/raster/EdgeStack.h"

#include <QSize>

#include <vector>

namespace raster {

/// Computes how far the pixels of one row of a binary mask reach into the rows above and below it.
/// A pixel's value counts the rows, its own included, in which a disc around it still reaches the
/// nearest set pixel of its own row; it is 0 if that pixel is out of reach. T is uchar, qint16 or
/// qint32: the maximum of bytes is one instruction when they are unsigned, that of words when they
/// are signed.
template <typename T>
class RowReach
{
public:
    /// True if T is wide enough for the radius.
    static bool Holds(const DiscShape& disc, QSize picture);

    /// The disc's radius must be more than 15.
    RowReach(const DiscShape& disc, QSize picture);

    /// Returns the values of a row of 0 and 255, which are valid until the next call. flip is 0 or
    /// 255 and is XORed to the pixels.
    const T* Of(const uchar* pixels, uchar flip);
    /// The edges of the row in the last call: the first pixel of each run and of each gap in turn.
    /// Empty if the runs are too short for edges to be useful.
    const std::vector<int>& Edges() const { return m_edges; }
    /// Returns the values of a row with these edges; there must be at least one.
    const T* Of(EdgeStack::Edges edges);
    /// Returns the values of a row whose runs are too short for edges.
    const T* OfBusy(const uchar* pixels, uchar flip);

private:
    void FillGap(int gap, int run);
    void FillByDistances(const uchar* pixels, uchar set);
    void FillUnknown(const uchar* distances);

    int m_width;
    int m_radius;
    int m_farDistance;
    /// The values by distance from the nearest set pixel, from 0 to m_radius, and the same in
    /// reverse order. Both arrays, like m_reach, have room for one more chunk at the end.
    std::vector<T> m_outward;
    std::vector<T> m_inward;
    std::vector<int> m_edges;
    std::vector<int> m_unknown;
    std::vector<uchar> m_distances;
    std::vector<uchar> m_nearer;
    std::vector<T> m_reach;
};

} // namespace raster
