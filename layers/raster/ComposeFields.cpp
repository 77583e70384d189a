#include "layers/raster/ComposeFields.h"

#include "layers/raster/FieldPacking.h"
#include "layers/raster/Mask.h"
#include "layers/raster/WideVectors.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace raster {
namespace {

/// Masks are read in chunks of this many pixels, because most chunks are entirely clear or entirely
/// set.
constexpr int ChunkSize = 128;
/// The number of rows that are composed together, so that each layer is read in long pieces.
constexpr int BandRows = 64;

enum ChunkKind : uchar
{
    Clear = 0,
    Mixed = 1,
    Set = 2,
};

#ifdef QUILLMAP_VECTORS
/// Two words that are combined at once, as both GCC and Clang have them; left to themselves they
/// make scalar code of the loop below.
using Words = quint64 __attribute__((vector_size(16)));
#else
struct Words
{
    quint64 first;
    quint64 second;

    quint64 operator[](int i) const { return i == 0 ? first : second; }
    void operator|=(Words other)
    {
        first |= other.first;
        second |= other.second;
    }
    void operator&=(Words other)
    {
        first &= other.first;
        second &= other.second;
    }
};
#endif

/// Without branches, so that reading the masks runs at the speed of the memory.
ChunkKind KindOf(const uchar* pixels)
{
    Words any = {0, 0};
    Words all = {~quint64(0), ~quint64(0)};
    for (int i = 0; i < ChunkSize; i += int(sizeof(Words))) {
        Words words;
        std::memcpy(&words, pixels + i, sizeof words);
        any |= words;
        all &= words;
    }
    return static_cast<ChunkKind>(int((any[0] | any[1]) != 0) +
                                  int((all[0] & all[1]) == ~quint64(0)));
}

/// The fields of one section for a band of rows, unpacked so that flags can be ORed side by side.
class FieldBand
{
public:
    virtual ~FieldBand() = default;
    FieldBand() = default;
    Q_DISABLE_COPY(FieldBand)

    virtual void Clear() = 0;
    /// ORs flags into the fields of set pixels of a chunk, or into all fields of the chunks up to
    /// end.
    virtual void OrSet(int row, int chunk, const uchar* pixels, quint32 flags) = 0;
    virtual void OrAll(int row, int chunk, int end, quint32 flags) = 0;
    /// Writes the words of one row. A row without any flag is not written.
    virtual void Pack(int row, quint32* words) = 0;
};

template <int Bits>
class FieldBandOf final : public FieldBand
{
public:
    explicit FieldBandOf(int fieldsPerRow)
        : m_chunks((fieldsPerRow + ChunkSize - 1) / ChunkSize)
        , m_wordsPerRow((fieldsPerRow + PixelsPerWord - 1) / PixelsPerWord)
        , m_fields(static_cast<std::size_t>(m_chunks) * ChunkSize * BandRows)
        , m_whole(static_cast<std::size_t>(m_chunks) * BandRows)
        , m_isTouched(BandRows)
    {
    }

    void Clear() override
    {
        std::fill(m_fields.begin(), m_fields.end(), FieldType(0));
        std::fill(m_whole.begin(), m_whole.end(), FieldType(0));
        std::fill(m_isTouched.begin(), m_isTouched.end(), uchar(0));
    }

    void OrSet(int row, int chunk, const uchar* pixels, quint32 flags) override
    {
        if (!IsWanted(chunk, flags)) {
            return;
        }
        FieldType* __restrict fields = Chunk(row, chunk);
        const auto bits = static_cast<FieldType>(flags & Mask);
        for (int i = 0; i < ChunkSize; ++i) {
            const FieldType added = pixels[i] != MaskClear ? bits : FieldType(0);
            fields[i] = static_cast<FieldType>(fields[i] | added);
        }
        m_isTouched[static_cast<std::size_t>(row)] = 1;
    }

