#pragma once

#include "layers/raster/MaskDelta.h"

#include <QtGlobal>

#include <map>
#include <memory>
#include <vector>

class Edit;

namespace raster {
class SpillFile;
}

/// Keeps the masks that the history remembers within a budget of memory: the oldest go to a
/// temporary file first.
class HistoryMemory
{
public:
    HistoryMemory();
    ~HistoryMemory();
    Q_DISABLE_COPY(HistoryMemory)

    void SetBudget(qint64 bytes) { m_budget = bytes; }
    qint64 Budget() const { return m_budget; }

    /// The delta belongs to the edit, which is newer than those added before. The number that is
    /// returned stands for the delta from then on.
    int Add(const Edit& edit, raster::MaskDelta& delta);
    /// The delta takes more or less memory than before.
    void Update(int number);
    /// Call it before the delta is destroyed.
    void Remove(int number);

    /// Brings the memory within the budget. Returns the edits whose masks were lost because the
    /// file takes no more.
    std::vector<const Edit*> Fit();

private:
    struct Entry
    {
        const Edit* edit;
        raster::MaskDelta* delta;
        qint64 bytes;
    };

    void Measure(Entry& entry);
    bool Spill(raster::MaskDelta& delta);

    qint64 m_budget;
    qint64 m_bytes = 0;
    /// By number, so the oldest comes first.
    std::map<int, Entry> m_entries;
    int m_nextNumber = 0;
    std::shared_ptr<raster::SpillFile> m_file;
};
