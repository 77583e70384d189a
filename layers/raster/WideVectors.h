#pragma once

// What compilers offer beyond the language. Without them the same results come from plain loops; a
// portable build has those only.
#if defined(__GNUC__) && !defined(QUILLMAP_PORTABLE)
#define QUILLMAP_VECTORS
#endif

namespace raster {

/// Asks the processor to fetch the memory around the place. Does nothing in a portable build.
inline void Prefetch(const void* place)
{
#ifdef QUILLMAP_VECTORS
    __builtin_prefetch(place);
#else
    static_cast<void>(place);
#endif
}

} // namespace raster

/// In front of a function whose loops gain from vectors of 32 bytes: it is compiled once more for
/// processors that have them, and the program's loader chooses. The sanitizers' run-time libraries
/// are not up yet when it does, so their builds have the plain function only.
#if defined(QUILLMAP_VECTORS) && !defined(__clang__) && defined(__x86_64__) &&                     \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QUILLMAP_WIDE_VECTORS __attribute__((target_clones("default", "avx2")))
#else
#define QUILLMAP_WIDE_VECTORS
#endif
