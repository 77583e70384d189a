#pragma once

#include "layers/raster/FieldLayout.h"

#include <QtEndian>
#include <QtGlobal>

#include <algorithm>

namespace raster {

/// The type that holds one unpacked field of that many bits.
template <int Bits>
struct FieldOfBits
{
    using Type = quint8;
};
template <>
struct FieldOfBits<16>
{
    using Type = quint16;
};
template <>
struct FieldOfBits<32>
{
    using Type = quint32;
};
template <int Bits>
using Field = typename FieldOfBits<Bits>::Type;

/// Packs the fields of eight pixels into the low bits of the result, in three steps that each close
/// half of the gaps. The input has one field a byte, the leftmost pixel in the top byte.
template <int Bits>
quint32 PackEight(quint64 fields)
{
    constexpr quint64 two = (quint64(1) << (2 * Bits)) - 1;
    constexpr quint64 four = (quint64(1) << (4 * Bits)) - 1;
    fields = (fields | fields >> (8 - Bits)) & (two * 0x0001000100010001U);
    fields = (fields | fields >> (16 - 2 * Bits)) & (four * 0x0000000100000001U);
    return static_cast<quint32>(fields | fields >> (32 - 4 * Bits));
}

/// Packs 32 / Bits fields to a word, the leftmost in the most significant place.
template <int Bits>
void PackFields(const Field<Bits>* fields, quint32* words, qint64 wordCount)
{
    if constexpr (Bits == 32) {
        std::copy(fields, fields + wordCount, words);
    } else if constexpr (Bits == 16) {
        for (qint64 w = 0; w < wordCount; ++w) {
            words[w] = quint32(fields[2 * w]) << 16 | fields[2 * w + 1];
        }
    } else if constexpr (Bits == 8) {
        qFromBigEndian<quint32>(fields, wordCount, words);
    } else {
        for (qint64 w = 0; w < wordCount; ++w) {
            quint64 word = 0;
            for (int i = 0; i < 4 / Bits; ++i, fields += 8) {
                word = word << (8 * Bits) | PackEight<Bits>(qFromBigEndian<quint64>(fields));
            }
            words[w] = static_cast<quint32>(word);
        }
    }
}

/// Unpacks a word; the reverse of PackFields.
template <int Bits>
void UnpackFields(const quint32* words, qint64 wordCount, Field<Bits>* fields)
{
    for (qint64 w = 0; w < wordCount; ++w) {
        for (int shift = 32 - Bits; shift >= 0; shift -= Bits) {
            *fields++ = static_cast<Field<Bits>>((words[w] >> shift) & FieldMask(Bits));
        }
    }
}

} // namespace raster
