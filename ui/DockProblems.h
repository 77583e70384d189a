#pragma once

#include "document/Problem.h"

#include <QDockWidget>
#include <QTimer>

#include <functional>

class AcceptedFindings;
class Document;
class ProblemModel;
class Problems;
class QCheckBox;
class QLabel;
class QPushButton;
class QTreeView;

/// The dock that lists what is wrong with the open project, shows the things, mends what one edit
/// can mend, and hides what the user accepts. While it is not seen, it follows nothing.
class DockProblems : public QDockWidget
{
    Q_OBJECT

public:
    /// Shows the thing of the finding; not empty.
    using ShowThing = std::function<void(const Problem& problem)>;

    /// All outlive the dock.
    DockProblems(Document& document, Problems& problems, AcceptedFindings& accepted,
                 ShowThing showThing, QWidget* parent = nullptr);

signals:
    /// An edit changed what a finding was about.
    void Fixed();

private:
    QWidget* MakeContents();
    void MakeView();
    void SetSeen(bool isSeen);
    void Refresh();
    void SelectAgain(const ProblemList& before, int row);
    void ShowState();
    const Problem* Selected() const;
    QVector<int> SelectedRows() const;
    ProblemList SelectedProblems() const;
    bool AreSelectedAccepted() const;
    void ShowSelected();
    void FixSelected();
    void AcceptSelected();

    Document& m_document;
    Problems& m_problems;
    AcceptedFindings& m_accepted;
    ShowThing m_showThing;
    ProblemModel* m_model;
    QTreeView* m_view;
    QLabel* m_state;
    QPushButton* m_fix;
    QPushButton* m_accept;
    QCheckBox* m_withAccepted;
    /// A dock behind another tab is not, and Qt calls it visible.
    bool m_isSeen = false;
    /// Many changes, one refresh.
    QTimer m_refresh;
};
