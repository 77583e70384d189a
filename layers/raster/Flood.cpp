#include "layers/raster/Flood.h"

#include "layers/raster/Mask.h"
#include "layers/raster/PixelBits.h"
#include "layers/raster/PixelMemory.h"
#include "layers/raster/SpanWriter.h"
#include "layers/raster/WideVectors.h"

#include <QtAlgorithms>

#include <algorithm>
#include <vector>

namespace raster {
namespace {

constexpr quint64 AllBits = ~quint64(0);

/// What is known of the pixels of a word.
struct PixelWord
{
    /// Pixels that equal the seed's and are not filled.
    quint64 open;
    quint64 filled;
};

QUILLMAP_WIDE_VECTORS
std::size_t FilledRuns(const PixelWord* words, int count)
{
    std::size_t runs = 0;
    quint64 wasFilled = 0;
    for (int i = 0; i < count; ++i) {
        const quint64 filled = words[i].filled;
        runs += qPopulationCount(filled & ~(filled << 1 | wasFilled));
        wasFilled = filled >> (WordLength - 1);
    }
    return runs;
}

/// The words of a mask, all 0 at first. They take memory only where something is written.
class PixelWords
{
public:
    explicit PixelWords(QSize size)
        : m_countInRow((size.width() + WordLength - 1) / WordLength)
        , m_memory(PixelMemory::Zeroed(sizeof(PixelWord) * static_cast<std::size_t>(m_countInRow) *
                                       static_cast<std::size_t>(size.height())))
    {
    }

    /// True when there was no memory.
    bool IsNull() const { return m_memory.IsEmpty(); }
    int CountInRow() const { return m_countInRow; }
    PixelWord* Row(int y) { return m_memory.As<PixelWord>() + qint64(y) * m_countInRow; }
    const PixelWord* Row(int y) const
    {
        return m_memory.As<PixelWord>() + qint64(y) * m_countInRow;
    }

    /// The filled pixels from the first row to the last.
    Region Filled(int first, int last) const
    {
        Region region;
        region.reserve(RunCount(first, last));
        SpanWriter writer(region);
        std::vector<quint64> edges(static_cast<std::size_t>(m_countInRow));
        for (int y = first; y <= last; ++y) {
            const PixelWord* word = Row(y);
            quint64 wasFilled = 0;
            for (quint64& bits : edges) {
                bits = EdgeBits(word++->filled, wasFilled);
            }
            writer.BeginRow(y);
            writer.AddEdges(0, edges.data(), m_countInRow);
            writer.EndRun(m_countInRow * WordLength);
        }
        return region;
    }

private:
    std::size_t RunCount(int first, int last) const
    {
        std::size_t count = 0;
        for (int y = first; y <= last; ++y) {
            count += FilledRuns(Row(y), m_countInRow);
        }
        return count;
    }

