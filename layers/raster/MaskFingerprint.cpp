#include "layers/raster/MaskFingerprint.h"

#include "layers/raster/MaskTile.h"

#include <QtEndian>

#include <algorithm>

namespace raster {
namespace {

constexpr quint64 Prime1 = 0x9E3779B185EBCA87U;
constexpr quint64 Prime2 = 0xC2B2AE3D27D4EB4FU;
constexpr quint64 Prime3 = 0x165667B19E3779F9U;
constexpr quint64 Prime4 = 0x85EBCA77C2B2AE63U;

quint64 Rotated(quint64 value, int bits)
{
    return (value << bits) | (value >> (64 - bits));
}

quint64 Round(quint64 lane, quint64 input)
{
    return Rotated(lane + input * Prime2, 31) * Prime1;
}

quint64 Merged(quint64 hash, quint64 lane)
{
    return (hash ^ Round(0, lane)) * Prime1 + Prime4;
}

quint64 Avalanche(quint64 hash)
{
    hash = (hash ^ (hash >> 33)) * Prime2;
    hash = (hash ^ (hash >> 29)) * Prime3;
    return hash ^ (hash >> 32);
}

} // namespace

quint64 Hash64(const uchar* bytes, int count, quint64 seed)
{
    quint64 a = seed + Prime1 + Prime2;
    quint64 b = seed + Prime2;
    quint64 c = seed;
    quint64 d = seed - Prime1;
    for (const uchar* at = bytes; at < bytes + count; at += 32) {
        a = Round(a, qFromLittleEndian<quint64>(at));
        b = Round(b, qFromLittleEndian<quint64>(at + 8));
        c = Round(c, qFromLittleEndian<quint64>(at + 16));
        d = Round(d, qFromLittleEndian<quint64>(at + 24));
    }
    quint64 hash = Rotated(a, 1) + Rotated(b, 7) + Rotated(c, 12) + Rotated(d, 18);
    hash = Merged(Merged(Merged(Merged(hash, a), b), c), d);
    return Avalanche(hash + static_cast<quint64>(count));
}

void MaskFingerprint::Touch(const QRect& rect)
{
    const QRect part = rect & QRect(QPoint(), m_size);
    if (part.isEmpty()) {
        return;
    }
    const int columns = TileColumns(m_size);
    for (int row = part.top() / TileSide; row <= part.bottom() / TileSide; ++row) {
        for (int column = part.left() / TileSide; column <= part.right() / TileSide; ++column) {
            TouchTile(row * columns + column);
        }
    }
}

void MaskFingerprint::TouchTile(int number)
{
    if (number >= 0 && number < static_cast<int>(m_isTouched.size())) {
        m_isTouched[static_cast<std::size_t>(number)] = true;
        m_isAnyTouched = true;
    }
}

void MaskFingerprint::TouchAll()
{
    std::fill(m_isTouched.begin(), m_isTouched.end(), true);
    m_isAnyTouched = true;
}

void MaskFingerprint::Begin(QSize size)
{
    m_size = size;
    m_sum = 0;
    m_hashes.assign(static_cast<std::size_t>(TileCount(size)), 0);
    m_isTouched.assign(m_hashes.size(), true);
    m_isAnyTouched = true;
}

void MaskFingerprint::ReadTile(const QImage& mask, std::size_t number)
{
    const auto stride = static_cast<qint64>(mask.bytesPerLine());
    const QRect rect = TileRect(m_size, static_cast<int>(number));
    MaskTile tile;
    tile.Load(mask.constBits() + rect.y() * stride + rect.x(), stride, rect.size());
    const quint64 hash = Hash64(tile.pixels, TilePixels, number);
    // Sums change with a tile without the others being read.
    m_sum += hash - m_hashes[number];
    m_hashes[number] = hash;
    m_isTouched[number] = false;
}

bool MaskFingerprint::Read(const QImage& mask, const std::function<bool()>& isTimeUp)
{
    if (mask.isNull() || mask.format() != QImage::Format_Indexed8) {
        return true;
    }
    if (mask.size() != m_size) {
        Begin(mask.size());
    }
    for (std::size_t i = 0; m_isAnyTouched && i < m_hashes.size(); ++i) {
        if (m_isTouched[i]) {
            ReadTile(mask, i);
            if (isTimeUp()) {
                return false;
            }
        }
    }
    m_isAnyTouched = false;
    return true;
}

quint64 MaskFingerprint::Of(const QImage& mask)
{
    if (mask.isNull() || mask.format() != QImage::Format_Indexed8) {
        return 0;
    }
    Read(mask, [] { return false; });
    const auto size =
        (static_cast<quint64>(m_size.width()) << 32) | static_cast<quint64>(m_size.height());
    return std::max<quint64>(Avalanche(m_sum + size * Prime1), 1);
}

} // namespace raster
