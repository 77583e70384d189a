#include "tool/FieldCounts.h"

#include <QtAlgorithms>

namespace {

/// The bit 0 of each field.
quint32 LowBits(int bits)
{
    return bits == 32 ? 1 : 0xFFFFFFFFU / ((1U << bits) - 1);
}

} // namespace

void FieldCounts::AddWord(quint32 word, qint64 times, int bits)
{
    if (word == 0) {
        return;
    }
    const quint32 low = LowBits(bits);
    quint32 any = 0;
    for (int bit = 0; bit < bits; ++bit) {
        const quint32 set = word >> bit & low;
        any |= set;
        m_counts[static_cast<std::size_t>(bit)] += times * qint64(qPopulationCount(set));
    }
    m_any += times * qint64(qPopulationCount(any));
}

void FieldCounts::Add(const raster::BitFieldRaster& fields)
{
    // Most words are like the one before.
    const quint32* word = fields.Words();
    const quint32* end = word + fields.WordCount();
    while (word != end) {
        const quint32* begin = word;
        while (word != end && *word == *begin) {
            ++word;
        }
        AddWord(*begin, word - begin, fields.Bits());
    }
}
