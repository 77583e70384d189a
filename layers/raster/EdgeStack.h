#pragma once

#include <QSize>

#include <cstddef>
#include <memory>
#include <vector>

namespace raster {

/// Where the runs of rows begin and end, for a second way through a picture from its last row to
/// its first. It takes memory once, at most half a byte a pixel and 32 MiB, and only what it writes
/// is touched. What finds no room, or no memory at all, is not kept.
class EdgeStack
{
public:
    /// The ends of a row's runs.
    struct Edges
    {
        const int* begin;
        const int* end;
        bool IsKept() const { return begin != nullptr; }
        bool IsEmpty() const { return begin == end; }
    };

    explicit EdgeStack(QSize picture);

    void Push(const std::vector<int>& edges);
    /// The edges pushed last, valid until the next Push.
    Edges Pop();

private:
    /// In numbers: each row's edges and behind them their count.
    std::size_t m_capacity;
    std::size_t m_size = 0;
    /// Rows pushed after the last one that found room.
    int m_rowsWithoutRoom = 0;
    std::unique_ptr<int[]> m_numbers;
};

} // namespace raster
