#include "layers/FormulaState.h"

#include <QCoreApplication>

QString StateText(FormulaState state)
{
    const auto text = [](const char* english) {
        return QCoreApplication::translate("FormulaState", english);
    };
    switch (state) {
    case FormulaState::UpToDate:
        return text("up to date");
    case FormulaState::OutOfDate:
        return text("out of date");
    case FormulaState::Edited:
        return text("edited by hand");
    case FormulaState::Broken:
        return text("broken");
    default:
        return {};
    }
}

FormulaState FormulaStatus::State() const
{
    if (isBroken) {
        return FormulaState::Broken;
    }
    if (isEdited) {
        return FormulaState::Edited;
    }
    return isStale ? FormulaState::OutOfDate : FormulaState::UpToDate;
}

FormulaStatus Compared(const FormulaFacts& known, const FormulaFacts& present)
{
    FormulaStatus status;
    status.isEdited = known.result != present.result;
    status.isStale = known.operands != present.operands;
    return status;
}

QHash<int, FormulaStatus>
StatusesOf(const FormulaGraph& graph,
           const std::function<FormulaStatus(int id, const Formula& formula)>& own)
{
    QHash<int, FormulaStatus> statuses;
    const QVector<int> order = graph.InOrder(graph.Computed());
    for (const int id : order) {
        const Formula& formula = *graph.FormulaOf(id);
        FormulaStatus status = own(id, formula);
        for (const int operand : formula.operands) {
            status.isStale = status.isStale || statuses.value(operand).isStale;
        }
        status.isStale = status.isStale || graph.IsInCycle(id);
        statuses.insert(id, status);
    }
    return statuses;
}
