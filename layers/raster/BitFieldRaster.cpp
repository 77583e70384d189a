#include "layers/raster/BitFieldRaster.h"

namespace raster {

quint32 NextPowerOfTwo(quint32 n)
{
    if (n == 0) {
        return 0;
    }
    // Smears the highest set bit of n - 1 to the right (Warren, Hacker's Delight, 2002).
    n -= 1;
    for (const int shift : {1, 2, 4, 8, 16}) {
        n |= n >> shift;
    }
    return n + 1;
}

bool IsFieldSize(qint64 bits)
{
    return bits > 0 && bits <= 32 && NextPowerOfTwo(static_cast<quint32>(bits)) == bits;
}

BitFieldRaster::BitFieldRaster(int bits, int width, int height)
    : m_bits(bits)
    , m_height(qMax(height, 0))
    , m_wordsPerRow(0)
{
    if (!IsFieldSize(bits)) {
        m_bits = 32;
        m_height = 0;
        return;
    }
    m_wordsPerRow = qMax(width, 0) / PixelsPerWord();
    if (WordCount() > 0) {
        m_words = PixelMemory::Zeroed(static_cast<std::size_t>(WordCount()) * sizeof(quint32));
    }
}

bool BitFieldRaster::Holds(int x, int row) const
{
    return !m_words.IsEmpty() && x >= 0 && x < FieldsPerRow() && row >= 0 && row < m_height;
}

quint32 BitFieldRaster::Get(int x, int row) const
{
    if (!Holds(x, row)) {
        return 0;
    }
    const quint32 word = Words()[row * m_wordsPerRow + x / PixelsPerWord()];
    return (word >> Shift(x)) & FieldMask();
}

} // namespace raster
