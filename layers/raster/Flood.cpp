#include "layers/raster/Flood.h"

#include "layers/raster/Mask.h"
#include "layers/raster/PixelBits.h"
#include "layers/raster/PixelMemory.h"
#include "layers/raster/SpanWriter.h"

#include <QtAlgorithms>

#include <algorithm>
#include <cstring>

namespace raster {
namespace {

constexpr quint64 AllBits = ~quint64(0);
constexpr quint64 HighestBit = quint64(1) << (WordLength - 1);

/// One bit a pixel, clear at first. Takes memory only where something is written.
class BitRows
{
public:
    explicit BitRows(QSize size)
        : m_wordCount((size.width() + WordLength - 1) / WordLength)
        , m_memory(PixelMemory::Zeroed(sizeof(quint64) * static_cast<std::size_t>(m_wordCount) *
                                       static_cast<std::size_t>(size.height())))
    {
    }

    /// True when there was no memory.
    bool IsNull() const { return m_memory.IsEmpty(); }
    /// Of a row.
    int WordCount() const { return m_wordCount; }
    quint64* Row(int y) const { return m_memory.As<quint64>() + qint64(y) * m_wordCount; }

    /// The set pixels from the first row to the last.
    Region Pixels(int first, int last) const
    {
        Region region;
        region.reserve(RunCount(first, last));
        SpanWriter writer(region);
        for (int y = first; y <= last; ++y) {
            const quint64* row = Row(y);
            writer.BeginRow(y);
            for (int i = 0; i < m_wordCount; ++i) {
                writer.AddPixels(i * WordLength, row[i]);
            }
            writer.EndRow();
        }
        return region;
    }

private:
    std::size_t RunCount(int first, int last) const
    {
        std::size_t count = 0;
        for (int y = first; y <= last; ++y) {
            const quint64* row = Row(y);
            quint64 before = 0;
            for (int i = 0; i < m_wordCount; ++i) {
                count += qPopulationCount(row[i] & ~(row[i] << 1 | before));
                before = row[i] >> (WordLength - 1);
            }
        }
        return count;
    }

    int m_wordCount;
    PixelMemory m_memory;
};

bool HasPixel(const QImage& mask, QPoint at)
{
    return mask.format() == QImage::Format_Indexed8 && IsMaskSize(mask.size()) &&
           mask.rect().contains(at);
}

/// The runs of set bits that have a seed; all seeds are set bits.
quint64 RunsWith(quint64 bits, quint64 seeds)
{
    // Up to the end of a run by the carry of an addition, which changes what lies above the lowest
    // seed, but for the other seeds.
    quint64 runs = (bits & ~(bits + seeds)) | seeds;
    quint64 below = bits & ~runs;
    if ((below & (runs >> 1)) == 0) {
        return runs;
    }
    // Down to the beginning, twice as far in each step.
    for (int step = 1; step < WordLength; step *= 2) {
        runs |= below & (runs >> step);
        below &= below >> step;
    }
    return runs;
}

/// The run of set bits at the bottom of the word, and the one at its top.
quint64 LowestRun(quint64 bits)
{
    return bits & ~(bits + 1);
}

quint64 HighestRun(quint64 bits)
{
    const auto length =
        bits == AllBits ? WordLength : static_cast<int>(qCountLeadingZeroBits(~bits));
    return length == 0 ? 0 : AllBits << (WordLength - length);
}

/// Fills an area, from row to row: the seed fill of Heckbert (1990), with the bits of words in
/// place of his spans, so that narrow runs side by side are filled together. A row's new pixels are
/// the seeds of the next one. Where they have open pixels beside them in the row they came from,
/// the fill turns back later. Each pixel is filled once, so the time grows with the words that the
/// area has in each row, whatever its shape.
class Flood
{
public:
    Flood(const QVector<QImage>& masks, QPoint seed)
        : m_masks(masks)
        , m_seed(seed)
        , m_size(masks.constFirst().size())
        , m_open(m_size)
        , m_filled(m_size)
    {
    }

    Region Area()
    {
        if (m_open.IsNull() || m_filled.IsNull()) {
            return {};
        }
        m_isOpened.assign(static_cast<std::size_t>(m_size.height()), false);
        for (const QImage& mask : m_masks) {
            m_values.push_back(mask.constScanLine(m_seed.y())[m_seed.x()]);
        }
        OpenRow(m_seed.y());
        const quint64 bit = quint64(1) << (m_seed.x() % WordLength);
        FillRow(m_seed.y(), {{m_seed.x() / WordLength, bit}});
        for (const int direction : {1, -1}) {
            m_turns.push_back({m_seed.y(), direction, m_waiting.size()});
            m_waiting.insert(m_waiting.end(), m_filledNow.cbegin(), m_filledNow.cend());
        }
        while (!m_turns.empty()) {
            const Turn turn = m_turns.back();
            m_turns.pop_back();
            const auto begin = m_waiting.cbegin() + static_cast<std::ptrdiff_t>(turn.begin);
            m_filledNow.assign(begin, m_waiting.cend());
            m_waiting.resize(turn.begin);
            Sweep(turn.y, turn.direction);
        }
        return m_filled.Pixels(m_top, m_bottom);
    }

private:
    /// Pixels of one word of a row.
    struct Piece
    {
        int word;
        quint64 bits;
    };
    /// Filled pixels of a row, from which the fill is to go on in a direction: the pieces that wait
    /// from begin on, up to those of the next turn.
    struct Turn
    {
        int y;
        int direction;
        std::size_t begin;
    };