    void OrAll(int row, int chunk, int end, quint32 flags) override
    {
        if (!IsWanted(chunk, flags)) {
            return;
        }
        const auto bits = static_cast<FieldType>(flags & Mask);
        FieldType* whole = m_whole.data() + static_cast<std::ptrdiff_t>(row) * m_chunks;
        for (int i = chunk; i < std::min(end, m_chunks); ++i) {
            whole[i] = static_cast<FieldType>(whole[i] | bits);
        }
        m_isTouched[static_cast<std::size_t>(row)] = 1;
    }

    void Pack(int row, quint32* words) override
    {
        if (m_isTouched[static_cast<std::size_t>(row)] == 0) {
            return;
        }
        for (int chunk = 0; chunk < m_chunks; ++chunk) {
            const FieldType whole = m_whole[WholeIndex(row, chunk)];
            if (whole != 0) {
                FieldType* fields = Chunk(row, chunk);
                for (int i = 0; i < ChunkSize; ++i) {
                    fields[i] = static_cast<FieldType>(fields[i] | whole);
                }
            }
        }
        PackFields<Bits>(Chunk(row, 0), words, m_wordsPerRow);
    }

private:
    using FieldType = Field<Bits>;
    static constexpr quint32 Mask = FieldMask(Bits);
    static constexpr int PixelsPerWord = 32 / Bits;

    bool IsWanted(int chunk, quint32 flags) const
    {
        return (flags & Mask) != 0 && chunk < m_chunks;
    }

    std::size_t WholeIndex(int row, int chunk) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_chunks) +
               static_cast<std::size_t>(chunk);
    }

    FieldType* Chunk(int row, int chunk)
    {
        return m_fields.data() + WholeIndex(row, chunk) * ChunkSize;
    }

    int m_chunks;
    qint64 m_wordsPerRow;
    std::vector<FieldType> m_fields;
    /// The flags that all pixels of a chunk have.
    std::vector<FieldType> m_whole;
    std::vector<uchar> m_isTouched;
};

/// The fields of a band, for at most maxWidth columns from the left.
std::unique_ptr<FieldBand> MakeBand(const BitFieldRaster& raster, int maxWidth)
{
    const int width = std::min(raster.FieldsPerRow(), maxWidth);
    switch (raster.Bits()) {
    case 1:
        return std::make_unique<FieldBandOf<1>>(width);
    case 2:
        return std::make_unique<FieldBandOf<2>>(width);
    case 4:
        return std::make_unique<FieldBandOf<4>>(width);
    case 8:
        return std::make_unique<FieldBandOf<8>>(width);
    case 16:
        return std::make_unique<FieldBandOf<16>>(width);
    default:
        return std::make_unique<FieldBandOf<32>>(width);
    }
}

/// The smallest size that contains every mask. Rasters may be much larger; the rest of them stays
/// clear.
QSize SizeOfAll(const QVector<FlaggedMask>& masks)
{
    QSize size(0, 0);
    for (const FlaggedMask& flagged : masks) {
        size = size.expandedTo(flagged.mask.size());
    }
    return size;
}

class Composer
{
public:
    Composer(const QVector<FlaggedMask>& masks, BitFieldRaster& usageRaster,
             BitFieldRaster& valueRaster)
        : m_masks(masks)
        , m_usageRaster(usageRaster)
        , m_valueRaster(valueRaster)
        , m_maskSize(SizeOfAll(masks))
        , m_usages(MakeBand(usageRaster, m_maskSize.width()))
        , m_values(MakeBand(valueRaster, m_maskSize.width()))
        , m_width(std::min(std::max(usageRaster.FieldsPerRow(), valueRaster.FieldsPerRow()),
                           m_maskSize.width()))
        , m_height(std::max(usageRaster.Height(), valueRaster.Height()))
        , m_kinds(static_cast<std::size_t>(m_width / ChunkSize) * BandRows)
    {
    }

