#pragma once

#include "layers/raster/StructuringElement.h"

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

    RowReach(const DiscShape& disc, QSize picture);

    /// The values of a row of 0 and 255, valid until the next call. flip: 0 or 255, inverts what is
    /// read.
    const T* Of(const uchar* pixels, uchar flip);
    /// The same, and keeps what Recall needs: at most half a byte a pixel.
    const T* Remember(const uchar* pixels, uchar flip);
    /// The values of the row remembered last, which it forgets.
    const T* Recall(const uchar* pixels, uchar flip);

private:
    bool FindRuns(const uchar* pixels, uchar set, bool isPatient);
    void FillByRuns(std::size_t firstEdge);
    void FillGap(T* reach, int length, bool hasLeft, bool hasRight) const;
    bool FillByDistances(const uchar* pixels, uchar set);

    int m_width;
    int m_radius;
    bool m_isBusy = false;
    /// The values by their distance from the nearest set pixel, 0 to m_radius, and backwards.
    std::vector<T> m_outward;
    std::vector<T> m_inward;
    /// The first set pixel and the first clear one in turn, of the row and of the remembered ones
    /// before it, and where each of those begins.
    std::vector<int> m_edges;
    std::vector<std::size_t> m_remembered;
    std::vector<uchar> m_distances;
    std::vector<uchar> m_nearer;
    std::vector<T> m_reach;
};

} // namespace raster