    /// From the pixels filled last, those of row y.
    void Sweep(int y, int direction)
    {
        while (!m_filledNow.empty() && y + direction >= 0 && y + direction < m_size.height()) {
            const quint64* before = m_open.Row(y);
            y += direction;
            OpenRow(y);
            m_seeds.swap(m_filledNow);
            FillRow(y, m_seeds);
            const std::size_t begin = m_waiting.size();
            for (const Piece& piece : m_filledNow) {
                if (const quint64 beside = piece.bits & before[piece.word]) {
                    m_waiting.push_back({piece.word, beside});
                }
            }
            if (m_waiting.size() > begin) {
                m_turns.push_back({y, -direction, begin});
            }
        }
    }

    /// Finds the pixels of the row that equal the seed's, unless they are known.
    void OpenRow(int y)
    {
        if (m_isOpened[static_cast<std::size_t>(y)]) {
            return;
        }
        m_isOpened[static_cast<std::size_t>(y)] = true;
        quint64* row = m_open.Row(y);
        for (int i = 0; i < m_masks.size(); ++i) {
            const uchar* pixels = m_masks.at(i).constScanLine(y);
            const uchar value = m_values[static_cast<std::size_t>(i)];
            for (int word = 0; word < m_open.WordCount(); ++word) {
                const int x = word * WordLength;
                const quint64 bits = EqualBits(pixels + x, m_size.width() - x, value);
                row[word] = i == 0 ? bits : row[word] & bits;
            }
        }
    }

    /// Fills the runs of the row that have a seed, and keeps what it filled.
    void FillRow(int y, const std::vector<Piece>& seeds)
    {
        quint64* open = m_open.Row(y);
        quint64* filled = m_filled.Row(y);
        m_filledNow.clear();
        const auto fill = [this, open, filled](int word, quint64 bits) {
            open[word] &= ~bits;
            filled[word] |= bits;
            m_filledNow.push_back({word, bits});
        };
        for (const Piece& piece : seeds) {
            const quint64 reached = piece.bits & open[piece.word];
            if (reached == 0) {
                continue;
            }
            const quint64 runs = RunsWith(open[piece.word], reached);
            fill(piece.word, runs);
            quint64 run = runs;
            for (int w = piece.word + 1; w < m_open.WordCount() && (run & HighestBit) != 0; ++w) {
                run = LowestRun(open[w]);
                if (run != 0) {
                    fill(w, run);
                }
            }
            run = runs;
            for (int w = piece.word - 1; w >= 0 && (run & 1) != 0; --w) {
                run = HighestRun(open[w]);
                if (run != 0) {
                    fill(w, run);
                }
            }
        }
        if (!m_filledNow.empty()) {
            m_top = std::min(m_top, y);
            m_bottom = std::max(m_bottom, y);
        }
    }

    const QVector<QImage>& m_masks;
    QPoint m_seed;
    QSize m_size;
    std::vector<uchar> m_values;
    /// The pixels that equal the seed's and are not filled yet, of the rows that were opened.
    BitRows m_open;
    std::vector<bool> m_isOpened;
    BitRows m_filled;
    int m_top = MaxMaskLength;
    int m_bottom = -1;
    std::vector<Turn> m_turns;
    std::vector<Piece> m_waiting;
    std::vector<Piece> m_filledNow;
    std::vector<Piece> m_seeds;
};

} // namespace

Region AreaAt(const QVector<QImage>& masks, QPoint seed)
{
    const bool isPossible =
        !masks.isEmpty() && std::all_of(masks.cbegin(), masks.cend(), [&](const QImage& mask) {
            return HasPixel(mask, seed) && mask.size() == masks.constFirst().size();
        });
    return isPossible ? RegionOrNone([&] { return Flood(masks, seed).Area(); }) : Region();
}

Region EqualPixels(const QImage& mask, QPoint seed)
{
    if (!HasPixel(mask, seed)) {
        return {};
    }
    return RegionOrNone([&mask, seed] {
        const uchar value = mask.constScanLine(seed.y())[seed.x()];
        BitRows equal(mask.size());
        if (equal.IsNull()) {
            return Region();
        }
        for (int y = 0; y < mask.height(); ++y) {
            const uchar* pixels = mask.constScanLine(y);
            quint64* row = equal.Row(y);
            for (int word = 0; word < equal.WordCount(); ++word) {
                const int x = word * WordLength;
                row[word] = EqualBits(pixels + x, mask.width() - x, value);
            }
        }
        return equal.Pixels(0, mask.height() - 1);
    });
}

} // namespace raster
