#include "platform/PageMemory.h"

#include <cstdlib>

namespace platform {

void* AllocatePages(std::size_t byteCount)
{
    return std::calloc(byteCount, 1);
}

void FreePages(void* bytes, std::size_t)
{
    std::free(bytes);
}

void KeepFreedMemory(int) {}

} // namespace platform
