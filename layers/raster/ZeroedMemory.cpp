#include "layers/raster/ZeroedMemory.h"

#include <cstdlib>

// The sanitizers watch the allocator's memory only.
#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
#define QUILLMAP_HUGE_PAGES
#include <sys/mman.h>
#endif

namespace raster {

#ifdef QUILLMAP_HUGE_PAGES
namespace {

constexpr std::size_t HugePage = std::size_t(2) << 20;

constexpr std::size_t RoundedUp(std::size_t count)
{
    return (count + HugePage - 1) / HugePage * HugePage;
}

/// Maps whole huge pages, which begin at a multiple of their size. Null when that fails.
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
    // Without huge pages it is still zeroed memory.
    madvise(begin + before, byteCount, MADV_HUGEPAGE);
    return begin + before;
}

} // namespace
#endif

ZeroedMemory::ZeroedMemory(std::size_t byteCount)
{
#ifdef QUILLMAP_HUGE_PAGES
    constexpr std::size_t limit = ~std::size_t(0) / 2;
    if (byteCount >= HugePage && byteCount < limit) {
        m_mappedCount = RoundedUp(byteCount);
        m_bytes = MapHugePages(m_mappedCount);
        return;
    }
#endif
    m_bytes = std::calloc(byteCount, 1);
}

ZeroedMemory::~ZeroedMemory()
{
#ifdef QUILLMAP_HUGE_PAGES
    if (m_mappedCount > 0) {
        if (m_bytes) {
            munmap(m_bytes, m_mappedCount);
        }
        return;
    }
#endif
    std::free(m_bytes);
}

} // namespace raster
