#pragma once

#include <QtGlobal>

namespace raster {

/// The smallest power of two that is at least n; 0 for n = 0 and for n above 2^31.
quint32 NextPowerOfTwo(quint32 n);

/// True for 1, 2, 4, 8, 16 and 32, the possible widths of a field in bits.
bool IsFieldSize(qint64 bits);

/// The bits of each field in an area map section with so many flag types. No field size if a map
/// has no room for them: 0 for none, 64 and more for more than 32.
int FieldBits(int flagTypeCount);

/// The bits of a field of that size.
constexpr quint32 FieldMask(int bits)
{
    return 0xFFFFFFFFU >> (32 - bits);
}

/// How the rows of an area map section hold their pixels: 32 / bits pixels to a 32-bit word, the
/// leftmost pixel in the most significant field. If the width is no multiple of the pixels per
/// word, no word holds the rightmost pixels.
class FieldLayout
{
public:
    /// width: the pixels of a row. Without a field size, and with a width of 0 or below, rows have
    /// no words.
    FieldLayout(int bits, int width)
        : m_hasFields(IsFieldSize(bits))
        , m_bits(m_hasFields ? bits : 32)
        , m_wordsPerRow(m_hasFields ? qMax(width, 0) / (32 / bits) : 0)
    {
    }

    /// False without a field size, as in a section without types.
    bool HasFields() const { return m_hasFields; }

    /// 32 without a field size.
    int Bits() const { return m_bits; }
    int PixelsPerWord() const { return 32 / m_bits; }
    qint64 WordsPerRow() const { return m_wordsPerRow; }
    /// The number of pixels of a row that the words hold.
    int FieldsPerRow() const { return static_cast<int>(m_wordsPerRow) * PixelsPerWord(); }
    /// True if a word holds the column.
    bool Holds(int x) const { return x >= 0 && x < FieldsPerRow(); }
    /// The word of the row that holds the column. Ask Holds first, here and below.
    qint64 WordAt(int x) const { return x / PixelsPerWord(); }
    /// The field of the column in that word.
    quint32 FieldIn(quint32 word, int x) const
    {
        const int shift = (PixelsPerWord() - 1 - x % PixelsPerWord()) * m_bits;
        return (word >> shift) & FieldMask(m_bits);
    }
    /// The part of the flags that a field keeps.
    quint32 Kept(quint32 flags) const { return flags & FieldMask(m_bits); }

private:
    bool m_hasFields;
    int m_bits;
    qint64 m_wordsPerRow;
};

} // namespace raster
