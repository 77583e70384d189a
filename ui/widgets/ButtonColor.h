#pragma once

#include <QColor>
#include <QPixmap>
#include <QPushButton>

/// A button that shows a colour and lets the user pick another one. White at first.
class ButtonColor : public QPushButton
{
    Q_OBJECT

public:
    explicit ButtonColor(QWidget* parent = nullptr);

    const QColor& Color() const { return m_color; }
    /// Takes red, green and blue and keeps the alpha; does nothing when they are those shown
    /// already. Emits ColorChanged only with announce.
    void SetColor(QRgb rgb, bool announce);

signals:
    void ColorChanged(QColor color);

private:
    void PickColor();
    void ShowColor();

    QPixmap m_picture;
    QColor m_color = Qt::white;
};