    int m_countInRow;
    PixelMemory m_memory;
};

bool HasPixel(const QImage& mask, QPoint at)
{
    return mask.format() == QImage::Format_Indexed8 && IsMaskSize(mask.size()) &&
           mask.rect().contains(at);
}

/// Calls take(word, bits) for the words of a row, with the pixels that equal the value.
template <typename Take>
void ForEachEqual(const uchar* pixels, int width, uchar value, Take take)
{
    constexpr int ahead = 2048;
    for (int x = 0; x < width; x += WordLength) {
        Prefetch(pixels + x + ahead);
        take(x / WordLength, EqualBits(pixels + x, width - x, value));
    }
}

/// The runs of set bits that have a seed; all seeds are set bits.
quint64 RunsWith(quint64 bits, quint64 seeds)
{
    // The carry of the lowest seed clears the bits from there to the end of the run, except where
    // there are more seeds.
    quint64 runs = (bits & ~(bits + seeds)) | seeds;
    quint64 below = bits & ~runs;
    if ((below & (runs >> 1)) == 0) {
        return runs;
    }
    // On to the beginning of the run, twice as far in each step.
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

/// Some pixels of one word of a row.
struct Piece
{
    int word;
    quint64 bits;
};

/// Whole runs of a word are filled at once, so there are no more pieces in it.
constexpr int MostPieces = WordLength / 2;

void FillPiece(PixelWord* row, Piece piece, Piece*& filled)
{
    row[piece.word].open &= ~piece.bits;
    row[piece.word].filled |= piece.bits;
    *filled++ = piece;
}

/// Fills the runs of a row of count words that have a seed. Writes what it filled, and returns the
/// end of that; there is room for MostPieces a word.
Piece* FillRow(PixelWord* row, int count, const Piece* seed, const Piece* seedsEnd, Piece* filled)
{
    for (; seed != seedsEnd; ++seed) {
        const quint64 open = row[seed->word].open;
        const quint64 reached = seed->bits & open;
        if (reached == 0) {
            continue;
        }
        const quint64 runs = RunsWith(open, reached);
        FillPiece(row, {seed->word, runs}, filled);
        quint64 run = runs;
        for (int w = seed->word + 1; w < count && (run & HighestBit) != 0; ++w) {
            run = LowestRun(row[w].open);
            if (run != 0) {
                FillPiece(row, {w, run}, filled);
            }
        }
        run = runs;
        for (int w = seed->word - 1; w >= 0 && (run & 1) != 0; --w) {
            run = HighestRun(row[w].open);
            if (run != 0) {
                FillPiece(row, {w, run}, filled);
            }
        }
    }
    return filled;
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
        , m_words(m_size)
        , m_isOpened(static_cast<std::size_t>(m_size.height()), false)
        , m_seeds(static_cast<std::size_t>(m_words.CountInRow() * MostPieces))
        , m_filled(m_seeds.size())
    {
        for (const QImage& mask : m_masks) {
            m_values.push_back(mask.constScanLine(seed.y())[seed.x()]);
        }
    }

    Region Area()
    {
        if (m_words.IsNull()) {
            return {};
        }
        const quint64 bit = quint64(1) << (m_seed.x() % WordLength);
        m_filled[0] = {m_seed.x() / WordLength, bit};
        m_filledCount = 1;
        Fill(m_seed.y());
        const auto end = m_filled.cbegin() + m_filledCount;
        for (const int direction : {1, -1}) {
            m_turns.push_back({m_seed.y(), direction, m_waiting.size()});
            m_waiting.insert(m_waiting.end(), m_filled.cbegin(), end);
        }
        while (!m_turns.empty()) {
            const Turn turn = m_turns.back();
            m_turns.pop_back();
            const auto begin = m_waiting.cbegin() + static_cast<std::ptrdiff_t>(turn.begin);
            std::copy(begin, m_waiting.cend(), m_filled.begin());
            m_filledCount = m_waiting.cend() - begin;
            m_waiting.resize(turn.begin);
            Sweep(turn.y, turn.direction);
        }
        return m_words.Filled(m_top, m_bottom);
    }

private:
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
        while (m_filledCount > 0 && y + direction >= 0 && y + direction < m_size.height()) {
            const PixelWord* before = m_words.Row(y);
            PrefetchRow(y + 16 * direction);
            y += direction;
            Fill(y);
            const std::size_t begin = m_waiting.size();
            for (const Piece* piece = m_filled.data(); piece != FilledEnd(); ++piece) {
                if (const quint64 beside = piece->bits & before[piece->word].open) {
                    m_waiting.push_back({piece->word, beside});
                }
            }
            if (m_waiting.size() > begin) {
                m_turns.push_back({y, -direction, begin});
            }
        }
    }

    /// The processor does not foresee the rows of a narrow path.
    void PrefetchRow(int y) const
    {
        if (m_filledCount <= 2 && y >= 0 && y < m_size.height()) {
            Prefetch(m_words.Row(y) + m_filled[0].word);
        }
    }

    /// Fills what the pixels filled last reach in row y, which is beside theirs.
    void Fill(int y)
    {
        if (!m_isOpened[static_cast<std::size_t>(y)]) {
            m_isOpened[static_cast<std::size_t>(y)] = true;
            Open(y);
        }
        m_seeds.swap(m_filled);
        const Piece* const seeds = m_seeds.data();
        Piece* const filled = m_filled.data();
        m_filledCount =
            FillRow(m_words.Row(y), m_words.CountInRow(), seeds, seeds + m_filledCount, filled) -
            filled;
        if (m_filledCount > 0) {
            m_top = std::min(m_top, y);
            m_bottom = std::max(m_bottom, y);
        }
    }

    /// Finds the pixels of the row that equal the seed's.
    void Open(int y)
    {
        PixelWord* row = m_words.Row(y);
        for (int i = 0; i < m_masks.size(); ++i) {
            const uchar* pixels = m_masks.at(i).constScanLine(y);
            const uchar value = m_values[static_cast<std::size_t>(i)];
            if (i == 0) {
                ForEachEqual(pixels, m_size.width(), value,
                             [row](int word, quint64 bits) { row[word].open = bits; });
            } else {
                ForEachEqual(pixels, m_size.width(), value,
                             [row](int word, quint64 bits) { row[word].open &= bits; });
            }
        }
    }

    const Piece* FilledEnd() const { return m_filled.data() + m_filledCount; }

    const QVector<QImage>& m_masks;
    QPoint m_seed;
    QSize m_size;
    std::vector<uchar> m_values;
    PixelWords m_words;
    std::vector<bool> m_isOpened;
    std::vector<Turn> m_turns;
    std::vector<Piece> m_waiting;
    /// The pixels that were filled in the row before, and those filled last.
    std::vector<Piece> m_seeds;
    std::vector<Piece> m_filled;
    std::ptrdiff_t m_filledCount = 0;
    int m_top = MaxMaskLength;
    int m_bottom = -1;
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
        PixelWords words(mask.size());
        if (words.IsNull()) {
            return Region();
        }
        for (int y = 0; y < mask.height(); ++y) {
            PixelWord* row = words.Row(y);
            ForEachEqual(mask.constScanLine(y), mask.width(), value,
                         [row](int word, quint64 bits) { row[word].filled = bits; });
        }
        return words.Filled(0, mask.height() - 1);
    });
}

} // namespace raster
