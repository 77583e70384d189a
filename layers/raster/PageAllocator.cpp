#include "layers/raster/PageAllocator.h"

#include "platform/PageMemory.h"

#include <new>

namespace raster {

void* AllocatePages(std::size_t byteCount)
{
    void* bytes = platform::AllocatePages(byteCount);
    if (!bytes) {
        throw std::bad_alloc();
    }
    return bytes;
}

void FreePages(void* bytes, std::size_t byteCount)
{
    platform::FreePages(bytes, byteCount);
}

} // namespace raster
