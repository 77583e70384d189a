#include "document/HistoryMemory.h"

#include "layers/raster/SpillFile.h"

#include <QTemporaryFile>

namespace {

constexpr qint64 DefaultBudget = qint64(256) << 20;

} // namespace

HistoryMemory::HistoryMemory()
    : m_budget(DefaultBudget)
{
}

HistoryMemory::~HistoryMemory() = default;

int HistoryMemory::Add(const Edit& edit, raster::MaskDelta& delta)
{
    Entry& entry = m_entries[m_nextNumber];
    entry = {&edit, &delta, 0};
    Measure(entry);
    return m_nextNumber++;
}

void HistoryMemory::Measure(Entry& entry)
{
    m_bytes -= entry.bytes;
    entry.bytes = entry.delta->ByteCount();
    m_bytes += entry.bytes;
}

void HistoryMemory::Update(int number)
{
    Measure(m_entries[number]);
}

void HistoryMemory::Remove(int number)
{
    m_bytes -= m_entries[number].bytes;
    m_entries.erase(number);
}

std::vector<const Edit*> HistoryMemory::Fit()
{
    std::vector<const Edit*> lost;
    for (auto it = m_entries.begin(); it != m_entries.end() && m_bytes > m_budget; ++it) {
        Entry& entry = it->second;
        if (!entry.delta->IsSpilled() && !Spill(*entry.delta)) {
            *entry.delta = raster::MaskDelta();
            lost.push_back(entry.edit);
        }
        Measure(entry);
    }
    return lost;
}

bool HistoryMemory::Spill(raster::MaskDelta& delta)
{
    if (!m_file) {
        m_file = std::make_shared<raster::SpillFile>(std::make_unique<QTemporaryFile>());
    }
    return delta.SpillTo(m_file);
}
