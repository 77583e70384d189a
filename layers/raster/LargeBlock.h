#pragma once

#include <QtGlobal>

namespace raster {

/// Memory for the pixels of large images. Fresh pages of the system cost several times what is
/// computed into them, and the C library gives blocks above 32 MB back to it at once; so the last
/// one that was given back is kept for the next image of that size, and pages are large where there
/// are such. What is kept, 64 MiB at most, stays until another size is taken or the program ends.
/// May be used from any thread.
class LargeBlock
{
public:
    /// Smaller blocks are kept by the C library itself.
    static bool Serves(qint64 byteCount) { return byteCount > 32 << 20; }
    /// The masks of a dense world, 8192 pixels a side, are; larger blocks would be missed elsewhere
    /// and go back to the system.
    static bool Keeps(qint64 byteCount) { return byteCount <= 64 << 20; }

    /// Null when there is no memory. The bytes are those of whatever was there before.
    static LargeBlock* Take(qint64 byteCount);
    /// For QImage, which calls it when it is done with the bytes.
    static void GiveBack(void* block);

    uchar* Bytes() { return m_bytes; }

private:
    LargeBlock(uchar* bytes, qint64 byteCount);
    ~LargeBlock();
    Q_DISABLE_COPY(LargeBlock)

    uchar* m_bytes;
    qint64 m_byteCount;
};

} // namespace raster
