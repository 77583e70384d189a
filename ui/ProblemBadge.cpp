#include "ui/ProblemBadge.h"

#include <QIcon>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int IconSide = 16;
constexpr int Margin = 4;
/// The badge has room for this number. A longer number is cut off.
constexpr int WidestCount = 88888;

} // namespace

ProblemBadge::ProblemBadge(QWidget* parent)
    : QLabel(parent)
{
    setObjectName(QStringLiteral("lblProblems"));
    setTextFormat(Qt::PlainText);
    setContentsMargins(IconSide + 2 * Margin, 0, Margin, 0);
    SetCounts(0, 0, true);
}

void ProblemBadge::SetCounts(int errors, int warnings, bool isUpToDate)
{
    m_errors = errors;
    m_warnings = warnings;
    m_isUpToDate = isUpToDate;
    if (errors + warnings > 0) {
        setText(TextFor(errors + warnings));
        setToolTip(tr("Errors: %1, warnings: %2. Click to see them.").arg(errors).arg(warnings));
    } else {
        setText(isUpToDate ? TextFor(0) : tr("Checking…"));
        setToolTip(isUpToDate ? tr("Nothing was found wrong with the project.")
                              : tr("The project is being checked."));
    }
    update();
}

QString ProblemBadge::TextFor(int count)
{
    switch (count) {
    case 0:
        return tr("No problems");
    case 1:
        return tr("1 problem");
    default:
        return tr("%1 problems").arg(count);
    }
}

QSize ProblemBadge::sizeHint() const
{
    const int width = std::max(fontMetrics().horizontalAdvance(TextFor(0)),
                               fontMetrics().horizontalAdvance(TextFor(WidestCount)));
    return {width + IconSide + 4 * Margin, std::max(QLabel::sizeHint().height(), IconSide)};
}

void ProblemBadge::paintEvent(QPaintEvent* event)
{
    QLabel::paintEvent(event);
    if (!m_isUpToDate && m_errors + m_warnings == 0) {
        return;
    }
    const QString name = m_errors > 0     ? QStringLiteral(":/icon-finding-error")
                         : m_warnings > 0 ? QStringLiteral(":/icon-finding-warning")
                                          : QStringLiteral(":/icon-finding-none");
    QPainter painter(this);
    QIcon(name).paint(&painter, Margin, (height() - IconSide) / 2, IconSide, IconSide);
}

void ProblemBadge::mousePressEvent(QMouseEvent* event)
{
    // Otherwise the tool bar gets the press, and the release goes there.
    event->accept();
}

void ProblemBadge::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->pos())) {
        emit Clicked();
    }
}