    void Compose()
    {
        const int end = std::min(m_height, m_maskSize.height());
        for (int top = 0; top < end; top += BandRows) {
            const int rows = std::min(BandRows, end - top);
            m_usages->Clear();
            m_values->Clear();
            for (const FlaggedMask& flagged : m_masks) {
                if ((flagged.usageFlags | flagged.valueFlags) != 0) {
                    Add(flagged, top, std::min(rows, flagged.mask.height() - top));
                }
            }
            for (int row = 0; row < rows; ++row) {
                PackRow(row, m_height - 1 - top - row);
            }
        }
    }

private:
    /// Reads all rows of the band before the results are used. Using pixels that are still being
    /// fetched would stall the processor's prefetching.
    void Add(const FlaggedMask& flagged, int top, int rows)
    {
        const int end = std::min(m_width, flagged.mask.width());
        const int chunks = end / ChunkSize;
        ChunkKind* kind = m_kinds.data();
        for (int row = 0; row < rows; ++row) {
            const uchar* pixels = flagged.mask.constScanLine(top + row);
            for (int chunk = 0; chunk < chunks; ++chunk) {
                *kind++ = KindOf(pixels + chunk * ChunkSize);
            }
        }
        for (int row = 0; row < rows; ++row) {
            const uchar* pixels = flagged.mask.constScanLine(top + row);
            AddRow(flagged, row, pixels, m_kinds.data() + std::ptrdiff_t(row) * chunks, chunks);
            if (chunks * ChunkSize < end) {
                uchar padded[ChunkSize] = {};
                std::copy(pixels + chunks * ChunkSize, pixels + end, padded);
                AddChunks(flagged, row, chunks, chunks + 1, padded, KindOf(padded));
            }
        }
    }

    void AddRow(const FlaggedMask& flagged, int row, const uchar* pixels, const ChunkKind* kinds,
                int chunks)
    {
        for (int chunk = 0; chunk < chunks;) {
            const ChunkKind kind = kinds[chunk];
            int end = chunk + 1;
            while (end < chunks && kinds[end] == kind) {
                ++end;
            }
            AddChunks(flagged, row, chunk, end, pixels + chunk * ChunkSize, kind);
            chunk = end;
        }
    }

    /// Neighbouring chunks of the same kind.
    void AddChunks(const FlaggedMask& flagged, int row, int chunk, int end, const uchar* pixels,
                   ChunkKind kind)
    {
        if (kind == Set) {
            m_usages->OrAll(row, chunk, end, flagged.usageFlags);
            m_values->OrAll(row, chunk, end, flagged.valueFlags);
        } else if (kind == Mixed) {
            for (; chunk < end; ++chunk, pixels += ChunkSize) {
                m_usages->OrSet(row, chunk, pixels, flagged.usageFlags);
                m_values->OrSet(row, chunk, pixels, flagged.valueFlags);
            }
        }
    }

    void PackRow(int row, int fileRow)
    {
        if (fileRow < m_usageRaster.Height()) {
            m_usages->Pack(row, m_usageRaster.Row(fileRow));
        }
        if (fileRow < m_valueRaster.Height()) {
            m_values->Pack(row, m_valueRaster.Row(fileRow));
        }
    }

    const QVector<FlaggedMask>& m_masks;
    BitFieldRaster& m_usageRaster;
    BitFieldRaster& m_valueRaster;
    QSize m_maskSize;
    std::unique_ptr<FieldBand> m_usages;
    std::unique_ptr<FieldBand> m_values;
    int m_width;
    int m_height;
    /// The chunks of one layer in the present band.
    std::vector<ChunkKind> m_kinds;
};

} // namespace

void ComposeFields(const QVector<FlaggedMask>& masks, BitFieldRaster& usages,
                   BitFieldRaster& values)
{
    Composer(masks, usages, values).Compose();
}

} // namespace raster
