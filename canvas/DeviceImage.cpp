#include "canvas/DeviceImage.h"

#include <QImage>
#include <QPainter>

void DrawDeviceImage(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make)
{
    const QTransform toDevice = painter.deviceTransform();
    // A scene that renders a part of itself calls the whole of each item exposed, and clips.
    const QRectF visible = painter.hasClipping() ? exposed & painter.clipBoundingRect() : exposed;
    const QRect device = toDevice.mapRect(visible).toAlignedRect();
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
