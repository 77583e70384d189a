#include "layers/raster/ChordUnion.h"

#include "layers/raster/WideVectors.h"

#include <algorithm>
#include <vector>

namespace raster {
namespace {

/// One row of bits. The row of pixels is cut into eight segments of equal length, and bit k of byte
/// j is pixel j of segment k. So neighbouring pixels are the same bit of neighbouring bytes, and
/// packing, unpacking and widening are simple loops over bytes without carries between bits.
class SegmentedRow
{
public:
    /// margin: how many bytes before and after the row repeat the bits of the adjoining segments.
    SegmentedRow(int width, int margin)
        : m_width(width)
        , m_length((width + 127) / 128 * 16)
        , m_margin(margin)
        , m_bytes(static_cast<std::size_t>(m_length + 2 * margin))
    {
    }

    int Length() const { return m_length; }
    const uchar* Bytes() const { return m_bytes.data() + m_margin; }

    /// Packs pixels of 0 and 255.
    void Pack(const uchar* pixels, uchar flip)
    {
        uchar* __restrict bytes = m_bytes.data() + m_margin;
        std::fill_n(bytes, m_length, uchar(0));
        for (int segment = 0; segment < 8 && SegmentLength(segment) > 0; ++segment) {
            const uchar* from = pixels + segment * m_length;
            const auto bit = static_cast<uchar>(1U << segment);
            const int count = SegmentLength(segment);
            for (int i = 0; i < count; ++i) {
                bytes[i] |= static_cast<uchar>(from[i] ^ flip) & bit;
            }
        }
        for (int i = 1; i <= m_margin; ++i) {
            bytes[-i] = static_cast<uchar>(bytes[m_length - i] << 1);
            bytes[m_length - 1 + i] = bytes[i - 1] >> 1;
        }
    }

    void Unpack(const uchar* bytes, uchar flip, uchar* __restrict pixels) const
    {
        for (int segment = 0; segment < 8 && SegmentLength(segment) > 0; ++segment) {
            uchar* __restrict to = pixels + segment * m_length;
            const auto bit = static_cast<uchar>(1U << segment);
            const int count = SegmentLength(segment);
            for (int i = 0; i < count; ++i) {
                to[i] = static_cast<uchar>((bytes[i] & bit) != 0 ? 255 : 0) ^ flip;
            }
        }
    }

private:
    int SegmentLength(int segment) const
    {
        return std::clamp(m_width - segment * m_length, 0, m_length);
    }

    int m_width;
    int m_length;
    int m_margin;
    std::vector<uchar> m_bytes;
};

void OrInto(const uchar* from, int count, uchar* __restrict to)
{
    for (int i = 0; i < count; ++i) {
        to[i] |= from[i];
    }
}

/// Widens the pixels of a row from half - 1 to half pixels on each side.
void Widen(const uchar* row, int half, int count, uchar* __restrict widened)
{
    for (int i = 0; i < count; ++i) {
        widened[i] |= row[i - half] | row[i + half];
    }
}

/// The result rows that are reached by the source rows read so far.
class RowRing
{
public:
    RowRing(int rows, int length)
        : m_rows(rows)
        , m_length(length)
        , m_bytes(static_cast<std::size_t>(rows) * static_cast<std::size_t>(length))
    {
    }

    uchar* Row(int y) { return m_bytes.data() + std::ptrdiff_t(y % m_rows) * m_length; }
    void Clear(int y) { std::fill_n(Row(y), m_length, uchar(0)); }

private:
    int m_rows;
    int m_length;
    std::vector<uchar> m_bytes;
};

} // namespace

QUILLMAP_WIDE_VECTORS
void DilateByChords(const QImage& mask, const DiscShape& disc, uchar flip, QImage& result)
{
    const int radius = disc.Radius();
    const int height = mask.height();
    SegmentedRow row(mask.width(), radius);
    const int length = row.Length();
    RowRing ring(2 * radius + 1, length);
    std::vector<uchar> widened(static_cast<std::size_t>(length));
    for (int y = 0; y < height + radius; ++y) {
        if (y < height) {
            row.Pack(mask.constScanLine(y), flip);
            std::copy_n(row.Bytes(), length, widened.data());
            int half = 0;
            for (int dy = radius; dy >= 0; --dy) {
                while (half < disc.HalfChord(dy)) {
                    Widen(row.Bytes(), ++half, length, widened.data());
                }
                if (y + dy < height) {
                    OrInto(widened.data(), length, ring.Row(y + dy));
                }
                if (y - dy >= 0) {
                    OrInto(widened.data(), length, ring.Row(y - dy));
                }
            }
        }
        // No later source row reaches this one.
        const int done = y - radius;
        if (done >= 0) {
            row.Unpack(ring.Row(done), flip, result.scanLine(done));
            ring.Clear(done);
        }
    }
}

} // namespace raster
