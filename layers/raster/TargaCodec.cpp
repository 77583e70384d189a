#include "layers/raster/TargaCodec.h"

#include "layers/raster/Mask.h"

#include <QtAlgorithms>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace raster {
namespace {

constexpr int MaxRun = 128;
constexpr uchar GreyBits = 3;
constexpr uchar RunLengthBit = 8;
constexpr uchar TopDownBit = 0x20;
constexpr uchar RunBit = 0x80;

struct Header
{
    std::array<uchar, TargaHeaderSize> bytes{};

    uchar IdLength() const { return bytes[0]; }
    uchar ColourMapType() const { return bytes[1]; }
    uchar ImageType() const { return bytes[2]; }
    int Width() const { return qFromLittleEndian<quint16>(&bytes[12]); }
    int Height() const { return qFromLittleEndian<quint16>(&bytes[14]); }
    bool IsTopDown() const { return (bytes[17] & TopDownBit) != 0; }
};

Header HeaderOf(const uchar* file, qint64 byteCount)
{
    Header header;
    std::copy(file, file + std::min<qint64>(byteCount, TargaHeaderSize), header.bytes.begin());
    return header;
}

TargaError Check(const Header& header, QSize size)
{
    if (header.IdLength() != 0 || header.ColourMapType() != 0) {
        return TargaError::TypeMismatch;
    }
    if ((header.ImageType() & GreyBits) != GreyBits) {
        return TargaError::ColourFormat;
    }
    if (header.Width() != size.width() || header.Height() != size.height()) {
        return TargaError::WrongSize;
    }
    return TargaError::None;
}

/// Takes the pixels in the order of the file and writes them to their places in the mask. The mask
/// starts clear, so clear runs are not written and take no memory.
class PixelWriter
{
public:
    PixelWriter(QImage& mask, bool isTopDown)
        : m_pieceLength(mask.width())
        , m_piecesLeft(mask.height() - 1)
        , m_step(isTopDown ? mask.bytesPerLine() : -mask.bytesPerLine())
    {
        if (m_step == m_pieceLength) {
            m_pieceLength *= mask.height();
            m_piecesLeft = 0;
        }
        BeginPiece(mask.scanLine(isTopDown ? 0 : mask.height() - 1));
    }

    qint64 Room() const { return RoomInPiece() + m_piecesLeft * m_pieceLength; }
    bool IsFull() const { return m_next == m_end && m_piecesLeft == 0; }

    void Repeat(uchar value, qint64 count)
    {
        if (count <= ShortRun && RoomInPiece() >= ShortRun) {
            // A store of fixed size is much faster. Later pixels overwrite the excess.
            std::memset(m_next, value, ShortRun);
            m_writtenEnd = m_next + ShortRun;
            m_next += count;
            return;
        }
        while (count > RoomInPiece()) {
            count -= RoomInPiece();
            RepeatInPiece(value, RoomInPiece());
            if (!NextPiece()) {
                return;
            }
        }
        RepeatInPiece(value, count);
    }

    void Copy(const uchar* from, qint64 count)
    {
        while (count > RoomInPiece()) {
            count -= RoomInPiece();
            from = CopyInPiece(from, RoomInPiece());
            if (!NextPiece()) {
                return;
            }
        }
        CopyInPiece(from, count);
    }

private:
    static constexpr int ShortRun = 16;

    qint64 RoomInPiece() const { return m_end - m_next; }

    void BeginPiece(uchar* begin)
    {
        m_begin = begin;
        m_next = begin;
        m_end = begin + m_pieceLength;
        m_writtenEnd = begin;
    }

    bool NextPiece()
    {
        if (m_piecesLeft == 0) {
            return false;
        }
        --m_piecesLeft;
        BeginPiece(m_begin + m_step);
        return true;
    }

