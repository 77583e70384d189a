#include "layers/raster/TargaBands.h"

#include "layers/raster/Mask.h"

#include <QtEndian>

#include <algorithm>
#include <utility>

namespace raster {
namespace {

constexpr uchar RunLengthBit = 8;
constexpr uchar TopDownBit = 0x20;
constexpr uchar RunBit = 0x80;

/// Reads the bytes of a file one after the other, in blocks.
class Cursor
{
public:
    Cursor(const ByteReader& read, qint64 offset, qint64 end)
        : m_read(read)
        , m_blockEnd(offset)
        , m_end(end)
    {
    }

    qint64 Offset() const { return m_blockEnd - (m_stop - m_at); }
    qint64 Left() const { return m_end - Offset(); }
    /// True if the file had fewer bytes than expected. Missing bytes read as 0.
    bool HasFailed() const { return m_hasFailed; }

    /// Returns the next byte. Call it only while bytes are left.
    uchar Take()
    {
        if (m_at == m_stop) {
            m_block.assign(static_cast<std::size_t>(std::min<qint64>(Left(), BlockSize)), 0);
            m_at = m_block.data();
            m_stop = m_at + m_block.size();
            m_hasFailed |= m_read(m_blockEnd, m_block.data(), m_stop - m_at) != m_stop - m_at;
            m_blockEnd += m_stop - m_at;
        }
        return *m_at++;
    }

private:
    static constexpr qint64 BlockSize = 1 << 16;

