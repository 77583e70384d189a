#pragma once

#include <cstddef>

namespace raster {

/// Memory as platform::AllocatePages gives it. Throws std::bad_alloc when there is none.
void* AllocatePages(std::size_t byteCount);
void FreePages(void* bytes, std::size_t byteCount);

/// For vectors that may hold many megabytes: fresh memory from the C library comes in small pages,
/// which takes longer than what is computed into it.
template <typename T>
class PageAllocator
{
public:
    using value_type = T;

    PageAllocator() = default;
    template <typename Other>
    PageAllocator(const PageAllocator<Other>&)
    {
    }

    T* allocate(std::size_t count)
    {
        constexpr std::size_t most = std::size_t(-1) / 2 / sizeof(T);
        return static_cast<T*>(AllocatePages(count <= most ? count * sizeof(T) : std::size_t(-1)));
    }
    void deallocate(T* values, std::size_t count) { FreePages(values, count * sizeof(T)); }

    friend bool operator==(PageAllocator, PageAllocator) { return true; }
    friend bool operator!=(PageAllocator, PageAllocator) { return false; }
};

} // namespace raster
