#pragma once

#include "layers/Formula.h"

#include <QHash>
#include <QSet>
#include <QStringList>
#include <QVector>

class LayerList;

/// Which computed layers of a list depend on which. A copy of one moment.
class FormulaGraph
{
public:
    FormulaGraph() = default;
    explicit FormulaGraph(const LayerList& list);

    /// Null for layers without a formula.
    const Formula* FormulaOf(int id) const;
    /// The computed layers, in row order.
    const QVector<int>& Computed() const { return m_computed; }
    /// The given layers and all computed layers that they depend on, each after its operands.
    /// Nothing behind a cycle comes before it: see FindCycle.
    QVector<int> InOrder(const QVector<int>& ids) const;
    /// Layers that depend on one another in this order, the first one again at the end; empty when
    /// there are none among the given layers and those that they depend on.
    QVector<int> FindCycle(const QVector<int>& ids) const;
    /// Whether the layer depends on itself.
    bool IsInCycle(int id) const { return m_inCycles.contains(id); }

private:
    void FindLayersInCycles();
    template <typename Visit, typename MeetAgain>
    void Walk(const QVector<int>& ids, Visit visit, MeetAgain meetAgain) const;

    QVector<int> m_computed;
    QHash<int, Formula> m_formulas;
    QSet<int> m_inCycles;
};

/// The names of the layers with arrows between: "Lake -> Shore -> Lake".
QString ChainText(const LayerList& list, const QVector<int>& ids);
