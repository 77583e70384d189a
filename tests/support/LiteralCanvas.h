#pragma once

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QVector>

/// A simple version of the canvas: each layer is a 32-bit picture that is painted, converted and
/// composed as a whole at every step. Tests compare the real canvas with it.
namespace literal {

/// The layer's colour, opaque, where the mask is 255; transparent elsewhere.
QImage Display(const QImage& mask, QRgb rgb);

/// 255 where the picture has exactly the opaque colour, 0 elsewhere.
QImage Mask(const QImage& picture, QRgb rgb);

struct BrushStep
{
    bool isErasing = false;
    /// A filled circle at the end point, otherwise a line from the start to the end point.
    bool isDab = false;
    QColor color;
    int size = 32;
    QPointF from;
    QPointF to;
};

void Paint(QImage& picture, const BrushStep& step);

struct ShownLayer
{
    QImage mask;
    QRgb rgb = 0;
    float opacity = 1;
};

/// The first layer is on top.
QImage Compose(const QVector<ShownLayer>& layers, QSize size);

} // namespace literal
