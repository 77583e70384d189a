#include "layers/raster/EdgeStack.h"

#include <algorithm>
#include <new>

namespace raster {
namespace {

constexpr std::size_t LargestByteCount = std::size_t(32) << 20;

std::size_t ByteCount(QSize picture)
{
    const auto width = static_cast<std::size_t>(picture.width());
    const auto height = static_cast<std::size_t>(picture.height());
    return std::min(width * height / 2, LargestByteCount);
}

} // namespace

EdgeStack::EdgeStack(QSize picture)
    : m_capacity(ByteCount(picture) / sizeof(int))
    , m_numbers(new (std::nothrow) int[m_capacity])
{
    if (!m_numbers) {
        m_capacity = 0;
    }
}

void EdgeStack::Push(const std::vector<int>& edges)
{
    if (m_rowsWithoutRoom > 0 || edges.size() + 1 > m_capacity - m_size) {
        ++m_rowsWithoutRoom;
        return;
    }
    int* const top = m_numbers.get() + m_size;
    *std::copy(edges.begin(), edges.end(), top) = static_cast<int>(edges.size());
    m_size += edges.size() + 1;
}

EdgeStack::Edges EdgeStack::Pop()
{
    if (m_rowsWithoutRoom > 0) {
        --m_rowsWithoutRoom;
        return {nullptr, nullptr};
    }
    const int* const end = m_numbers.get() + m_size - 1;
    m_size -= static_cast<std::size_t>(*end) + 1;
    return {end - *end, end};
}

} // namespace raster
