#pragma once

#include "document/Problems.h"
#include "ui/AcceptedFindings.h"
#include "ui/DockProblems.h"
#include "ui/EditorParts.h"

#include <QObject>

class GoActions;
class ProblemBadge;
class ProjectNumbers;

/// The problems of the open project in the editor's window: the dock, its action, the badge in the
/// tool bar, and what shows the thing of a finding.
class ProblemActions : public QObject
{
public:
    /// Adds dock and badge to the window. All that is handed in outlives this object.
    ProblemActions(const EditorParts& parts, ProjectNumbers& numbers, GoActions& go);

    Problems& Found() { return m_problems; }
    QDockWidget& Dock() { return m_dock; }

private:
    void ShowThing(const Problem& problem);
    void ShowLayer(const Problem& problem);
    void ShowRow(QStandardItem& row, const Territory* territory);
    void ShowZone(const Problem& problem);
    void ShowFlag(bool isUsage, int index);
    void JumpTo(const QRectF& area);
    void ShowFixed();

    EditorParts m_parts;
    GoActions& m_go;
    Problems m_problems;
    AcceptedFindings m_accepted;
    DockProblems m_dock;
};