    const ByteReader& m_read;
    std::vector<uchar> m_block;
    const uchar* m_at = nullptr;
    const uchar* m_stop = nullptr;
    /// Offsets in the file.
    qint64 m_blockEnd;
    qint64 m_end;
    bool m_hasFailed = false;
};

struct Packet
{
    bool isRun = false;
    /// The number of pixels in the packet's header, and how many of them are in the file and in the
    /// image.
    int count = 0;
    qint64 present = 0;
    /// The offset of its first pixel in the file.
    qint64 data = 0;
    uchar last = MaskClear;
    bool hasSet = false;
};

Packet TakePacket(Cursor& cursor, qint64 wanted, PixelCounts& counts)
{
    Packet packet;
    const uchar header = cursor.Take();
    packet.isRun = (header & RunBit) != 0;
    packet.count = (header & ~RunBit) + 1;
    packet.data = cursor.Offset();
    packet.present = std::min<qint64>(packet.count, wanted);
    if (packet.isRun) {
        packet.last = cursor.Take();
        packet.hasSet = packet.last != MaskClear;
        counts.Add(packet.last, packet.present);
        return packet;
    }
    packet.present = std::min(packet.present, cursor.Left());
    for (qint64 i = 0; i < packet.present; ++i) {
        packet.last = cursor.Take();
        packet.hasSet |= packet.last != MaskClear;
        counts.Add(packet.last, 1);
    }
    return packet;
}

} // namespace

QSize TargaSize(const ByteReader& read)
{
    uchar header[TargaHeaderSize] = {};
    if (read(0, header, TargaHeaderSize) != TargaHeaderSize) {
        return {0, 0};
    }
    return {qFromLittleEndian<quint16>(header + 12), qFromLittleEndian<quint16>(header + 14)};
}

TargaBands::TargaBands(ByteReader read, qint64 byteCount, QSize size)
    : m_read(std::move(read))
    , m_byteCount(byteCount)
    , m_size(size)
{
    const qint64 headerCount = std::max<qint64>(m_read(0, m_header, TargaHeaderSize), 0);
    m_hasFailed = headerCount != std::min<qint64>(TargaHeaderSize, byteCount);
    m_error = CheckTargaHeader(m_header, headerCount, size);
    if (m_error == TargaError::None && !IsMaskSize(size)) {
        m_error = TargaError::NoImage;
    }
    if (m_error != TargaError::None || m_hasFailed) {
        return;
    }
    m_isRunLength = (m_header[2] & RunLengthBit) != 0;
    m_isTopDown = (m_header[17] & TopDownBit) != 0;
    m_starts.resize(static_cast<std::size_t>((size.height() + BandRows - 1) / BandRows));
    for (int band = 0; band < Count(); ++band) {
        m_starts[static_cast<std::size_t>(band)].storedRow = StoredRow(band);
        m_starts[static_cast<std::size_t>(band)].hasSet = !m_isRunLength;
    }
    if (m_isRunLength) {
        FindPackets();
    } else {
        const qint64 needed = TargaHeaderSize + qint64(size.width()) * size.height();
        m_isCutOff = m_byteCount < needed;
        m_end = std::min(needed, m_byteCount);
    }
}

int TargaBands::Rows(int band) const
{
    return std::min(BandRows, m_size.height() - band * BandRows);
}

int TargaBands::StoredRow(int band) const
{
    const int bottom = band * BandRows;
    return m_isTopDown ? m_size.height() - bottom - Rows(band) : bottom;
}

void TargaBands::FindPackets()
{
    std::vector<Start*> starts;
    for (Start& start : m_starts) {
        starts.push_back(&start);
    }
    std::sort(starts.begin(), starts.end(),
              [](const Start* a, const Start* b) { return a->storedRow < b->storedRow; });
    const qint64 width = m_size.width();
    const qint64 pixelCount = width * m_size.height();
    auto next = starts.begin();
    Cursor cursor(m_read, TargaHeaderSize, m_byteCount);
    PixelCounts counts;
    uchar last = MaskClear;
    qint64 pixel = 0;
    // The start of the present band, and the pixel at which the next band begins. The first band
    // begins with the first packet.
    Start* current = *next;
    qint64 nextPixel = 0;
    const auto pixelOf = [&](const auto& start) {
        return start == starts.end() ? pixelCount : width * (*start)->storedRow;
    };
    while (pixel < pixelCount && cursor.Left() >= 2 && !cursor.HasFailed()) {
        const Packet packet = TakePacket(cursor, pixelCount - pixel, counts);
        last = packet.last;
        if (pixel < nextPixel) {
            current->hasSet |= packet.hasSet;
        }
        for (; nextPixel < pixel + packet.present; nextPixel = pixelOf(next)) {
            const auto passed = static_cast<int>(nextPixel - pixel);
            Start& start = **next++;
            start.packet[0] =
                static_cast<uchar>((packet.count - passed - 1) | (packet.isRun ? RunBit : 0));
            start.packet[1] = last;
            start.packetBytes = packet.isRun ? 2 : 1;
            start.offset = packet.isRun ? cursor.Offset() : packet.data + passed;
            start.hasSet = packet.hasSet;
            current = &start;
        }
        pixel += packet.present;
    }
    if (cursor.HasFailed()) {
        m_hasFailed = true;
        m_starts.clear();
        return;
    }
    m_isCutOff = pixel < pixelCount;
    m_end = cursor.Offset();
    // Missing pixels repeat the last one.
    if (m_isCutOff) {
        counts.Add(last, pixelCount - pixel);
        current->hasSet |= last != MaskClear;
    }
    m_counts = counts;
    for (; next != starts.end(); ++next) {
        Start& start = **next;
        start.packet[0] = RunBit;
        start.packet[1] = last;
        start.packetBytes = 2;
        start.offset = m_end;
        start.hasSet = last != MaskClear;
    }
}

std::vector<uchar> TargaBands::Header(int rows) const
{
    std::vector<uchar> header(m_header, m_header + TargaHeaderSize);
    qToLittleEndian(static_cast<quint16>(rows), &header[14]);
    return header;
}

bool TargaBands::Append(std::vector<uchar>& file, qint64 offset, qint64 count)
{
    if (count > 0) {
        const std::size_t used = file.size();
        file.resize(used + static_cast<std::size_t>(count));
        m_hasFailed = m_read(offset, file.data() + used, count) != count;
    }
    return !m_hasFailed;
}

QImage TargaBands::Decode(int band)
{
    if (band < 0 || band >= Count()) {
        return {};
    }
    return m_isRunLength ? DecodePackets(band) : DecodeRaw(band);
}

bool TargaBands::CountPixels(PixelCounts& counts)
{
    counts = m_counts;
    for (int band = 0; band < Count() && !m_isRunLength; ++band) {
        const QImage rows = DecodeRaw(band);
        if (rows.isNull()) {
            return false;
        }
        for (int y = 0; y < rows.height(); ++y) {
            const uchar* begin = rows.constScanLine(y);
            const uchar* end = begin + rows.width();
            const auto clear = static_cast<qint64>(std::count(begin, end, MaskClear));
            const auto set = static_cast<qint64>(std::count(begin, end, MaskSet));
            counts.clear += clear;
            counts.set += set;
            counts.other += rows.width() - clear - set;
        }
    }
    return true;
}

QImage TargaBands::DecodePackets(int band)
{
    const Start& start = m_starts[static_cast<std::size_t>(band)];
    // Read the bytes up to the next band in the file.
    const int nextBand = m_isTopDown ? band - 1 : band + 1;
    const bool isLast = nextBand < 0 || nextBand >= Count();
    const qint64 end = isLast ? m_end : m_starts[static_cast<std::size_t>(nextBand)].offset;
    std::vector<uchar> file = Header(Rows(band));
    file.insert(file.end(), start.packet, start.packet + start.packetBytes);
    if (!Append(file, start.offset, end - start.offset)) {
        return {};
    }
    return DecodeTarga(file.data(), static_cast<qint64>(file.size()), {m_size.width(), Rows(band)})
        .mask;
}

QImage TargaBands::DecodeRaw(int band)
{
    const int width = m_size.width();
    const int rows = Rows(band);
    // From this row on, rows are incomplete in the file. They are all equal, and the first of them
    // depends on the row before.
    const auto firstMissing = static_cast<int>(qMax<qint64>(m_end - TargaHeaderSize, 0) / width);
    const int storedRow = std::min(StoredRow(band), firstMissing);
    const bool isWhole = storedRow + rows <= firstMissing;
    const int before = isWhole || storedRow == 0 ? 0 : 1;

    std::vector<uchar> file = Header(rows + before);
    const qint64 offset = TargaHeaderSize + qint64(storedRow - before) * width;
    if (!Append(file, offset, std::min<qint64>(m_end - offset, qint64(rows + before) * width))) {
        return {};
    }
    QImage mask =
        DecodeTarga(file.data(), static_cast<qint64>(file.size()), {width, rows + before}).mask;
    if (before == 0 || mask.isNull()) {
        return mask;
    }
    return mask.copy(0, m_isTopDown ? before : 0, width, rows);
}

} // namespace raster
