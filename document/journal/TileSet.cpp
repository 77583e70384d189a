#include "document/journal/TileSet.h"

#include "layers/raster/MaskTile.h"

#include <QtAlgorithms>

#include <algorithm>

TileSet::TileSet(QSize size)
    : m_size(size.expandedTo({0, 0}))
    , m_words(static_cast<std::size_t>((raster::TileCount(m_size) + WordBits - 1) / WordBits))
{
}

void TileSet::Add(const QRect& rect)
{
    const QRect inside = rect & QRect(QPoint(), m_size);
    if (inside.isEmpty()) {
        return;
    }
    const int columns = raster::TileColumns(m_size);
    for (int y = inside.top() / raster::TileSide; y <= inside.bottom() / raster::TileSide; ++y) {
        for (int x = inside.left() / raster::TileSide; x <= inside.right() / raster::TileSide;
             ++x) {
            Add(y * columns + x);
        }
    }
}

void TileSet::AddAll()
{
    Add(QRect(QPoint(), m_size));
}

void TileSet::Add(const TileSet& other)
{
    for (std::size_t i = 0; i < m_words.size(); ++i) {
        m_words[i] |= other.m_words[i];
    }
}

void TileSet::Clear()
{
    std::fill(m_words.begin(), m_words.end(), quint64(0));
}

int TileSet::Next(int from) const
{
    std::size_t i = WordOf(from);
    if (i >= m_words.size()) {
        return -1;
    }
    quint64 word = m_words[i] & (~quint64(0) << (from % WordBits));
    while (word == 0) {
        if (++i == m_words.size()) {
            return -1;
        }
        word = m_words[i];
    }
    return static_cast<int>(i) * WordBits + static_cast<int>(qCountTrailingZeroBits(word));
}
