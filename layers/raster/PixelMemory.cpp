#include "layers/raster/PixelMemory.h"

#include "platform/PageMemory.h"

#include <atomic>
#include <memory>
#include <new>
#include <utility>

namespace raster {
namespace {

/// The masks of a dense world, 8192 pixels a side, are kept. Larger blocks are needed elsewhere.
constexpr std::size_t LargestKept = std::size_t(64) << 20;

/// Owned. A plain pointer, because memory may still be released while the program ends.
std::atomic<PixelMemory*> kept{nullptr};

} // namespace

PixelMemory PixelMemory::Zeroed(std::size_t byteCount)
{
    return {platform::AllocatePages(byteCount), byteCount, false};
}

PixelMemory PixelMemory::Unfilled(std::size_t byteCount)
{
    std::unique_ptr<PixelMemory> block(kept.exchange(nullptr));
    if (block && block->m_byteCount == byteCount) {
        block->m_isReusable = true;
        return std::move(*block);
    }
    block.reset();
    return {platform::AllocatePages(byteCount), byteCount, true};
}

PixelMemory::~PixelMemory()
{
    const bool isKept = m_isReusable && m_bytes && m_byteCount <= LargestKept;
    std::unique_ptr<PixelMemory> block(isKept ? new (std::nothrow) PixelMemory : nullptr);
    if (block) {
        block->Swap(*this);
        block->m_isReusable = false;
        block.reset(kept.exchange(block.release()));
    }
    platform::FreePages(m_bytes, m_byteCount);
}

} // namespace raster
