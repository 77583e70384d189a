#pragma once

#include <QtGlobal>

#include <cstddef>
#include <utility>

namespace raster {

/// Memory for the pixels of large images and rasters. May be used from any thread.
///
/// Fresh memory from the system costs several times what is computed into it, and the C library
/// returns blocks above 32 MiB to the system at once. Therefore the last unfilled block that was
/// released is kept for the next one of its size. It stays until a block of another size is asked
/// for or the program ends.
class PixelMemory
{
public:
    /// Blocks for which Unfilled is faster than what the C library gives.
    static bool IsLarge(std::size_t byteCount) { return byteCount > std::size_t(32) << 20; }

    /// Empty.
    PixelMemory() = default;
    /// All bytes are 0; large blocks take memory only where something is written. Empty when there
    /// is no memory for that many bytes.
    static PixelMemory Zeroed(std::size_t byteCount);
    /// The bytes are those of whatever was there before. Empty when there is no memory.
    static PixelMemory Unfilled(std::size_t byteCount);
    ~PixelMemory();
    PixelMemory(PixelMemory&& other) noexcept { Swap(other); }
    PixelMemory& operator=(PixelMemory&& other) noexcept
    {
        Swap(other);
        return *this;
    }
    Q_DISABLE_COPY(PixelMemory)

    bool IsEmpty() const { return m_bytes == nullptr; }
    template <typename T>
    T* As() const
    {
        return static_cast<T*>(m_bytes);
    }

private:
    PixelMemory(void* bytes, std::size_t byteCount, bool isReusable)
        : m_bytes(bytes)
        , m_byteCount(byteCount)
        , m_isReusable(isReusable)
    {
    }
    void Swap(PixelMemory& other) noexcept
    {
        std::swap(m_bytes, other.m_bytes);
        std::swap(m_byteCount, other.m_byteCount);
        std::swap(m_isReusable, other.m_isReusable);
    }

    void* m_bytes = nullptr;
    std::size_t m_byteCount = 0;
    bool m_isReusable = false;
};

} // namespace raster
