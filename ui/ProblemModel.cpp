#include "ui/ProblemModel.h"

#include "ui/AcceptedFindings.h"
#include "ui/NameList.h"

#include <QGuiApplication>
#include <QPair>
#include <QPalette>
#include <QSet>

#include <algorithm>

namespace {

/// Names from files may have any length.
constexpr int LongestText = 300;

/// Findings go on from their place, in `quillmap-tool check`: "zone 1: its radius …".
QString Sentence(const QString& text)
{
    QString sentence = ShortText(text, LongestText);
    if (!sentence.isEmpty()) {
        sentence[0] = sentence[0].toUpper();
    }
    return sentence;
}

QString SeverityText(Severity severity)
{
    return severity == Severity::Error ? ProblemModel::tr("Error") : ProblemModel::tr("Warning");
}

/// Names are no markup.
QString ToolTip(const Problem& problem)
{
    const Finding& finding = problem.finding;
    const auto text = [](const QString& part) {
        return ShortText(part, LongestText).toHtmlEscaped();
    };
    return QStringLiteral("<qt>%1: %2 %3 %4</qt>")
        .arg(text(finding.place), text(finding.text), text(finding.advice),
             ProblemModel::WhyNotShown(problem));
}

} // namespace

QString ProblemModel::WhyNotShown(const Problem& problem)
{
    using Kind = FindingSubject::Kind;
    switch (problem.finding.subject.kind) {
    case Kind::Project:
        return tr("It is about the whole project: there is no place to show.");
    case Kind::Bitmap:
        return tr("It is a file in the folder 'layers' beside the project.");
    case Kind::Layer:
        return problem.layer ? QString()
                             : tr("The layer is only in the project's file: it was left out.");
    default:
        return {};
    }
}

ProblemModel::ProblemModel(QObject* parent)
    : QAbstractTableModel(parent)
{
}

void ProblemModel::Show(const std::vector<Problems::Part>& parts, const AcceptedFindings& accepted,
                        bool withAccepted)
{
    beginResetModel();
    m_parts = parts;
    m_rows.clear();
    for (const Problems::Part& part : m_parts) {
        for (const Problem& problem : *part) {
            const bool isAccepted = accepted.Contains(problem);
            if (!isAccepted || withAccepted) {
                m_rows.push_back({&problem, isAccepted});
            }
        }
    }
    std::stable_partition(m_rows.begin(), m_rows.end(), [](const Row& row) {
        return row.problem->finding.severity == Severity::Error;
    });
    endResetModel();
}

const Problem* ProblemModel::ProblemAt(int row) const
{
    return row >= 0 && row < rowCount() ? m_rows[static_cast<std::size_t>(row)].problem : nullptr;
}

bool ProblemModel::IsAccepted(int row) const
{
    return row >= 0 && row < rowCount() && m_rows[static_cast<std::size_t>(row)].isAccepted;
}

int ProblemModel::RowOf(const Problem& problem) const
{
    int alike = -1;
    for (int row = 0; row < rowCount(); ++row) {
        const Problem& other = *ProblemAt(row);
        if (other.finding.rule != problem.finding.rule) {
            continue;
        }
        if (other.finding.place == problem.finding.place &&
            other.finding.text == problem.finding.text) {
            return row;
        }
        if (alike < 0 && other.IsLike(problem)) {
            alike = row;
        }
    }
    return alike;
}

QVector<int> ProblemModel::RowsOf(const ProblemList& problems) const
{
    using Words = QPair<QString, QPair<QString, QString>>;
    const auto wordsOf = [](const Problem& problem) {
        const Finding& finding = problem.finding;
        return Words(finding.rule, {finding.place, finding.text});
    };
    QSet<Words> wanted;
    for (const Problem& problem : problems) {
        wanted.insert(wordsOf(problem));
    }
    QVector<int> rows;
    for (int row = 0; row < rowCount(); ++row) {
        if (wanted.contains(wordsOf(*ProblemAt(row)))) {
            rows.append(row);
        }
    }
    return rows;
}

int ProblemModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ProblemModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ProblemModel::data(const QModelIndex& index, int role) const
{
    const Problem* problem = index.isValid() ? ProblemAt(index.row()) : nullptr;
    if (!problem) {
        return {};
    }
    const Finding& finding = problem->finding;
    const bool isSeverity = index.column() == SeverityColumn;
    if (role == Qt::DisplayRole && index.column() == SentenceColumn) {
        return Sentence(finding.text);
    }
    if (role == Qt::DisplayRole && index.column() == ThingColumn) {
        return ShortText(finding.place, LongestText);
    }
    if (role == Qt::DecorationRole && isSeverity) {
        return finding.severity == Severity::Error ? m_errorIcon : m_warningIcon;
    }
    if (role == Qt::AccessibleTextRole && isSeverity) {
        return SeverityText(finding.severity);
    }
    if (role == Qt::ToolTipRole) {
        return isSeverity ? SeverityText(finding.severity) : ToolTip(*problem);
    }
    if (role == Qt::ForegroundRole && IsAccepted(index.row())) {
        return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
    }
    return {};
}

QVariant ProblemModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) {
        return {};
    }
    switch (section) {
    case SentenceColumn:
        return tr("What is wrong");
    case ThingColumn:
        return tr("Where");
    default:
        return QString();
    }
}
