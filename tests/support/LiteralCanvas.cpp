#include "tests/support/LiteralCanvas.h"

#include "layers/raster/Mask.h"

#include <QPainter>
#include <QPixmap>

namespace literal {

QImage Display(const QImage& mask, QRgb rgb)
{
    QImage picture(mask.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < mask.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < mask.width(); ++x) {
            row[x] = mask.pixelIndex(x, y) == 255 ? rgb | 0xFF000000U : 0;
        }
    }
    return picture;
}

QImage Mask(const QImage& picture, QRgb rgb)
{
    QImage mask(picture.size(), QImage::Format_Indexed8);
    mask.setColorTable(raster::GreyTable());
    for (int y = 0; y < picture.height(); ++y) {
        const auto* from = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        uchar* to = mask.scanLine(y);
        for (int x = 0; x < picture.width(); ++x) {
            to[x] = from[x] == (rgb | 0xFF000000U) ? 255 : 0;
        }
    }
    return mask;
}

void Paint(QImage& picture, const BrushStep& step)
{
    if (picture.isNull()) {
        return;
    }
    const QBrush ink(step.isErasing ? QColor(Qt::transparent) : step.color, Qt::SolidPattern);
    QPainter painter(&picture);
    painter.setCompositionMode(step.isErasing ? QPainter::CompositionMode_Clear
                                              : QPainter::CompositionMode_SourceOver);
    if (step.isDab) {
        const double radius = step.size * 0.5;
        painter.setPen(QColor(Qt::transparent));
        painter.setBrush(ink);
        painter.drawEllipse(step.to, radius, radius);
    } else {
        painter.setPen(QPen(ink, step.size, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawLine(step.from, step.to);
    }
}

QImage Compose(const QVector<ShownLayer>& layers, QSize size)
{
    QPixmap composed(size);
    composed.fill(Qt::transparent);
    if (composed.isNull()) {
        return {};
    }
    QPainter painter(&composed);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    for (const ShownLayer& layer : layers) {
        painter.setOpacity(static_cast<qreal>(layer.opacity));
        painter.drawPixmap(0, 0, QPixmap::fromImage(Display(layer.mask, layer.rgb)));
    }
    painter.end();
    return composed.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace literal
