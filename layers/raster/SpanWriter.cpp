#include "layers/raster/SpanWriter.h"

#include "layers/raster/PixelBits.h"
#include "layers/raster/WideVectors.h"

#include <QtAlgorithms>

#include <algorithm>

namespace raster {
namespace {

/// So many words are searched for edges before the spans between these are written.
constexpr int FewWords = 16;
/// So many edges of a word are written without asking how many there are.
constexpr int UsualEdges = 4;

/// Words without edges are passed over in groups: whether a single one has any is hard for the
/// processor to foresee.
constexpr int GroupWords = 4;

/// Writes the places of the set bits and returns their end. Up to UsualEdges places beyond the end
/// are overwritten.
QUILLMAP_WIDE_VECTORS
quint16* FindEdges(int x, const quint64* words, int count, quint16* edges)
{
    for (int i = 0; i < count; ++i) {
        if (i % GroupWords == 0 && i + GroupWords <= count &&
            (words[i] | words[i + 1] | words[i + 2] | words[i + 3]) == 0) {
            i += GroupWords - 1;
            continue;
        }
        const int begin = x + i * WordLength;
        quint64 rest = words[i];
        quint16* const end = edges + qPopulationCount(rest);
        for (int k = 0; k < UsualEdges; ++k, rest &= rest - 1) {
            // The highest bit stands for the bits that are missing.
            edges[k] = static_cast<quint16>(begin + int(qCountTrailingZeroBits(rest | HighestBit)));
        }
        for (edges += UsualEdges; edges < end; ++edges, rest &= rest - 1) {
            *edges = static_cast<quint16>(begin + int(qCountTrailingZeroBits(rest)));
        }
        edges = end;
    }
    return edges;
}

} // namespace

void SpanWriter::AddEdges(int x, const quint64* words, int count)
{
    for (int i = 0; i < count; i += FewWords) {
        AddFewEdges(x + i * WordLength, words + i, std::min(count - i, FewWords));
    }
}

void SpanWriter::EndRun(int x)
{
    if (m_isOpen) {
        m_region.push_back({m_y, m_begin, x});
        m_isOpen = false;
    }
}

void SpanWriter::AddFewEdges(int x, const quint64* words, int count)
{
    quint16 edges[1 + FewWords * WordLength + UsualEdges];
    edges[0] = m_begin;
    const quint16* const end = FindEdges(x, words, count, edges + 1);
    const quint16* edge = edges + (m_isOpen ? 0 : 1);
    for (; end - edge >= 2; edge += 2) {
        m_region.push_back({m_y, edge[0], edge[1]});
    }
    m_isOpen = edge < end;
    m_begin = m_isOpen ? *edge : m_begin;
}

} // namespace raster
