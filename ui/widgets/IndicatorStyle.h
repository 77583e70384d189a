#pragma once

#include <QProxyStyle>

/// Draws check boxes and radio buttons so that they are seen in dark palettes: the Fusion style
/// outlines them darker than the window, which leaves nothing to see there of those without a mark.
/// Everything else, and everything in light palettes, is drawn as the base style does.
class IndicatorStyle : public QProxyStyle
{
    Q_OBJECT

public:
    /// Takes the base style over.
    explicit IndicatorStyle(QStyle* base);

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
};

/// Puts such a style over the application's own when that is Fusion. Other styles stay as they are.
void ShowIndicatorsInDarkPalettes();
