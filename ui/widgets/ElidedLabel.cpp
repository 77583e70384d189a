#include "ui/widgets/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

ElidedLabel::ElidedLabel(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const QMargins margins = contentsMargins();
    // Widths are fractions of pixels, and are rounded to the nearest one.
    return {metrics.horizontalAdvance(text()) + 1 + margins.left() + margins.right(),
            metrics.height() + margins.top() + margins.bottom()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    const QMargins margins = contentsMargins();
    const int ellipsis = fontMetrics().horizontalAdvance(QChar(0x2026));
    return {ellipsis + margins.left() + margins.right(), sizeHint().height()};
}

QString ElidedLabel::ElidedText() const
{
    return fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
}

bool ElidedLabel::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || ElidedText() == text()) {
        return QLabel::event(event);
    }
    // A tool tip shows its text as rich text when it looks like that.
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text().toHtmlEscaped(), this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(),
                          static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment())),
                          palette(), isEnabled(), ElidedText(), foregroundRole());
}