    void RepeatInPiece(uchar value, qint64 count)
    {
        if (value != MaskClear) {
            std::memset(m_next, value, static_cast<std::size_t>(count));
        } else if (m_next < m_writtenEnd) {
            const qint64 written = std::min<qint64>(count, m_writtenEnd - m_next);
            std::memset(m_next, MaskClear, static_cast<std::size_t>(written));
        }
        m_next += count;
    }

    const uchar* CopyInPiece(const uchar* from, qint64 count)
    {
        std::memcpy(m_next, from, static_cast<std::size_t>(count));
        m_next += count;
        return from + count;
    }

    /// The number of contiguous pixels: a row, or all pixels if the rows have no padding.
    qint64 m_pieceLength;
    qint64 m_piecesLeft;
    /// The step in bytes from one piece to the next in the order of the file.
    qint64 m_step;
    uchar* m_begin = nullptr;
    uchar* m_next = nullptr;
    uchar* m_end = nullptr;
    /// After this position the pixels of the piece are clear.
    uchar* m_writtenEnd = nullptr;
};

void DecodeRunLength(const uchar* data, const uchar* end, PixelWriter pixels)
{
    uchar last = MaskClear;
    while (!pixels.IsFull() && data < end) {
        const uchar header = *data++;
        const int count = (header & ~RunBit) + 1;
        if (data == end) {
            break;
        }
        if ((header & RunBit) != 0) {
            last = *data++;
            pixels.Repeat(last, count);
        } else {
            const qint64 present = std::min<qint64>(count, end - data);
            pixels.Copy(data, present);
            data += present;
            last = data[-1];
        }
    }
    pixels.Repeat(last, pixels.Room());
}

void DecodeRaw(const uchar* data, const uchar* end, int width, PixelWriter pixels)
{
    const qint64 wholeRows = std::min<qint64>(pixels.Room(), (end - data) / width * width);
    pixels.Copy(data, wholeRows);
    if (pixels.IsFull()) {
        return;
    }
    std::vector<uchar> row(static_cast<std::size_t>(width), MaskClear);
    if (wholeRows > 0) {
        std::copy(data + wholeRows - width, data + wholeRows, row.begin());
    }
    std::copy(data + wholeRows, end, row.begin());
    const bool isClear =
        std::all_of(row.begin(), row.end(), [](uchar pixel) { return pixel == MaskClear; });
    while (!isClear && !pixels.IsFull()) {
        pixels.Copy(row.data(), width);
    }
}

/// Collects packets into larger blocks before they go to the sink.
class PacketWriter
{
public:
    explicit PacketWriter(const ByteSink& sink)
        : m_sink(sink)
        , m_block(BlockSize)
    {
    }

    /// Adds a run of any length as packets of at most 128 pixels.
    bool AddRun(uchar value, qint64 length)
    {
        for (; length > 0; length -= MaxRun) {
            if (m_used == BlockSize && !Flush()) {
                return false;
            }
            const auto count = std::min<qint64>(length, MaxRun);
            m_block[m_used++] = static_cast<char>((count - 1) | RunBit);
            m_block[m_used++] = static_cast<char>(value);
        }
        return true;
    }

    bool Flush()
    {
        const bool isWritten = m_sink(m_block.data(), static_cast<qint64>(m_used));
        m_used = 0;
        return isWritten;
    }

private:
    static constexpr std::size_t BlockSize = 1 << 18;

