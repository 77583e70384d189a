#pragma once

#include "layers/raster/PixelMemory.h"

#include <QtGlobal>

namespace raster {

/// The smallest power of two that is at least n; 0 for n = 0 and for n above 2^31.
quint32 NextPowerOfTwo(quint32 n);

/// True for 1, 2, 4, 8, 16 and 32, the possible widths of a field in bits.
bool IsFieldSize(qint64 bits);

/// The packed rows of an area map section: 32 / bits pixels to a 32-bit word, the leftmost pixel
/// in the most significant field, rows in file order (bottom row of the map first). If the width is
/// no multiple of the pixels per word, the rightmost pixels are left out.
class BitFieldRaster
{
public:
    /// bits: 1, 2, 4, 8, 16 or 32. Other values, and sizes of 0 and below, make a raster without
    /// words.
    BitFieldRaster(int bits, int width, int height);

    int Bits() const { return m_bits; }
    int PixelsPerWord() const { return 32 / m_bits; }
    qint64 WordsPerRow() const { return m_wordsPerRow; }
    qint64 WordCount() const { return m_wordsPerRow * m_height; }
    int Height() const { return m_height; }
    /// The number of pixels of a row that the words hold.
    int FieldsPerRow() const { return static_cast<int>(m_wordsPerRow) * PixelsPerWord(); }
    /// False if there was no memory for the words.
    bool IsValid() const { return WordCount() == 0 || !m_words.IsEmpty(); }

    /// 0 outside the raster.
    quint32 Get(int x, int row) const;

    quint32* Row(int row) { return Words() + row * m_wordsPerRow; }
    const quint32* Words() const { return m_words.As<quint32>(); }
    quint32* Words() { return m_words.As<quint32>(); }

private:
    bool Holds(int x, int row) const;
    int Shift(int x) const { return (PixelsPerWord() - 1 - x % PixelsPerWord()) * m_bits; }
    quint32 FieldMask() const { return 0xFFFFFFFFU >> (32 - m_bits); }

    int m_bits;
    int m_height;
    qint64 m_wordsPerRow;
    PixelMemory m_words;
};

} // namespace raster
