#pragma once

#include <QRect>
#include <QSize>

#include <cstddef>
#include <vector>

/// A set of the tiles of a mask, by their numbers (raster::TileRect).
class TileSet
{
public:
    /// Empty. size: of the mask.
    explicit TileSet(QSize size = {});

    /// The tiles that the rectangle of mask pixels meets; it may reach beyond the border.
    void Add(const QRect& rect);
    void AddAll();
    void Add(int tile) { m_words[WordOf(tile)] |= BitOf(tile); }
    /// Adds the tiles of the other set, whose mask has the same size.
    void Add(const TileSet& other);
    void Remove(int tile) { m_words[WordOf(tile)] &= ~BitOf(tile); }
    void Clear();
    bool Contains(int tile) const { return (m_words[WordOf(tile)] & BitOf(tile)) != 0; }

    /// The first tile of the set from that number on; -1 when there is none.
    int Next(int from) const;
    bool IsEmpty() const { return Next(0) < 0; }

private:
    static constexpr int WordBits = 64;

    static std::size_t WordOf(int tile) { return static_cast<std::size_t>(tile / WordBits); }
    static quint64 BitOf(int tile) { return quint64(1) << (tile % WordBits); }

    QSize m_size;
    std::vector<quint64> m_words;
};
