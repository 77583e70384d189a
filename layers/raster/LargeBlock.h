#pragma once

#include <QtGlobal>

namespace raster {

/// Memory for the pixels of large images. Fresh pages of the system cost several times what is
/// computed into them, and the C library gives blocks above 32 MB back to it at once; so the last
/// one that was given back is kept for the next image of that size, and pages are large where there
/// are such. May be used from any thread.
class LargeBlock
{
public:
    /// Smaller blocks are kept by the C library itself; larger ones would be missed elsewhere.
    static bool Serves(qint64 byteCount) { return byteCount > 32 << 20 && byteCount <= 256 << 20; }

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
