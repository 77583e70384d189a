#pragma once

#include "layers/FormulaGraph.h"

#include <QHash>
#include <QString>
#include <QVector>

#include <functional>

enum class FormulaState
{
    /// The layer has no formula.
    None,
    UpToDate,
    /// Its operands, or what they are made of, changed since it was computed; or it depends on
    /// itself.
    OutOfDate,
    /// Its pixels differ from those that were computed.
    Edited,
    /// An operand is missing.
    Broken,
};

/// "up to date", "out of date", "edited by hand" or "broken"; empty for None.
QString StateText(FormulaState state);

/// What masks were like when a layer was computed, as fingerprints; 0 for those that are not known.
struct FormulaFacts
{
    quint64 result = 0;
    QVector<quint64> operands;
    /// The layer follows its operands.
    bool isLive = false;
};

/// What may be true of a computed layer at the same time.
struct FormulaStatus
{
    bool isBroken = false;
    bool isEdited = false;
    bool isStale = false;

    /// The first that counts: broken, edited, out of date.
    FormulaState State() const;
};

/// From what masks were like when the layer was computed, and what they are like now.
FormulaStatus Compared(const FormulaFacts& known, const FormulaFacts& present);

/// By layer id. own tells what is true of a layer without regard to what its operands are made of.
QHash<int, FormulaStatus>
StatusesOf(const FormulaGraph& graph,
           const std::function<FormulaStatus(int id, const Formula& formula)>& own);
