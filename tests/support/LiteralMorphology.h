#pragma once

#include <QImage>
#include <QPoint>
#include <QVector>

/// Morphology by its definition, pixel by pixel. Tests compare the fast version with it.
namespace literal {

enum class Step
{
    Dilate,
    Erode,
};

/// Whether the offset belongs to the disc: the squares are compared as 32-bit floats.
bool IsInDisc(float radius, qint64 dx, qint64 dy);

/// Row by row every offset within ceil(radius) that belongs to the disc.
QVector<QPoint> Disc(float radius);

/// The largest (smallest) index among the pixels that the offsets point to inside the picture.
QImage Apply(Step step, const QImage& mask, const QVector<QPoint>& offsets);

/// The same for a disc. It compares every pixel with every other one, so it costs the same for any
/// radius.
QImage Apply(Step step, const QImage& mask, float radius);

} // namespace literal
