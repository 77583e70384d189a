#include "layers/raster/SpillFile.h"

#include <algorithm>
#include <utility>

namespace raster {

SpillFile::SpillFile(std::unique_ptr<QIODevice> device)
    : m_device(std::move(device))
{
}

qint64 SpillFile::Take(qint64 length)
{
    const auto gap = std::find_if(m_gaps.begin(), m_gaps.end(),
                                  [length](const auto& entry) { return entry.second >= length; });
    if (gap == m_gaps.end()) {
        return std::exchange(m_end, m_end + length);
    }
    const auto [offset, room] = *gap;
    m_gaps.erase(gap);
    if (room > length) {
        m_gaps.emplace(offset + length, room - length);
    }
    return offset;
}

void SpillFile::GiveBack(qint64 offset, qint64 length)
{
    auto next = m_gaps.lower_bound(offset);
    if (next != m_gaps.end() && offset + length == next->first) {
        length += next->second;
        next = m_gaps.erase(next);
    }
    if (next != m_gaps.begin()) {
        const auto before = std::prev(next);
        if (before->first + before->second == offset) {
            offset = before->first;
            length += before->second;
            m_gaps.erase(before);
        }
    }
    if (offset + length == m_end) {
        m_end = offset;
    } else {
        m_gaps.emplace(offset, length);
    }
}

QIODevice* SpillFile::DeviceAt(qint64 offset)
{
    const bool isOpen =
        m_device->isOpen() || m_device->open(QIODevice::ReadWrite | QIODevice::Unbuffered);
    return isOpen && m_device->seek(offset) ? m_device.get() : nullptr;
}

} // namespace raster
