#pragma once

#include "layers/FormulaFile.h"
#include "layers/FormulaState.h"

#include <QHash>
#include <QString>

struct ProjectData;

/// Which computed layers of a project are out of date or broken, as the editor would show it after
/// loading the project. Reads the bitmaps of these layers and of their operands, one at a time, and
/// nothing for a project without formulas. Prints nothing.
class FormulaStates
{
public:
    explicit FormulaStates(const ProjectData& project);

    /// index: of the layer in the project. None for layers without a formula, and for those without
    /// a usable bitmap.
    FormulaState Of(int index) const { return m_states.value(index, FormulaState::None); }
    /// The name of the file that holds the formulas, without a folder.
    const QString& FileName() const { return m_fileName; }
    /// Why the file cannot be used: a sentence without its full stop; empty if it can.
    const QString& Fault() const { return m_fault; }

private:
    void Compare(const ProjectData& project, const FormulaRecords& records);

    QString m_fileName;
    QString m_fault;
    /// By the index of the layer.
    QHash<int, FormulaState> m_states;
};
