#pragma once

#include <QRectF>
#include <QTransform>

#include <functional>

class QImage;
class QPainter;

/// Makes the image of some device pixels, in Format_ARGB32_Premultiplied; toDevice maps the item's
/// coordinates to them.
using MakeDeviceImage = std::function<QImage(const QTransform& toDevice, const QRect& device)>;

/// Has the image of the exposed part of an item made in device pixels, whatever their density, and
/// draws it with the painter's opacity.
void DrawDeviceImage(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make);

/// From here on the painter's coordinates are device pixels.
void UseDevicePixels(QPainter& painter);
