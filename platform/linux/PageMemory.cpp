#include "platform/PageMemory.h"

#include <malloc.h>
#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>

namespace platform {
namespace {

constexpr std::size_t HugePage = std::size_t(2) << 20;

/// The C library serves small blocks, and refuses what no system has.
bool IsMapped(std::size_t byteCount)
{
#ifdef __SANITIZE_ADDRESS__
    // The sanitizer watches the memory of the C library only.
    static_cast<void>(byteCount);
    return false;
#else
    return byteCount >= HugePage && byteCount <= SIZE_MAX / 2;
#endif
}

constexpr std::size_t RoundedUp(std::size_t count)
{
    return (count + HugePage - 1) / HugePage * HugePage;
}

/// Maps whole huge pages, which begin at a multiple of their size. Returns null on failure.
void* MapHugePages(std::size_t byteCount)
{
    const std::size_t mappedCount = byteCount + HugePage;
    void* mapped =
        mmap(nullptr, mappedCount, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) {
        return nullptr;
    }
    char* begin = static_cast<char*>(mapped);
    const std::size_t before =
        RoundedUp(reinterpret_cast<std::size_t>(begin)) - reinterpret_cast<std::size_t>(begin);
    if (before > 0) {
        munmap(begin, before);
    }
    munmap(begin + before + byteCount, HugePage - before);
    // Where the system refuses huge pages, the pages are small.
    madvise(begin + before, byteCount, MADV_HUGEPAGE);
    return begin + before;
}

} // namespace

void* AllocatePages(std::size_t byteCount)
{
    return IsMapped(byteCount) ? MapHugePages(RoundedUp(byteCount)) : std::calloc(byteCount, 1);
}

void FreePages(void* bytes, std::size_t byteCount)
{
    if (!IsMapped(byteCount)) {
        std::free(bytes);
    } else if (bytes) {
        munmap(bytes, RoundedUp(byteCount));
    }
}

void KeepFreedMemory(int byteCount)
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, byteCount);
    mallopt(M_TRIM_THRESHOLD, byteCount);
#else
    static_cast<void>(byteCount);
#endif
}

} // namespace platform
