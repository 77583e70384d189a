#include "layers/FormulaGraph.h"

#include "layers/Layer.h"
#include "layers/LayerList.h"

#include <algorithm>
#include <vector>

namespace {

/// Finds the nodes of a graph that can be reached from themselves, in one walk over its edges:
/// Tarjan's strongly connected components (1972), without recursion.
class CycleSearch
{
public:
    /// operandsOf: by node, the nodes that its edges lead to.
    explicit CycleSearch(const std::vector<std::vector<std::size_t>>& operandsOf)
        : m_operandsOf(operandsOf)
        , m_nodes(operandsOf.size())
    {
        for (std::size_t node = 0; node < m_nodes.size(); ++node) {
            if (m_nodes[node].order == 0) {
                WalkFrom(node);
            }
        }
    }

    bool IsInCycle(std::size_t node) const { return m_nodes[node].isInCycle; }

private:
    struct Node
    {
        /// When it was met, from 1; 0 for nodes that were not.
        int order = 0;
        /// The earliest node of its component that was found yet.
        int lowest = 0;
        std::size_t nextOperand = 0;
        /// Its component is not finished.
        bool isOpen = false;
        bool isInCycle = false;
    };

    void Enter(std::size_t node)
    {
        m_nodes[node].order = m_nodes[node].lowest = ++m_met;
        m_nodes[node].isOpen = true;
        m_path.push_back(node);
        m_open.push_back(node);
    }

    void WalkFrom(std::size_t start)
    {
        Enter(start);
        while (!m_path.empty()) {
            const std::size_t at = m_path.back();
            Node& node = m_nodes[at];
            if (node.nextOperand == m_operandsOf[at].size()) {
                Leave(at);
                continue;
            }
            const std::size_t operand = m_operandsOf[at][node.nextOperand++];
            if (m_nodes[operand].order == 0) {
                Enter(operand);
            } else if (m_nodes[operand].isOpen) {
                node.lowest = std::min(node.lowest, m_nodes[operand].order);
                node.isInCycle = node.isInCycle || operand == at;
            }
        }
    }

    void Leave(std::size_t at)
    {
        const Node& node = m_nodes[at];
        m_path.pop_back();
        if (!m_path.empty()) {
            Node& user = m_nodes[m_path.back()];
            user.lowest = std::min(user.lowest, node.lowest);
        }
        if (node.lowest != node.order) {
            return;
        }
        // A component of one node has no cycle, unless the node leads to itself.
        const bool isCycle = m_open.back() != at;
        std::size_t last = 0;
        do {
            last = m_open.back();
            m_open.pop_back();
            m_nodes[last].isOpen = false;
            m_nodes[last].isInCycle = m_nodes[last].isInCycle || isCycle;
        } while (last != at);
    }

    const std::vector<std::vector<std::size_t>>& m_operandsOf;
    std::vector<Node> m_nodes;
    /// From the start of the walk to the present node, and all nodes of unfinished components.
    std::vector<std::size_t> m_path;
    std::vector<std::size_t> m_open;
    int m_met = 0;
};

} // namespace

FormulaGraph::FormulaGraph(const LayerList& list)
{
    const QVector<Layer*> layers = list.Layers();
    for (const Layer* layer : layers) {
        if (const std::optional<Formula> formula = ParseFormula(layer->Code())) {
            m_computed.append(layer->Id());
            m_formulas.insert(layer->Id(), *formula);
        }
    }
    FindLayersInCycles();
}

void FormulaGraph::FindLayersInCycles()
{
    QHash<int, std::size_t> nodes;
    for (const int id : qAsConst(m_computed)) {
        nodes.insert(id, static_cast<std::size_t>(nodes.size()));
    }
    std::vector<std::vector<std::size_t>> operandsOf(static_cast<std::size_t>(nodes.size()));
    for (const int id : qAsConst(m_computed)) {
        for (const int operand : m_formulas.constFind(id)->operands) {
            const auto node = nodes.constFind(operand);
            if (node != nodes.cend()) {
                operandsOf[nodes.value(id)].push_back(*node);
            }
        }
    }
    const CycleSearch search(operandsOf);
    for (const int id : qAsConst(m_computed)) {
        if (search.IsInCycle(nodes.value(id))) {
            m_inCycles.insert(id);
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
/// meetAgain(chain) when an operand is on the path that leads to it; chain() gives that part of the
/// path, which may be long. Ends when meetAgain is false.
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
            const auto chain = [&path, operand] {
                QVector<int> part;
                for (const Step& each : path) {
                    if (!part.isEmpty() || each.id == operand) {
                        part.append(each.id);
                    }
                }
                part.append(operand);
                return part;
            };
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
        ids, [&order](int id) { order.append(id); }, [](const auto&) { return true; });
    return order;
}

QVector<int> FormulaGraph::FindCycle(const QVector<int>& ids) const
{
    QVector<int> cycle;
    Walk(
        ids, [](int) {},
        [&cycle](const auto& chain) {
            cycle = chain();
            return false;
        });
    // A layer comes after what it is made of.
    std::reverse(cycle.begin(), cycle.end());
    return cycle;
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
