#pragma once

#include <cstdlib>
#include <memory>

namespace raster {

struct FreeDeleter
{
    void operator()(void* memory) const { std::free(memory); }
};

/// Zeroed memory whose large blocks cost nothing until they are written: the system hands out
/// pages on first touch, so a mostly clear raster takes the memory of what is set in it.
template <typename T>
using ZeroedArray = std::unique_ptr<T[], FreeDeleter>;

/// Null when there is no memory for that many elements.
template <typename T>
ZeroedArray<T> MakeZeroed(std::size_t count)
{
    return ZeroedArray<T>(static_cast<T*>(std::calloc(count, sizeof(T))));
}

} // namespace raster
