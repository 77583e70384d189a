#pragma once

#include "layers/raster/Mask.h"
#include "layers/raster/TargaCodec.h"

#include <QImage>
#include <QSize>

#include <functional>
#include <vector>

namespace raster {

/// Reads up to count bytes of a file from an offset on, and returns how many it read.
using ByteReader = std::function<qint64(qint64 offset, uchar* to, qint64 count)>;

/// Counts how many pixels have each value.
struct PixelCounts
{
    qint64 clear = 0;
    qint64 set = 0;
    qint64 other = 0;

    /// The number of pixels that count as set in a map.
    qint64 Covered() const { return set + other; }
    /// Inline and without branches, because files have millions of packets.
    void Add(uchar value, qint64 count)
    {
        const qint64 clearCount = value == MaskClear ? count : 0;
        const qint64 setCount = value == MaskSet ? count : 0;
        clear += clearCount;
        set += setCount;
        other += count - clearCount - setCount;
    }
};

/// The size in the header of a layer bitmap; empty if the header is incomplete.
QSize TargaSize(const ByteReader& read);

/// Decodes a layer bitmap one band of rows at a time, in any order, into the same pixels as
/// DecodeTarga. It keeps only the positions of the bands in the file, so that many large bitmaps
/// can be read in parallel.
class TargaBands
{
public:
    static constexpr int BandRows = 64;

    /// Reads all packets once. byteCount is the length of the file, size the required size of the
    /// image.
    TargaBands(ByteReader read, qint64 byteCount, QSize size);

    TargaError Error() const { return m_error; }
    /// True if the reader returned fewer bytes than the file had at first. The result read last is
    /// then wrong.
    bool HasFailed() const { return m_hasFailed; }
    /// True if the file has fewer bytes than its pixels need.
    bool IsCutOff() const { return m_isCutOff; }
    /// 0 after an error or a failure.
    int Count() const { return static_cast<int>(m_starts.size()); }

    /// True only for a band without set pixels, whose mask need not be made. Always false for raw
    /// files, which are not searched.
    bool IsClear(int band) const { return !m_starts.at(static_cast<std::size_t>(band)).hasSet; }
    /// Returns the rows of a band as a mask; null without memory or if reading fails. Bands count
    /// from the bottom of the image, as in maps; the last one may have fewer rows.
    QImage Decode(int band);
    /// Counts the pixels of the whole image; all counts are 0 after an error. This reads raw files.
    /// Returns false without memory or if reading fails.
    bool CountPixels(PixelCounts& counts);

private:
    /// Where a row begins: the rest of the packet in which it begins, and the position after that
    /// packet.
    struct Start
    {
        int storedRow = 0;
        qint64 offset = 0;
        uchar packet[2] = {};
        int packetBytes = 0;
        bool hasSet = false;
    };

    int Rows(int band) const;
    /// The band's first row, counted in the order of the file.
    int StoredRow(int band) const;
    void FindPackets();
    std::vector<uchar> Header(int rows) const;
    QImage DecodePackets(int band);
    QImage DecodeRaw(int band);
    /// Returns false if reading fails.
    bool Append(std::vector<uchar>& file, qint64 offset, qint64 count);

    ByteReader m_read;
    qint64 m_byteCount;
    QSize m_size;
    uchar m_header[TargaHeaderSize] = {};
    TargaError m_error = TargaError::None;
    bool m_isTopDown = false;
    bool m_isRunLength = false;
    bool m_isCutOff = false;
    bool m_hasFailed = false;
    /// One for each band.
    std::vector<Start> m_starts;
    /// The counts over all packets.
    PixelCounts m_counts;
    /// The offset after the last byte that is needed.
    qint64 m_end = 0;
};

} // namespace raster
