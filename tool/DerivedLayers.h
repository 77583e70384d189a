#pragma once

#include "layers/FormulaFile.h"
#include "layers/FormulaState.h"
#include "layers/LayerList.h"
#include "tool/Console.h"

#include <QStringList>
#include <QVector>

#include <functional>
#include <optional>

class Layer;
struct ProjectData;

/// The computed layers of a project that a command is about, with the masks of all layers that they
/// are made of.
class DerivedLayers
{
public:
    /// names: the layers; all computed ones if it is empty. Returns how the run ends after a
    /// printed error: a name or a file is wrong, an operand is missing, or layers are made of one
    /// another.
    std::optional<ToolExit> Open(const ProjectData& project, const QStringList& names);

    /// Calls take for each layer that is not up to date, operands first.
    void ForEachOutdated(const std::function<void(const QString& name, FormulaState)>& take) const;
    /// Computes all layers anew. False after a printed error.
    bool Compute();
    /// Writes the bitmaps that changed, and the fingerprints, or nothing at all. Calls take with
    /// the path of each file. False after a printed error.
    bool Write(const std::function<void(const QString& path)>& take) const;

private:
    std::optional<ToolExit> ChooseLayers(const QStringList& names);
    std::optional<ToolExit> LoadNeeded();
    bool Load(const QString& name);
    std::optional<ToolExit> RefuseCycle() const;
    FormulaFacts PresentFacts(const Layer& layer) const;
    const FormulaRecord* RecordOf(const QString& name) const;

    const ProjectData* m_project = nullptr;
    QString m_formulaPath;
    FormulaRecords m_records;
    /// The layers that the command is about.
    QStringList m_chosen;
    LayerList m_list;
    FormulaGraph m_graph;
    /// The layers whose computed pixels differ from those in their files, operands first.
    QVector<const Layer*> m_changed;
};
