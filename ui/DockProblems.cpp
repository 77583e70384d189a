#include "ui/DockProblems.h"

#include "document/Document.h"
#include "document/ProblemFixes.h"
#include "document/Problems.h"
#include "ui/AcceptedFindings.h"
#include "ui/ProblemModel.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

DockProblems::DockProblems(Document& document, Problems& problems, AcceptedFindings& accepted,
                           ShowThing showThing, QWidget* parent)
    : QDockWidget(tr("Problems"), parent)
    , m_document(document)
    , m_problems(problems)
    , m_accepted(accepted)
    , m_showThing(std::move(showThing))
    , m_model(new ProblemModel(this))
    , m_view(new QTreeView)
    , m_state(new QLabel)
    , m_fix(new QPushButton(tr("Fix")))
    , m_accept(new QPushButton(tr("Accept")))
    , m_withAccepted(new QCheckBox(tr("Show accepted")))
{
    setObjectName(QStringLiteral("DockProblems"));
    MakeView();
    setWidget(MakeContents());
    m_refresh.setSingleShot(true);
    connect(&m_refresh, &QTimer::timeout, this, &DockProblems::Refresh);
    connect(this, &QDockWidget::visibilityChanged, this, &DockProblems::SetSeen);
    connect(&accepted, &AcceptedFindings::Changed, this, [this] { m_refresh.start(); });
    connect(&problems, &Problems::StateChanged, this, &DockProblems::ShowState);
    connect(&document, &Document::HistoryChanged, this, &DockProblems::ShowState);
    connect(&document, &Document::LayerMarksChanged, this, &DockProblems::ShowState);
    connect(m_fix, &QPushButton::clicked, this, &DockProblems::FixSelected);
    connect(m_accept, &QPushButton::clicked, this, &DockProblems::AcceptSelected);
    connect(m_withAccepted, &QCheckBox::toggled, this, &DockProblems::Refresh);
    ShowState();
}

void DockProblems::MakeView()
{
    constexpr int iconWidth = 28;
    constexpr int thingWidth = 200;
    m_view->setObjectName(QStringLiteral("viewProblems"));
    m_view->setModel(m_model);
    m_view->setRootIsDecorated(false);
    m_view->setItemsExpandable(false);
    m_view->setUniformRowHeights(true);
    m_view->setAllColumnsShowFocus(true);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    QHeaderView* header = m_view->header();
    header->setMinimumSectionSize(iconWidth);
    header->resizeSection(ProblemModel::SeverityColumn, iconWidth);
    // Sentences speak of "it", so the thing stands before them.
    header->moveSection(ProblemModel::ThingColumn, ProblemModel::SentenceColumn);
    header->resizeSection(ProblemModel::ThingColumn, thingWidth);
    connect(m_view, &QTreeView::doubleClicked, this, &DockProblems::ShowSelected);
    for (const int key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* shortcut = new QShortcut(key, m_view);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this, &DockProblems::ShowSelected);
    }
    connect(m_view->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DockProblems::ShowState);
}

QWidget* DockProblems::MakeContents()
{
    m_state->setObjectName(QStringLiteral("lblProblemsState"));
    m_fix->setObjectName(QStringLiteral("btnFindingFix"));
    m_accept->setObjectName(QStringLiteral("btnFindingAccept"));
    m_withAccepted->setObjectName(QStringLiteral("chkFindingsAccepted"));
    m_withAccepted->setToolTip(tr("Also list the findings that were accepted"));
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_fix);
    buttons->addWidget(m_accept);
    buttons->addWidget(m_withAccepted);
    buttons->addStretch();
    buttons->addWidget(m_state);
    auto* contents = new QWidget;
    auto* layout = new QVBoxLayout(contents);
    layout->addWidget(m_view);
    layout->addLayout(buttons);
    return contents;
}

void DockProblems::SetSeen(bool isSeen)
{
    m_isSeen = isSeen;
    Refresh();
}

void DockProblems::Refresh()
{
    m_refresh.stop();
    if (!m_isSeen) {
        return;
    }
    const int row = m_view->currentIndex().row();
    // The model lets its findings go.
    const ProblemList before = SelectedProblems();
    m_model->Show(m_problems.Parts(), m_accepted, m_withAccepted->isChecked());
    SelectAgain(before, row);
    ShowState();
}

