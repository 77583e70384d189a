#pragma once

#include <QtGlobal>

#include <cstddef>
#include <utility>

namespace raster {

/// Zeroed memory for pixels. Large blocks cost nothing until they are written, and come in huge
/// pages where the system has them: touching fresh memory in small pages takes many times as long
/// as filling it.
class ZeroedMemory
{
public:
    ZeroedMemory() = default;
    /// Empty when there is no memory for that many bytes.
    explicit ZeroedMemory(std::size_t byteCount);
    ~ZeroedMemory();
    ZeroedMemory(ZeroedMemory&& other) noexcept { Swap(other); }
    ZeroedMemory& operator=(ZeroedMemory&& other) noexcept
    {
        Swap(other);
        return *this;
    }
    Q_DISABLE_COPY(ZeroedMemory)

    bool IsEmpty() const { return m_bytes == nullptr; }
    template <typename T>
    T* As() const
    {
        return static_cast<T*>(m_bytes);
    }

private:
    void Swap(ZeroedMemory& other) noexcept
    {
        std::swap(m_bytes, other.m_bytes);
        std::swap(m_mappedCount, other.m_mappedCount);
    }

    void* m_bytes = nullptr;
    /// Bytes mapped from the system; 0 for memory of the allocator.
    std::size_t m_mappedCount = 0;
};

} // namespace raster
