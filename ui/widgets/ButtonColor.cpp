#include "ui/widgets/ButtonColor.h"

#include <QColorDialog>
#include <QPointer>

namespace {

constexpr int ButtonSize = 32;
constexpr int PictureSize = 16;
/// The icon's picture is this many times as large, for dense screens.
constexpr int DensestRatio = 4;

QPixmap Filled(int size, const QColor& color)
{
    QPixmap picture(size, size);
    picture.fill(color);
    return picture;
}

} // namespace

ButtonColor::ButtonColor(QWidget* parent)
    : QPushButton(parent)
{
    setFixedSize(ButtonSize, ButtonSize);
    setIconSize({PictureSize, PictureSize});
    setAccessibleName(tr("Color"));
    setToolTip(tr("Choose the color"));
    ShowColor();
    connect(this, &QPushButton::clicked, this, &ButtonColor::PickColor);
}

void ButtonColor::SetColor(QRgb rgb, bool announce)
{
    // QColor::rgb() is always opaque, so the comparison ignores the caller's alpha.
    const QColor color(rgb);
    if (color.rgb() == m_color.rgb()) {
        return;
    }
    const int alpha = m_color.alpha();
    m_color = color;
    m_color.setAlpha(alpha);
    ShowColor();
    if (announce) {
        emit ColorChanged(m_color);
    }
}

void ButtonColor::PickColor()
{
    const QPointer<QColorDialog> dialog = new QColorDialog(m_color, this);
    dialog->setOption(QColorDialog::DontUseNativeDialog);
    const bool isAccepted = dialog->exec() == QDialog::Accepted;
    if (!dialog) {
        return; // The button was destroyed, and its dialog with it, while the user was picking.
    }
    dialog->deleteLater();
    if (isAccepted) {
        SetColor(dialog->currentColor().rgb(), true);
    }
}

void ButtonColor::ShowColor()
{
    m_picture = Filled(PictureSize, m_color);
    QIcon icon(m_picture);
    icon.addPixmap(Filled(PictureSize * DensestRatio, m_color));
    setIcon(icon);
    setAccessibleDescription(m_color.name());
}
