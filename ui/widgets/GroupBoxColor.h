#pragma once

#include "ui/widgets/NamedGroupBox.h"

#include <QColor>

class ButtonColor;
class QLabel;
class QSlider;

/// A box with a colour button and an opacity slider, as for a layer or the brush's cursor.
class GroupBoxColor : public NamedGroupBox
{
    Q_OBJECT

public:
    explicit GroupBoxColor(QWidget* parent = nullptr);

    /// Shows the colour and its alpha. Emits AlphaChanged if the alpha changes, and never
    /// ColorChanged.
    void SetColor(const QColor& color);
    /// The same. alpha is clamped to 0 to 255, and the alpha of rgb is ignored.
    void SetColor(int alpha, QRgb rgb);

public slots:
    void SliderMoved(int val);

signals:
    /// The user picked a colour.
    void ColorChanged(QColor color);
    /// Alpha from 0 to 255, opacity from 0 to 1.
    void AlphaChanged(int alpha, float opacity);

private:
    void BuildForm();
    void ShowOpacity();

    ButtonColor* m_button;
    QSlider* m_slider;
    QLabel* m_label;
};
