#include "layers/raster/TileRecords.h"

#include "layers/raster/MaskTile.h"

#include <QIODevice>
#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <utility>

namespace raster {

namespace {

constexpr int BlockLength = 1 << 20;
constexpr int FirstLength = 1 << 14;

} // namespace

qint64 TileRecords::Length() const
{
    qint64 length = 0;
    for (const Block& block : m_blocks) {
        length += block.used;
    }
    return length;
}

qint64 TileRecords::ByteCount() const
{
    const std::size_t index = m_blocks.capacity() * sizeof(Block);
    auto count = static_cast<qint64>(index);
    for (const Block& block : m_blocks) {
        count += block.capacity;
    }
    return count;
}

uchar* TileRecords::Room()
{
    constexpr int needed = HeaderLength + MaxPackedTile;
    if (m_blocks.empty()) {
        if (!AddBlock(FirstLength)) {
            return nullptr;
        }
    } else if (m_blocks.back().capacity - m_blocks.back().used < needed) {
        Block& last = m_blocks.back();
        const int doubled = std::max(2 * last.capacity, FirstLength);
        const bool isGrown = doubled <= BlockLength ? Resize(last, doubled) : AddBlock(BlockLength);
        if (!isGrown) {
            return nullptr;
        }
    }
    const Block& block = m_blocks.back();
    return block.bytes.get() + block.used + HeaderLength;
}

void TileRecords::Append(int number, int packedLength)
{
    Block& block = m_blocks.back();
    qToLittleEndian(static_cast<quint32>(number), block.bytes.get() + block.used);
    block.used += HeaderLength + packedLength;
}

void TileRecords::Squeeze()
{
    m_blocks.erase(std::remove_if(m_blocks.begin(), m_blocks.end(),
                                  [](const Block& block) { return block.used == 0; }),
                   m_blocks.end());
    m_blocks.shrink_to_fit();
    for (Block& block : m_blocks) {
        if (block.used < block.capacity) {
            Resize(block, block.used);
        }
    }
}

bool TileRecords::Write(QIODevice& to) const
{
    return std::all_of(m_blocks.begin(), m_blocks.end(), [&to](const Block& block) {
        return to.write(reinterpret_cast<const char*>(block.bytes.get()), block.used) == block.used;
    });
}

bool TileRecords::Read(QIODevice& from, qint64 length)
{
    m_blocks.clear();
    // What a block ends with before it is a whole record.
    QByteArray rest;
    while (length > 0) {
        const int begun = rest.size();
        const int more = static_cast<int>(std::min<qint64>(length, BlockLength - begun));
        if (!AddBlock(begun + more)) {
            return false;
        }
        Block& block = m_blocks.back();
        std::copy(rest.cbegin(), rest.cend(), block.bytes.get());
        if (from.read(reinterpret_cast<char*>(block.bytes.get()) + begun, more) != more) {
            return false;
        }
        block.used = WholeRecords(block, begun + more);
        if (block.used < 0) {
            return false;
        }
        rest = QByteArray(reinterpret_cast<const char*>(block.bytes.get()) + block.used,
                          begun + more - block.used);
        length -= more;
    }
    Squeeze();
    return rest.isEmpty();
}

TileRecords::Record TileRecords::At(const Block& block, int at)
{
    const uchar* record = block.bytes.get() + at;
    const uchar* packed = record + HeaderLength;
    return {static_cast<int>(qFromLittleEndian<quint32>(record)), packed,
            PackedTileLength(packed[0])};
}

void TileRecords::Move(Block& block, int from, int to, int length)
{
    uchar* bytes = block.bytes.get();
    if (from != to) {
        std::memmove(bytes + to, bytes + from, static_cast<std::size_t>(length));
    }
}

bool TileRecords::Resize(Block& block, int capacity)
{
    auto* bytes =
        static_cast<uchar*>(std::realloc(block.bytes.get(), static_cast<std::size_t>(capacity)));
    if (!bytes) {
        return false;
    }
    Q_UNUSED(block.bytes.release())
    block.bytes.reset(bytes);
    block.capacity = capacity;
    return true;
}

bool TileRecords::AddBlock(int capacity)
{
    Block block;
    if (!Resize(block, capacity)) {
        return false;
    }
    m_blocks.push_back(std::move(block));
    return true;
}

/// The length of the whole records among the first bytes; -1 when one has a tile of no kind.
int TileRecords::WholeRecords(const Block& block, int filled)
{
    int at = 0;
    while (filled - at > HeaderLength) {
        const int length = At(block, at).length;
        if (length == 0) {
            return -1;
        }
        if (filled - at - HeaderLength < length) {
            break;
        }
        at += HeaderLength + length;
    }
    return at;
}

} // namespace raster
