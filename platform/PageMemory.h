#pragma once

#include <cstddef>

namespace platform {

/// Zeroed memory for pixels. Where the system allows, a large block costs nothing until it is
/// written, and comes in huge pages: touching fresh memory in small pages takes many times as long
/// as filling it. Null when there is no memory for that many bytes. May be called from any thread.
void* AllocatePages(std::size_t byteCount);

/// Takes what AllocatePages returned for that byteCount, or null.
void FreePages(void* bytes, std::size_t byteCount);

/// Asks the C library to keep freed blocks of up to that many bytes, and that many in all, for the
/// next allocations: giving them back to the system and getting them cleared again may take longer
/// than the work that is done in them. Does nothing where the C library cannot be asked.
void KeepFreedMemory(int byteCount);

} // namespace platform
