#include "layers/raster/AreaFields.h"

#include "layers/raster/Mask.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <vector>

namespace raster {
namespace {

/// Masks are mostly clear, so they are looked at in chunks that are skipped when nothing is set.
constexpr int ChunkSize = 128;

bool IsClear(const uchar* pixels, int count)
{
    uchar any = 0;
    for (int i = 0; i < count; ++i) {
        any |= pixels[i];
    }
    return any == 0;
}

/// Moves the fields of eight pixels, one to a byte and the leftmost in the top byte, together at
/// the bottom of the result, by halving the gaps three times.
template <int Bits>
quint32 PackEight(quint64 fields)
{
    constexpr quint64 two = (quint64(1) << (2 * Bits)) - 1;
    constexpr quint64 four = (quint64(1) << (4 * Bits)) - 1;
    fields = (fields | fields >> (8 - Bits)) & (two * 0x0001000100010001U);
    fields = (fields | fields >> (16 - 2 * Bits)) & (four * 0x0000000100000001U);
    return static_cast<quint32>(fields | fields >> (32 - 4 * Bits));
}

template <int Bits>
void PackRow(const uchar* fields, quint32* words, qint64 wordCount)
{
    constexpr int eights = 4 / Bits;
    for (qint64 w = 0; w < wordCount; ++w) {
        quint64 word = 0;
        for (int i = 0; i < eights; ++i, fields += 8) {
            word = word << (8 * Bits) | PackEight<Bits>(qFromBigEndian<quint64>(fields));
        }
        words[w] = static_cast<quint32>(word);
    }
}

/// One image row of fields, unpacked to a byte, a half word or a word a pixel so that they can be
/// ORed and tested side by side.
class FieldRow
{
public:
    FieldRow(int bits, int fieldCount)
        : m_bits(bits)
        , m_fieldCount(fieldCount)
        , m_bytesPerField(std::max(bits, 8) / 8)
        , m_fields(static_cast<std::size_t>(fieldCount) * m_bytesPerField)
    {
    }

    bool IsTouched() const { return m_isTouched; }

    void Clear()
    {
        std::fill(m_fields.begin(), m_fields.end(), uchar(0));
        m_isTouched = false;
    }

    /// ORs flags into the fields x to x + count - 1 whose pixel is set.
    void Or(const uchar* pixels, int x, int count, quint32 flags)
    {
        count = std::min(count, m_fieldCount - x);
        flags &= 0xFFFFFFFFU >> (32 - m_bits);
        if (flags == 0 || count <= 0) {
            return;
        }
        m_isTouched = true;
        switch (m_bytesPerField) {
        case 1:
            return OrInto<uchar>(pixels, x, count, flags);
        case 2:
            return OrInto<quint16>(pixels, x, count, flags);
        default:
            return OrInto<quint32>(pixels, x, count, flags);
        }
    }

    void Pack(quint32* words, qint64 wordCount) const
    {
        const uchar* fields = m_fields.data();
        switch (m_bits) {
        case 1:
            return PackRow<1>(fields, words, wordCount);
        case 2:
            return PackRow<2>(fields, words, wordCount);
        case 4:
            return PackRow<4>(fields, words, wordCount);
        case 8:
            return qFromBigEndian<quint32>(fields, wordCount, words);
        case 16:
            for (qint64 w = 0; w < wordCount; ++w) {
                words[w] = quint32(Fields<quint16>()[2 * w]) << 16 | Fields<quint16>()[2 * w + 1];
            }
            return;
        default:
            std::memcpy(words, fields, static_cast<std::size_t>(wordCount) * sizeof(quint32));
        }
    }

    void Unpack(const quint32* words, qint64 wordCount)
    {
        switch (m_bytesPerField) {
        case 1:
            return UnpackInto<uchar>(words, wordCount);
        case 2:
            return UnpackInto<quint16>(words, wordCount);
        default:
            return UnpackInto<quint32>(words, wordCount);
        }
    }

    /// The OR of all fields of the row.
    quint32 Union() const
    {
        switch (m_bytesPerField) {
        case 1:
            return UnionOf<uchar>();
        case 2:
            return UnionOf<quint16>();
        default:
            return UnionOf<quint32>();
        }
    }

    quint32 At(int x) const
    {
        switch (m_bytesPerField) {
        case 1:
            return Fields<uchar>()[x];
        case 2:
            return Fields<quint16>()[x];
        default:
            return Fields<quint32>()[x];
        }
    }

    /// Sets the pixels whose field has the flag's bit, and clears the others.
    void Extract(int flag, uchar* pixels) const
    {
        switch (m_bytesPerField) {
        case 1:
            return ExtractFrom<uchar>(flag, pixels);
        case 2:
            return ExtractFrom<quint16>(flag, pixels);
        default:
            return ExtractFrom<quint32>(flag, pixels);
        }
    }

private:
    template <typename T>
    T* Fields()
    {
        return reinterpret_cast<T*>(m_fields.data());
    }
    template <typename T>
    const T* Fields() const
    {
        return reinterpret_cast<const T*>(m_fields.data());
    }

    template <typename T>
    void OrInto(const uchar* pixels, int x, int count, quint32 flags)
    {
        T* fields = Fields<T>() + x;
        const T bits = static_cast<T>(flags);
        for (int i = 0; i < count; ++i) {
            fields[i] = static_cast<T>(fields[i] | (pixels[i] != MaskClear ? bits : T(0)));
        }
    }

