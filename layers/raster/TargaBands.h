#pragma once

#include "layers/raster/Mask.h"
#include "layers/raster/TargaCodec.h"

#include <QImage>
#include <QSize>

#include <functional>
#include <vector>

namespace raster {

/// Reads up to count bytes of a file from an offset on, and tells how many there were.
using ByteReader = std::function<qint64(qint64 offset, uchar* to, qint64 count)>;

/// How many pixels have which value.
struct PixelCounts
{
    qint64 clear = 0;
    qint64 set = 0;
    qint64 other = 0;

    /// Those that a map takes for set.
    qint64 Covered() const { return set + other; }
    /// Inline and without jumps, as packets come by the million.
    void Add(uchar value, qint64 count)
    {
        const qint64 clearCount = value == MaskClear ? count : 0;
        const qint64 setCount = value == MaskSet ? count : 0;
        clear += clearCount;
        set += setCount;
        other += count - clearCount - setCount;
    }
};

/// The size that the header of a layer bitmap gives; empty when there is no whole header.
QSize TargaSize(const ByteReader& read);

/// A layer bitmap decoded a band of rows at a time, in any order, with the pixels that DecodeTarga
/// would give. Only where the bands begin in the file is kept, so that many large bitmaps can be
/// gone through side by side.
class TargaBands
{
public:
    static constexpr int BandRows = 64;

    /// Looks through the packets once. byteCount is the file's; size the one that the image shall
    /// have.
    TargaBands(ByteReader read, qint64 byteCount, QSize size);

    TargaError Error() const { return m_error; }
    /// The reader gave fewer bytes than the file had at first: what was read last is not known.
    bool HasFailed() const { return m_hasFailed; }
    /// The file has fewer bytes than its pixels need.
    bool IsCutOff() const { return m_isCutOff; }
    /// 0 after an error or a failure.
    int Count() const { return static_cast<int>(m_starts.size()); }

    /// True only for a band that has no set pixel; there need be no mask of it. Raw files are not
    /// looked through.
    bool IsClear(int band) const { return !m_starts.at(static_cast<std::size_t>(band)).hasSet; }
    /// The rows of a band as a mask; null when there is no memory or reading fails. Bands count
    /// from the bottom of the image, as maps do; the last one may be lower.
    QImage Decode(int band);
    /// Of the whole image; all 0 after an error. Raw files are read for it: false when there is no
    /// memory or reading fails.
    bool CountPixels(PixelCounts& counts);

private:
    /// Where a row begins: the rest of the packet that it begins in, and what follows that.
    struct Start
    {
        int storedRow = 0;
        qint64 offset = 0;
        uchar packet[2] = {};
        int packetBytes = 0;
        bool hasSet = false;
    };

    int Rows(int band) const;
    /// The band's first row in the order of the file.
    int StoredRow(int band) const;
    void FindPackets();
    std::vector<uchar> Header(int rows) const;
    QImage DecodePackets(int band);
    QImage DecodeRaw(int band);
    /// False when reading fails.
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
    /// By band.
    std::vector<Start> m_starts;
    /// Of the packets.
    PixelCounts m_counts;
    /// Behind the last byte that is needed.
    qint64 m_end = 0;
};

} // namespace raster
