#pragma once

#include <QColor>
#include <QPixmap>
#include <QPushButton>

/// A button that shows a colour and lets the user pick another one. It is white at first.
class ButtonColor : public QPushButton
{
    Q_OBJECT

public:
    explicit ButtonColor(QWidget* parent = nullptr);

    const QColor& Color() const { return m_color; }
    /// Sets red, green and blue and keeps the alpha. Does nothing if they do not change. Emits
    /// ColorChanged only with announce.
    void SetColor(QRgb rgb, bool announce);

signals:
    void ColorChanged(QColor color);

private:
    void PickColor();
    void ShowColor();

    QPixmap m_picture;
    QColor m_color = Qt::white;
};
