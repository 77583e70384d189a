#pragma once

#include <QRectF>
#include <QTransform>

#include <functional>

class QImage;
class QPainter;

/// Makes the image of a rectangle of device pixels, in Format_ARGB32_Premultiplied. toDevice maps
/// the item's coordinates to device pixels.
using MakeDeviceImage = std::function<QImage(const QTransform& toDevice, const QRect& device)>;

/// Calls the function to make the image of the exposed part of an item, in device pixels of any
/// density, and draws the image with the painter's opacity.
void DrawDeviceImage(QPainter& painter, const QRectF& exposed, const MakeDeviceImage& make);

/// Makes device pixels the painter's coordinates.
void UseDevicePixels(QPainter& painter);