    const ByteSink& m_sink;
    std::vector<char> m_block;
    std::size_t m_used = 0;
};

/// How many bytes at the beginning equal the byte that fills words.
qint64 EqualBytes(const uchar* bytes, qint64 count, quint64 words)
{
    qint64 equal = 0;
    while (equal + qint64(sizeof words) <= count) {
        const quint64 difference = qFromLittleEndian<quint64>(bytes + equal) ^ words;
        if (difference != 0) {
            return equal + qCountTrailingZeroBits(difference) / 8;
        }
        equal += sizeof words;
    }
    while (equal < count && bytes[equal] == uchar(words)) {
        ++equal;
    }
    return equal;
}

/// How many bytes at the beginning equal the first one.
qint64 RunLength(const uchar* bytes, qint64 count)
{
    constexpr int block = 64;
    const uchar value = bytes[0];
    const quint64 words = value * 0x0101010101010101U;
    qint64 length = EqualBytes(bytes, std::min<qint64>(count, block), words);
    if (length < block) {
        return length;
    }
    while (length + block <= count) {
        uchar difference = 0;
        for (int i = 0; i < block; ++i) {
            difference |= bytes[length + i] ^ value;
        }
        if (difference != 0) {
            break;
        }
        length += block;
    }
    return length + EqualBytes(bytes + length, count - length, words);
}

bool EncodeRunLength(const QImage& mask, const ByteSink& sink)
{
    PacketWriter writer(sink);
    uchar value = mask.constScanLine(0)[0];
    qint64 pending = 0;
    for (int y = 0; y < mask.height(); ++y) {
        const uchar* row = mask.constScanLine(y);
        for (int x = 0; x < mask.width();) {
            const qint64 length = RunLength(row + x, mask.width() - x);
            if (row[x] != value) {
                if (!writer.AddRun(value, pending)) {
                    return false;
                }
                value = row[x];
                pending = 0;
            }
            pending += length;
            x += static_cast<int>(length);
        }
    }
    return writer.AddRun(value, pending) && writer.Flush();
}

bool EncodeRaw(const QImage& mask, const ByteSink& sink)
{
    if (mask.bytesPerLine() == mask.width()) {
        return sink(reinterpret_cast<const char*>(mask.constBits()), mask.sizeInBytes());
    }
    for (int y = 0; y < mask.height(); ++y) {
        if (!sink(reinterpret_cast<const char*>(mask.constScanLine(y)), mask.width())) {
            return false;
        }
    }
    return true;
}

} // namespace

qint64 TargaMaxBytes(QSize size)
{
    return TargaHeaderSize + 2 * qint64(qMax(size.width(), 0)) * qMax(size.height(), 0);
}

TargaError CheckTargaHeader(const uchar* file, qint64 byteCount, QSize size)
{
    return Check(HeaderOf(file, byteCount), size);
}

TargaResult DecodeTarga(const uchar* file, qint64 byteCount, QSize size)
{
    const Header header = HeaderOf(file, byteCount);
    const TargaError error = Check(header, size);
    if (error != TargaError::None) {
        return {{}, error};
    }
    QImage mask = BlankMask(size);
    if (mask.isNull()) {
        return {{}, TargaError::NoImage};
    }
    const uchar* data = file + std::min<qint64>(byteCount, TargaHeaderSize);
    const uchar* end = file + byteCount;
    const PixelWriter pixels(mask, header.IsTopDown());
    if ((header.ImageType() & RunLengthBit) != 0) {
        DecodeRunLength(data, end, pixels);
    } else {
        DecodeRaw(data, end, mask.width(), pixels);
    }
    return {mask, TargaError::None};
}

bool EncodeTarga(const QImage& mask, TargaPacking packing, const ByteSink& sink)
{
    const bool isRunLength = packing == TargaPacking::RunLength;
    Header header;
    header.bytes[2] = isRunLength ? GreyBits | RunLengthBit : GreyBits;
    qToLittleEndian(static_cast<quint16>(mask.width()), &header.bytes[12]);
    qToLittleEndian(static_cast<quint16>(mask.height()), &header.bytes[14]);
    header.bytes[16] = 8;
    header.bytes[17] = TopDownBit;
    if (!sink(reinterpret_cast<const char*>(header.bytes.data()), TargaHeaderSize)) {
        return false;
    }
    if (mask.isNull()) {
        return true;
    }
    return isRunLength ? EncodeRunLength(mask, sink) : EncodeRaw(mask, sink);
}

} // namespace raster
