#include "tool/FieldCounts.h"

void FieldCounts::Add(const raster::BitFieldRaster& fields)
{
    m_bits = fields.Bits();
    // Most words equal the one before, so equal words are counted together.
    const quint32* word = fields.Words();
    const quint32* end = word + fields.WordCount();
    while (word != end) {
        const quint32* begin = word;
        while (word != end && *word == *begin) {
            ++word;
        }
        // Most bytes are 0. They are not counted, because nobody reads that count.
        auto counts = m_bytes.begin();
        for (quint32 rest = *begin; rest != 0; rest >>= 8U) {
            (*counts++)[rest & 0xFFU] += word - begin;
        }
    }
}

qint64 FieldCounts::Of(int bit) const
{
    qint64 sum = 0;
    for (int place = bit; m_bits > bit && place < 32; place += m_bits) {
        const ByteCounts& counts = m_bytes[static_cast<std::size_t>(place / 8)];
        for (quint32 value = 0; value < counts.size(); ++value) {
            if ((value >> place % 8 & 1U) != 0) {
                sum += counts[value];
            }
        }
    }
    return sum;
}
