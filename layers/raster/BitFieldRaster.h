#pragma once

#include "layers/raster/FieldLayout.h"
#include "layers/raster/PixelMemory.h"

#include <QtGlobal>

namespace raster {

/// The packed rows of an area map section, in file order (bottom row of the map first). FieldLayout
/// says how a row holds its pixels.
class BitFieldRaster
{
public:
    /// bits: 1, 2, 4, 8, 16 or 32. Other values, and sizes of 0 and below, make a raster without
    /// words.
    BitFieldRaster(int bits, int width, int height);

    int Bits() const { return m_layout.Bits(); }
    int PixelsPerWord() const { return m_layout.PixelsPerWord(); }
    qint64 WordsPerRow() const { return m_layout.WordsPerRow(); }
    qint64 WordCount() const { return WordsPerRow() * m_height; }
    int Height() const { return m_height; }
    /// The number of pixels of a row that the words hold.
    int FieldsPerRow() const { return m_layout.FieldsPerRow(); }
    /// False if there was no memory for the words.
    bool IsValid() const { return WordCount() == 0 || !m_words.IsEmpty(); }

    /// 0 outside the raster.
    quint32 Get(int x, int row) const;

    quint32* Row(int row) { return Words() + row * WordsPerRow(); }
    const quint32* Words() const { return m_words.As<quint32>(); }
    quint32* Words() { return m_words.As<quint32>(); }

private:
    bool Holds(int x, int row) const;

    FieldLayout m_layout;
    int m_height;
    PixelMemory m_words;
};

} // namespace raster
