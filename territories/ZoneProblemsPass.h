#pragma once

#include "territories/ZoneTable.h"
#include "territories/rules/ZonePairs.h"

#include <QSize>

#include <memory>
#include <vector>

/// Finds out what is wrong with each row of a table of zones, a slice at a time, because pairs of
/// thousands of zones take longer than a frame.
class ZoneProblemsPass
{
public:
    /// Rows or their values changed.
    void Restart();
    bool IsOver(const std::vector<ZoneRow>& rows) const { return m_next >= rows.size(); }
    /// Goes on from where it stopped, for about so many milliseconds, and writes the rows'
    /// problems. typeIds: for each row its type, the rows of which lie one after the other.
    /// worldSize: metres. Returns the rows whose problems are others than before.
    std::vector<int> Work(std::vector<ZoneRow>& rows, const std::vector<int>& typeIds,
                          QSize worldSize, int milliseconds);

private:
    std::size_t m_next = 0;
    /// The pair rules of the type that was processed last.
    std::unique_ptr<PairRules> m_pairs;
};
