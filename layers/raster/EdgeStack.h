#pragma once

#include <QSize>

#include <cstddef>
#include <memory>
#include <vector>

namespace raster {

/// Keeps where the runs of each row begin and end, for a second pass over a picture from its last
/// row to its first. It allocates memory once, at most half a byte a pixel and 32 MiB, and touches
/// only the part that it writes. Rows for which there is no room or no memory are not kept.
class EdgeStack
{
public:
    /// The positions at which a row's runs begin and end.
    struct Edges
    {
        const int* begin;
        const int* end;
        bool IsKept() const { return begin != nullptr; }
        bool IsEmpty() const { return begin == end; }
    };

    explicit EdgeStack(QSize picture);

    void Push(const std::vector<int>& edges);
    /// Returns the edges that were pushed last. They are valid until the next Push.
    Edges Pop();

private:
    /// Sizes in numbers. Each row stores its edges, followed by their count.
    std::size_t m_capacity;
    std::size_t m_size = 0;
    /// The number of rows pushed since the last one for which there was room.
    int m_rowsWithoutRoom = 0;
    std::unique_ptr<int[]> m_numbers;
};

} // namespace raster
