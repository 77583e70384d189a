#pragma once

#include <QtGlobal>

#include <cstdlib>
#include <memory>
#include <vector>

class QIODevice;

namespace raster {

/// Tile numbers with packed tiles, one after another; the bytes in memory are those in a file. A
/// record is the number, as four bytes with the lowest first, and the packed tile. Memory comes in
/// blocks, so nothing is copied when there is more, and a record lies in one block.
class TileRecords
{
public:
    struct Record
    {
        int number;
        const uchar* packed;
        /// The number of packed bytes.
        int length;
    };

    bool IsEmpty() const { return m_blocks.empty(); }
    /// The length of all records in bytes.
    qint64 Length() const;
    /// The memory that they take.
    qint64 ByteCount() const;

    /// Room for the packed tile of the next record, MaxPackedTile bytes; null when there is no
    /// memory. It is no record before Append.
    uchar* Room();
    /// Takes what was packed into the Room as a record.
    void Append(int number, int packedLength);
    /// Gives spare memory back.
    void Squeeze();

    /// Calls visit(record) for each until one returns false, and returns what the last one did.
    template <typename Visit>
    bool ForEach(Visit visit) const
    {
        for (const Block& block : m_blocks) {
            for (int at = 0; at < block.used;) {
                const Record record = At(block, at);
                at += HeaderLength + record.length;
                if (!visit(record)) {
                    return false;
                }
            }
        }
        return true;
    }

    /// Keeps the records for which keep(record) is true.
    template <typename Keep>
    void Filter(Keep keep)
    {
        for (Block& block : m_blocks) {
            int end = 0;
            for (int at = 0; at < block.used;) {
                const Record record = At(block, at);
                const int length = HeaderLength + record.length;
                if (keep(record)) {
                    Move(block, at, end, length);
                    end += length;
                }
                at += length;
            }
            block.used = end;
        }
        Squeeze();
    }

    /// False when not all bytes could be written.
    bool Write(QIODevice& to) const;
    /// Reads that many bytes. False when they are not there, are no whole records, or are longer
    /// than memory; what the records hold is not looked at, except for the kinds of tiles.
    bool Read(QIODevice& from, qint64 length);

private:
    struct Free
    {
        void operator()(uchar* bytes) const { std::free(bytes); }
    };
    struct Block
    {
        std::unique_ptr<uchar, Free> bytes;
        int used = 0;
        int capacity = 0;
    };

    static constexpr int HeaderLength = 4;

    static Record At(const Block& block, int at);
    static void Move(Block& block, int from, int to, int length);
    static bool Resize(Block& block, int capacity);
    bool AddBlock(int capacity);
    static int WholeRecords(const Block& block, int filled);

    std::vector<Block> m_blocks;
};

} // namespace raster
