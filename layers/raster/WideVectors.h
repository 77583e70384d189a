#pragma once

// What compilers offer beyond the language. Without them the same results come from plain loops; a
// portable build has those only.
#if defined(__GNUC__) && !defined(QUILLMAP_PORTABLE)
#define QUILLMAP_VECTORS
#endif

/// In front of a function whose loops gain from vectors of 32 bytes: it is compiled once more for
/// processors that have them, and the program's loader chooses. The sanitizers' run-time libraries
/// are not up yet when it does, so their builds have the plain function only.
#if defined(QUILLMAP_VECTORS) && !defined(__clang__) && defined(__x86_64__) &&                     \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QUILLMAP_WIDE_VECTORS __attribute__((target_clones("default", "avx2")))
#else
#define QUILLMAP_WIDE_VECTORS
#endif
