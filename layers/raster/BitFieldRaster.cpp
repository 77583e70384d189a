#include "layers/raster/BitFieldRaster.h"

namespace raster {

BitFieldRaster::BitFieldRaster(int bits, int width, int height)
    : m_layout(bits, width)
    , m_height(m_layout.HasFields() ? qMax(height, 0) : 0)
{
    if (WordCount() > 0) {
        m_words = PixelMemory::Zeroed(static_cast<std::size_t>(WordCount()) * sizeof(quint32));
    }
}

bool BitFieldRaster::Holds(int x, int row) const
{
    return !m_words.IsEmpty() && m_layout.Holds(x) && row >= 0 && row < m_height;
}

quint32 BitFieldRaster::Get(int x, int row) const
{
    if (!Holds(x, row)) {
        return 0;
    }
    return m_layout.FieldIn(Words()[row * WordsPerRow() + m_layout.WordAt(x)], x);
}

} // namespace raster
