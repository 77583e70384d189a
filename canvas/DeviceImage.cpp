#include "canvas/DeviceImage.h"

#include <QImage>
#include <QPainter>

void DrawDeviceImage(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make)
{
    const QTransform toDevice = painter.deviceTransform();
    const QRect device = toDevice.mapRect(exposed).toAlignedRect();
    QImage image = make(toDevice, device);
    if (image.isNull()) {
        return;
    }
    const qreal ratio = painter.device()->devicePixelRatioF();
    image.setDevicePixelRatio(ratio);
    painter.save();
    painter.setWorldTransform({});
    painter.drawImage(QPointF(device.topLeft()) / ratio, image);
    painter.restore();
}
