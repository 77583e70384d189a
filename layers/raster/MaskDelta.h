#pragma once

#include "layers/raster/TileRecords.h"

#include <QImage>
#include <QRect>

#include <memory>
#include <optional>
#include <vector>

class QIODevice;

namespace raster {

class SpillFile;

/// What a mask was like before it was changed: the tiles that the change touched, packed. Undo
/// exchanges them with those of the mask, so what is kept is always the other side, and one side
/// only. A delta belongs to the edit that changed the mask.
///
/// Masks are Format_Indexed8 images. Whatever fails for want of memory, or because a file cannot
/// be read or written, leaves the delta and the mask as they were.
class MaskDelta
{
public:
    MaskDelta();
    ~MaskDelta();
    MaskDelta(MaskDelta&& other) noexcept;
    MaskDelta& operator=(MaskDelta&& other) noexcept;
    Q_DISABLE_COPY(MaskDelta)

    /// The tiles of before that differ from those of after; both have the same size. Nothing when
    /// they don't, or when there is no memory.
    static std::optional<MaskDelta> Between(const QImage& before, const QImage& after);
    /// The same tiles as they are in the mask now. Exchanged with a mask as it was before, they
    /// repeat the change.
    std::optional<MaskDelta> Present(const QImage& mask) const;

    /// Keeps the tiles that rect (mask pixels, may reach beyond the border) meets, unless they are
    /// kept already. Called before the pixels change, with one and the same mask from the first
    /// call on. False, when there is no memory for it: some tiles may be kept, which does no harm.
    bool Touch(const QImage& mask, const QRect& rect);
    /// Ends the recording: drops tiles that equal those of the mask, and spare memory. False when
    /// none is left.
    bool DropUnchanged(const QImage& mask);
    bool IsEmpty() const;

    /// Exchanges the kept tiles and those of the mask, and returns the smallest rectangle around
    /// the pixels that changed, in mask pixels; it is empty when none did. The mask is not shared
    /// (QImage::isDetached), else Qt copies it as a whole. Nothing when that or the memory for the
    /// other side fails, when the spilled bytes cannot be read, or for a mask of another size.
    std::optional<QRect> Swap(QImage& mask);

    /// Calls visit(number) for each kept tile, unless they are spilled.
    template <typename Visit>
    void ForEachTile(Visit visit) const
    {
        m_records.ForEach([&visit](const TileRecords::Record& record) {
            visit(record.number);
            return true;
        });
    }

    /// The memory that it takes, all included.
    qint64 ByteCount() const;
    /// Moves the tiles to a file; they come back when they are needed. False when the file cannot
    /// take them, as on a full disk. A delta without tiles, or one that is spilled, has nothing to
    /// move.
    bool SpillTo(const std::shared_ptr<SpillFile>& file);
    bool IsSpilled() const { return m_spilled != nullptr; }

    /// Writes width and height of the mask (four bytes each), the length of the records (eight
    /// bytes) and the records, lowest bytes first. False when not all could be written.
    bool Write(QIODevice& to) const;
    /// Reads what Write wrote, for a mask of that size. Returns nothing for any other bytes.
    static std::optional<MaskDelta> Read(QIODevice& from, QSize size);

private:
    class Spilled;

    bool Keep(const QImage& mask, int number);
    bool IsOf(const QImage& mask) const;
    bool MakeLookup();
    bool IsSound();
    /// Brings spilled tiles back to memory.
    bool Fetch();

    QSize m_size;
    TileRecords m_records;
    /// A bit for each tile that is kept; empty while none is added.
    std::vector<quint64> m_lookup;
    std::unique_ptr<Spilled> m_spilled;
};

} // namespace raster
