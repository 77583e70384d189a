#pragma once

#include <QIODevice>

#include <map>
#include <memory>

namespace raster {

/// A temporary file that takes what would need too much memory, in parts whose room is used again.
/// Its owner and everything that has a part in it share it.
class SpillFile
{
public:
    /// The device is still closed; the first part opens it for reading and writing, without a
    /// buffer, so that a full disk shows with the write that meets it.
    explicit SpillFile(std::unique_ptr<QIODevice> device);
    Q_DISABLE_COPY(SpillFile)

    /// The place of that many bytes, which belong to the caller until they are given back.
    qint64 Take(qint64 length);
    void GiveBack(qint64 offset, qint64 length);
    /// The device, standing at the offset; null when it cannot be opened or stand there.
    QIODevice* DeviceAt(qint64 offset);
    /// How far the parts reach.
    qint64 Length() const { return m_end; }

private:
    std::unique_ptr<QIODevice> m_device;
    qint64 m_end = 0;
    /// Lengths by offset; no two touch, and none reaches the end.
    std::map<qint64, qint64> m_gaps;
};

} // namespace raster
