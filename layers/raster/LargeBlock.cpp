#include "layers/raster/LargeBlock.h"

#include <atomic>
#include <cstdlib>
#include <memory>

#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace raster {
namespace {

constexpr std::size_t LargePage = std::size_t(2) << 20;

uchar* Allocate(qint64 byteCount)
{
    const std::size_t size =
        (static_cast<std::size_t>(byteCount) + LargePage - 1) & ~(LargePage - 1);
    void* bytes = std::aligned_alloc(LargePage, size);
#ifdef MADV_HUGEPAGE
    if (bytes) {
        // Where it is refused the pages are small.
        madvise(bytes, size, MADV_HUGEPAGE);
    }
#endif
    return static_cast<uchar*>(bytes);
}

std::atomic<LargeBlock*> spare{nullptr};

} // namespace

LargeBlock::LargeBlock(uchar* bytes, qint64 byteCount)
    : m_bytes(bytes)
    , m_byteCount(byteCount)
{
}

LargeBlock::~LargeBlock()
{
    std::free(m_bytes);
}

LargeBlock* LargeBlock::Take(qint64 byteCount)
{
    LargeBlock* kept = spare.exchange(nullptr);
    if (kept && kept->m_byteCount == byteCount) {
        return kept;
    }
    delete kept;
    uchar* bytes = Allocate(byteCount);
    return bytes ? new LargeBlock(bytes, byteCount) : nullptr;
}

void LargeBlock::GiveBack(void* block)
{
    auto* given = static_cast<LargeBlock*>(block);
    if (Keeps(given->m_byteCount)) {
        given = spare.exchange(given);
    }
    delete given;
}

} // namespace raster
