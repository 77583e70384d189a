#include "layers/FormulaGraph.h"

#include "layers/Layer.h"
#include "layers/LayerList.h"

#include <algorithm>
#include <vector>

FormulaGraph::FormulaGraph(const LayerList& list)
{
    const QVector<Layer*> layers = list.Layers();
    for (const Layer* layer : layers) {
        if (const std::optional<Formula> formula = ParseFormula(layer->Code())) {
            m_computed.append(layer->Id());
            m_formulas.insert(layer->Id(), *formula);
        }
    }
}

const Formula* FormulaGraph::FormulaOf(int id) const
{
    const auto found = m_formulas.constFind(id);
    return found == m_formulas.cend() ? nullptr : &*found;
}

/// Goes from layers to their operands, depth first and without recursion, because files may hold
/// chains of any length. Calls visit(id) for each computed layer after all that it depends on, and
/// meetAgain(path) when an operand is on the path that leads to it. Ends when meetAgain is false.
template <typename Visit, typename MeetAgain>
void FormulaGraph::Walk(const QVector<int>& ids, Visit visit, MeetAgain meetAgain) const
{
    struct Step
    {
        int id;
        int nextOperand;
    };
    enum class Mark
    {
        OnPath,
        Done,
    };
    QHash<int, Mark> marks;
    std::vector<Step> path;
    const auto enter = [&](int id) {
        if (m_formulas.contains(id) && !marks.contains(id)) {
            marks.insert(id, Mark::OnPath);
            path.push_back({id, 0});
        }
    };
    for (const int start : ids) {
        enter(start);
        while (!path.empty()) {
            Step& step = path.back();
            const QVector<int>& operands = m_formulas.constFind(step.id)->operands;
            if (step.nextOperand == operands.size()) {
                marks[step.id] = Mark::Done;
                visit(step.id);
                path.pop_back();
                continue;
            }
            const int operand = operands.at(step.nextOperand++);
            if (marks.value(operand, Mark::Done) != Mark::OnPath) {
                enter(operand);
                continue;
            }
            QVector<int> chain;
            for (const Step& each : path) {
                chain.append(each.id);
            }
            chain = chain.mid(chain.indexOf(operand));
            chain.append(operand);
            if (!meetAgain(chain)) {
                return;
            }
        }
    }
}

QVector<int> FormulaGraph::InOrder(const QVector<int>& ids) const
{
    QVector<int> order;
    Walk(
        ids, [&order](int id) { order.append(id); }, [](const QVector<int>&) { return true; });
    return order;
}

QVector<int> FormulaGraph::FindCycle(const QVector<int>& ids) const
{
    QVector<int> cycle;
    Walk(
        ids, [](int) {},
        [&cycle](const QVector<int>& chain) {
            cycle = chain;
            return false;
        });
    // A layer comes after what it is made of.
    std::reverse(cycle.begin(), cycle.end());
    return cycle;
}

bool FormulaGraph::IsInCycle(int id) const
{
    bool isInCycle = false;
    Walk(
        {id}, [](int) {},
        [&isInCycle, id](const QVector<int>& chain) {
            isInCycle = chain.contains(id);
            return !isInCycle;
        });
    return isInCycle;
}

QString ChainText(const LayerList& list, const QVector<int>& ids)
{
    QStringList names;
    for (const int id : ids) {
        const Layer* layer = list.LayerById(id);
        names.append(layer ? layer->text() : QString::number(id));
    }
    return names.join(QStringLiteral(" -> "));
}
