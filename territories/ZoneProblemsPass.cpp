#include "territories/ZoneProblemsPass.h"

#include "territories/rules/ZoneRules.h"

#include <QElapsedTimer>

void ZoneProblemsPass::Restart()
{
    m_next = 0;
    m_pairs.reset();
}

std::vector<int> ZoneProblemsPass::Work(std::vector<ZoneRow>& rows, const std::vector<int>& typeIds,
                                        QSize worldSize, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    std::vector<int> changed;
    // The clock is not asked for each zone.
    constexpr std::size_t zonesBetweenLooks = 16;
    for (; !IsOver(rows); ++m_next) {
        if (m_next % zonesBetweenLooks == 0 && timer.hasExpired(milliseconds)) {
            break;
        }
        if (m_next == 0 || typeIds[m_next] != typeIds[m_next - 1]) {
            m_pairs = std::make_unique<PairRules>();
        }
        ZoneRow& row = rows[m_next];
        const WorldCircle circle = AsWritten(row.circle);
        // The text of the table says neither type nor number.
        const FindingSpot spot;
        Findings findings;
        CheckZone(spot, row.values, circle, worldSize, findings);
        m_pairs->Add(spot, row.values, circle, findings);
        const QString problems = ZoneProblems(findings);
        if (problems != row.problems) {
            row.problems = problems;
            changed.push_back(static_cast<int>(m_next));
        }
    }
    return changed;
}