/// The same findings. When the only one is gone, the one that has taken its row, so that the user
/// can go through the list with one button.
void DockProblems::SelectAgain(const ProblemList& before, int row)
{
    if (before.size() == 1) {
        const int found = m_model->RowOf(before.front());
        const int chosen = found >= 0 ? found : std::min(row, m_model->rowCount() - 1);
        if (chosen >= 0) {
            m_view->setCurrentIndex(m_model->index(chosen, ProblemModel::SentenceColumn));
        }
        return;
    }
    QItemSelection selection;
    const QVector<int> found = before.empty() ? QVector<int>() : m_model->RowsOf(before);
    for (const int each : found) {
        selection.append(QItemSelectionRange(m_model->index(each, 0),
                                             m_model->index(each, ProblemModel::ColumnCount - 1)));
    }
    if (!found.isEmpty()) {
        // The keys go on from the last one.
        m_view->selectionModel()->setCurrentIndex(
            m_model->index(found.constLast(), ProblemModel::SentenceColumn),
            QItemSelectionModel::NoUpdate);
        m_view->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    }
}

/// The finding of the only row that is selected; null when there are more or none.
const Problem* DockProblems::Selected() const
{
    const QVector<int> rows = SelectedRows();
    return rows.size() == 1 ? m_model->ProblemAt(rows.constFirst()) : nullptr;
}

QVector<int> DockProblems::SelectedRows() const
{
    QVector<int> rows;
    const QModelIndexList indexes = m_view->selectionModel()->selectedRows();
    for (const QModelIndex& index : indexes) {
        rows.append(index.row());
    }
    return rows;
}

ProblemList DockProblems::SelectedProblems() const
{
    ProblemList problems;
    const QVector<int> rows = SelectedRows();
    for (const int row : rows) {
        problems.push_back(*m_model->ProblemAt(row));
    }
    return problems;
}

bool DockProblems::AreSelectedAccepted() const
{
    const QVector<int> rows = SelectedRows();
    return !rows.isEmpty() && std::all_of(rows.begin(), rows.end(),
                                          [this](int row) { return m_model->IsAccepted(row); });
}

void DockProblems::ShowState()
{
    const Problem* selected = Selected();
    m_fix->setEnabled(selected && CanFix(m_document, *selected));
    m_fix->setToolTip(selected ? DescribeFix(m_document, *selected) : QString());
    const bool areAccepted = AreSelectedAccepted();
    m_accept->setText(areAccepted ? tr("Take back") : tr("Accept"));
    m_accept->setToolTip(areAccepted ? tr("Count the selected findings again")
                                     : tr("The selected findings are meant so: hide them"));
    m_accept->setEnabled(m_document.CanTravel() && m_view->selectionModel()->hasSelection());
    if (!m_problems.IsUpToDate()) {
        m_state->setText(tr("Checking…"));
    } else {
        m_state->setText(m_accepted.OpenCount() == 0 ? tr("Nothing found") : QString());
    }
}

void DockProblems::ShowSelected()
{
    if (const Problem* selected = Selected()) {
        // What is shown may change the list.
        const Problem problem = *selected;
        if (problem.IsPresent()) {
            m_showThing(problem);
        }
        const QString whyNot = ProblemModel::WhyNotShown(problem);
        if (!whyNot.isEmpty()) {
            m_state->setText(whyNot);
        }
    }
}

void DockProblems::FixSelected()
{
    const Problem* selected = Selected();
    if (!selected || !CanFix(m_document, *selected)) {
        return;
    }
    const QString place = selected->finding.place;
    // A step of its own.
    m_document.EndGesture();
    if (std::unique_ptr<Edit> edit = MakeFix(m_document, *selected)) {
        m_document.Do(std::move(edit));
    } else {
        m_state->setText(tr("There is no memory to change %1.").arg(place));
    }
    m_document.EndGesture();
    emit Fixed();
    m_problems.Hurry();
}

void DockProblems::AcceptSelected()
{
    m_accepted.Set(SelectedProblems(), !AreSelectedAccepted());
}
