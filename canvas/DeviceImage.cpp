#include "canvas/DeviceImage.h"

#include <QImage>
#include <QPainter>

void DrawDeviceImage(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make)
{
    const QTransform toDevice = painter.deviceTransform();
    const QRect device = toDevice.mapRect(exposed).toAlignedRect();
    const QImage image = make(toDevice, device);
    if (image.isNull()) {
        return;
    }
    painter.save();
    UseDevicePixels(painter);
    painter.drawImage(device.topLeft(), image);
    painter.restore();
}

void UseDevicePixels(QPainter& painter)
{
    painter.setWorldTransform({});
    // The remaining transform holds the screen's density and, for widgets, the place in their
    // window.
    painter.setWorldTransform(painter.deviceTransform().inverted());
}
