#include "ui/widgets/LimitFont.h"

#include <QFontInfo>
#include <QWidget>

void LimitFont(QWidget& form)
{
    constexpr int largest = 12;
    if (form.fontInfo().pixelSize() > largest) {
        QFont font = form.font();
        font.setPixelSize(largest);
        form.setFont(font);
    }
}
