#pragma once

#include <QRect>
#include <QRectF>
#include <QSize>

/// What numbers of layer pixels mean in the world: their area, their share, and where they are.
class AreaScale
{
public:
    /// Layer pixels and world metres. Without pixels every area is 0.
    AreaScale(QSize layerSize, QSize worldSize);

    double SquareKm(qint64 pixels) const;
    /// The share of all pixels.
    double Percent(qint64 pixels) const;
    /// The world metres that layer pixels cover: x and width to the right from the left edge, y and
    /// height upward from the lower edge. Empty for an empty rectangle.
    QRectF InWorld(const QRect& pixels) const;

    /// As numbers are printed.
    static double Rounded(double value, int digits);

private:
    double Share(qint64 pixels) const;

    QSize m_layerSize;
    QSize m_worldSize;
};