    template <typename T>
    void UnpackInto(const quint32* words, qint64 wordCount)
    {
        const int pixelsPerWord = 32 / m_bits;
        const quint32 fieldMask = 0xFFFFFFFFU >> (32 - m_bits);
        T* field = Fields<T>();
        for (qint64 w = 0; w < wordCount; ++w) {
            for (int i = pixelsPerWord - 1; i >= 0; --i) {
                *field++ = static_cast<T>((words[w] >> (i * m_bits)) & fieldMask);
            }
        }
    }

    template <typename T>
    quint32 UnionOf() const
    {
        T all = 0;
        for (int x = 0; x < m_fieldCount; ++x) {
            all = static_cast<T>(all | Fields<T>()[x]);
        }
        return all;
    }

    template <typename T>
    void ExtractFrom(int flag, uchar* pixels) const
    {
        const T bit = static_cast<T>(1U << flag);
        const T* fields = Fields<T>();
        for (int x = 0; x < m_fieldCount; ++x) {
            pixels[x] = (fields[x] & bit) != 0 ? MaskSet : MaskClear;
        }
    }

    int m_bits;
    int m_fieldCount;
    std::size_t m_bytesPerField;
    bool m_isTouched = false;
    std::vector<uchar> m_fields;
};

void PackTouched(const FieldRow& fields, BitFieldRaster& raster, int row)
{
    if (fields.IsTouched()) {
        fields.Pack(raster.Row(row), raster.WordsPerRow());
    }
}

/// Collects the masks of one section while its rows go by.
class FlagSplitter
{
public:
    FlagSplitter(QSize size, int flagCount)
        : m_size(size)
        , m_wanted(flagCount > 0 ? 0xFFFFFFFFU >> (32 - std::min(flagCount, 32)) : 0)
    {
    }

    void AddRow(const FieldRow& fields, int fieldCount, int imageRow)
    {
        const quint32 present = fields.Union() & m_wanted;
        if ((present & ~m_known) != 0) {
            AddNewFlags(fields, fieldCount, present);
        }
        for (FlagMask& mask : m_masks) {
            if ((present >> mask.flag & 1U) != 0) {
                fields.Extract(mask.flag, mask.mask.scanLine(imageRow));
            }
        }
    }

    QVector<FlagMask> Masks() const { return m_masks; }

private:
    void AddNewFlags(const FieldRow& fields, int fieldCount, quint32 present)
    {
        for (int x = 0; x < fieldCount && (present & ~m_known) != 0; ++x) {
            const quint32 added = fields.At(x) & present & ~m_known;
            for (int flag = 0; flag < 32; ++flag) {
                if ((added >> flag & 1U) != 0) {
                    AddFlag(flag);
                }
            }
        }
    }

    void AddFlag(int flag)
    {
        m_known |= 1U << flag;
        const QImage mask = BlankMask(m_size);
        if (!mask.isNull()) {
            m_masks.append({flag, mask});
        }
    }

    QSize m_size;
    quint32 m_wanted;
    quint32 m_known = 0;
    QVector<FlagMask> m_masks;
};

} // namespace

void ComposeFields(const QVector<FlaggedMask>& masks, BitFieldRaster& usages,
                   BitFieldRaster& values)
{
    FieldRow usageRow(usages.Bits(), usages.FieldsPerRow());
    FieldRow valueRow(values.Bits(), values.FieldsPerRow());
    const int width = std::max(usages.FieldsPerRow(), values.FieldsPerRow());
    const int height = std::max(usages.Height(), values.Height());
    for (int row = 0; row < height; ++row) {
        const int y = height - 1 - row;
        usageRow.Clear();
        valueRow.Clear();
        for (const FlaggedMask& flagged : masks) {
            if ((flagged.usageFlags | flagged.valueFlags) == 0 || y >= flagged.mask.height()) {
                continue;
            }
            const uchar* pixels = flagged.mask.constScanLine(y);
            const int end = std::min(width, flagged.mask.width());
            for (int x = 0; x < end; x += ChunkSize) {
                const int count = std::min(ChunkSize, end - x);
                if (!IsClear(pixels + x, count)) {
                    usageRow.Or(pixels + x, x, count, flagged.usageFlags);
                    valueRow.Or(pixels + x, x, count, flagged.valueFlags);
                }
            }
        }
        PackTouched(usageRow, usages, row);
        PackTouched(valueRow, values, row);
    }
}

QVector<FlagMask> SplitFields(const PackedFields& fields, int flagCount)
{
    const int pixelsPerWord = 32 / fields.bits;
    const qint64 wordsPerRow = fields.size.width() / pixelsPerWord;
    const int fieldCount =
        static_cast<int>(std::min(wordsPerRow, fields.wordCount)) * pixelsPerWord;
    FlagSplitter splitter(fields.size, flagCount);
    FieldRow unpacked(fields.bits, fieldCount);
    for (int row = 0; row < fields.size.height() && row * wordsPerRow < fields.wordCount; ++row) {
        const quint32* words = fields.words + row * wordsPerRow;
        const qint64 present = std::min(wordsPerRow, fields.wordCount - row * wordsPerRow);
        if (std::all_of(words, words + present, [](quint32 word) { return word == 0; })) {
            continue;
        }
        unpacked.Clear();
        unpacked.Unpack(words, present);
        splitter.AddRow(unpacked, fieldCount, fields.size.height() - 1 - row);
    }
    return splitter.Masks();
}

} // namespace raster
