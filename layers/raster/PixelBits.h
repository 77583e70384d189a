#pragma once

#include "layers/raster/WideVectors.h"

#include <QtGlobal>

#include <algorithm>

#if defined(__SSE2__) && defined(QUILLMAP_VECTORS)
#define QUILLMAP_SSE2
#include <emmintrin.h>
#endif

// Pixels as bits of words: bit i of a word is pixel i.

namespace raster {

/// The number of pixels of a word.
constexpr int WordLength = 64;

/// A word whose bit i is the highest bit of byte i.
inline quint64 HighestBits(const uchar* bytes)
{
    quint64 bits = 0;
#ifdef QUILLMAP_SSE2
    for (int i = 0; i < 4; ++i) {
        const __m128i part = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes) + i);
        bits |= static_cast<quint64>(static_cast<quint32>(_mm_movemask_epi8(part))) << 16 * i;
    }
#else
    for (int i = 0; i < WordLength; ++i) {
        bits |= static_cast<quint64>(bytes[i] >> 7) << i;
    }
#endif
    return bits;
}

/// A word whose bit i tells if pixel i equals the value.
inline quint64 EqualBits(const uchar* pixels, uchar value)
{
    uchar areEqual[WordLength];
    for (int i = 0; i < WordLength; ++i) {
        areEqual[i] = pixels[i] == value ? 255 : 0;
    }
    return HighestBits(areEqual);
}

/// The same for fewer pixels, at least one. The bits of the missing ones are 0.
inline quint64 EqualBits(const uchar* pixels, int count, uchar value)
{
    if (count >= WordLength) {
        return EqualBits(pixels, value);
    }
    uchar word[WordLength];
    std::fill(std::copy_n(pixels, count, word), word + WordLength, static_cast<uchar>(~value));
    return EqualBits(word, value);
}

} // namespace raster
