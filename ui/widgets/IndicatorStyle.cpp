#include "ui/widgets/IndicatorStyle.h"

#include <QApplication>
#include <QStyleFactory>
#include <QStyleOptionButton>

namespace {

/// The share of the text's colour in the outlines; the rest is the colour within.
constexpr double TextShare = 0.85;

bool IsDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

QColor Mixed(const QColor& text, const QColor& base)
{
    const auto mix = [](double a, double b) { return TextShare * a + (1 - TextShare) * b; };
    return QColor::fromRgbF(mix(text.redF(), base.redF()), mix(text.greenF(), base.greenF()),
                            mix(text.blueF(), base.blueF()));
}

} // namespace

IndicatorStyle::IndicatorStyle(QStyle* base)
    : QProxyStyle(base)
{
}

void IndicatorStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                   QPainter* painter, const QWidget* widget) const
{
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const bool isIndicator = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
    if (!isIndicator || !button || !IsDark(button->palette)) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    // The outline is a darker shade of the window's colour.
    QStyleOptionButton lighter = *button;
    lighter.palette.setColor(QPalette::Window, Mixed(button->palette.color(QPalette::Text),
                                                     button->palette.color(QPalette::Base)));
    QProxyStyle::drawPrimitive(element, &lighter, painter, widget);
}

void ShowIndicatorsInDarkPalettes()
{
    const QString fusion = QStringLiteral("fusion");
    if (QApplication::style()->objectName().compare(fusion, Qt::CaseInsensitive) == 0) {
        QApplication::setStyle(new IndicatorStyle(QStyleFactory::create(fusion)));
    }
}
