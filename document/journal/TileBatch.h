#pragma once

#include "document/journal/JournalWriter.h"
#include "layers/raster/MaskTile.h"

#include <QtGlobal>

#include <memory>
#include <new>
#include <utility>
#include <vector>

/// Packed tiles of one layer, on their way to the worker.
class TileBatch
{
public:
    static constexpr int Capacity = 256 << 10;

    /// False without memory.
    bool Allocate()
    {
        m_bytes.reset(new (std::nothrow) uchar[Capacity]);
        return m_bytes != nullptr;
    }
    bool IsEmpty() const { return m_tiles.empty(); }
    bool IsFull() const { return m_used + raster::MaxPackedTile > Capacity; }
    uchar* Room() { return m_bytes.get() + m_used; }
    void Append(int tile, int length)
    {
        m_tiles.push_back({tile, length});
        m_used += length;
    }
    bool WriteTo(JournalWriter& writer, int layerId) const
    {
        const uchar* packed = m_bytes.get();
        for (const auto& [tile, length] : m_tiles) {
            if (!writer.AddTile(layerId, tile, packed, length)) {
                return false;
            }
            packed += length;
        }
        return true;
    }

private:
    std::unique_ptr<uchar[]> m_bytes;
    int m_used = 0;
    std::vector<std::pair<int, int>> m_tiles;
};
