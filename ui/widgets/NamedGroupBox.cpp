#include "ui/widgets/NamedGroupBox.h"

#include <QHelpEvent>
#include <QLayout>
#include <QStyleOptionGroupBox>
#include <QStylePainter>
#include <QToolTip>

namespace {

/// What styles add to the width of a title.
constexpr int TitleMargin = 2;

} // namespace

NamedGroupBox::NamedGroupBox(QWidget* parent)
    : QGroupBox(parent)
{
}

QSize NamedGroupBox::minimumSizeHint() const
{
    // The size of the contents only. The base class also demands the width of the title.
    return layout() ? layout()->totalMinimumSize() : QSize();
}

QString NamedGroupBox::ElidedTitle() const
{
    // Where a title begins does not depend on its length, as long as it fits.
    QStyleOptionGroupBox option;
    initStyleOption(&option);
    option.text = QStringLiteral("m");
    const QRect label =
        style()->subControlRect(QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, this);
    const int begin = QStyle::visualRect(option.direction, rect(), label).left();
    return fontMetrics().elidedText(title(), Qt::ElideRight, width() - begin - 2 * TitleMargin,
                                    Qt::TextShowMnemonic);
}

bool NamedGroupBox::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip) {
        return QGroupBox::event(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const bool isOverTitle = help->y() < contentsRect().top();
    if (!isOverTitle || ElidedTitle() == title()) {
        return QGroupBox::event(event);
    }
    const QString name = title().replace(QLatin1String("&&"), QLatin1String("&"));
    // Escaped, so that a name that looks like rich text is shown as it is.
    QToolTip::showText(help->globalPos(), name.toHtmlEscaped(), this);
    return true;
}

void NamedGroupBox::paintEvent(QPaintEvent* /*event*/)
{
    QStylePainter painter(this);
    QStyleOptionGroupBox option;
    initStyleOption(&option);
    option.text = ElidedTitle();
    painter.drawComplexControl(QStyle::CC_GroupBox, option);
}
