#include "Picture.h"

#include "EditorUser.h"

#include <QDir>
#include <QPainter>

namespace {

constexpr int NumberSize = 26;
const QColor NumberColor(196, 30, 58);

} // namespace

Picture::Picture(QWidget& widget)
    : m_widget(widget)
{
    EditorUser::Settle();
    m_pixels = widget.grab();
}

void Picture::Number(const QWidget& part, QPoint shift)
{
    const QPoint corner = part.mapTo(&m_widget, part.rect().topRight()) + shift;
    QRect circle(corner - QPoint(NumberSize, 0), QSize(NumberSize, NumberSize));
    QPainter painter(&m_pixels);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::white, 2));
    painter.setBrush(NumberColor);
    painter.drawEllipse(circle);
    QFont font = m_widget.font();
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(circle, Qt::AlignCenter, QString::number(++m_count));
}

void Picture::Crop(const QRect& part)
{
    m_pixels = m_pixels.copy(part);
}

void Picture::Save(const QDir& folder, const QString& name) const
{
    const QString path = folder.filePath(name + QStringLiteral(".png"));
    EditorUser::Require(m_pixels.save(path), qPrintable(path));
}
