#include "layers/AreaScale.h"

#include <cmath>

AreaScale::AreaScale(QSize layerSize, QSize worldSize)
    : m_layerSize(layerSize)
    , m_worldSize(worldSize)
{
}

double AreaScale::Share(qint64 pixels) const
{
    const double all = double(m_layerSize.width()) * m_layerSize.height();
    return all > 0 ? double(pixels) / all : 0;
}

double AreaScale::SquareKm(qint64 pixels) const
{
    return Share(pixels) * (double(m_worldSize.width()) * m_worldSize.height() / 1e6);
}

double AreaScale::Percent(qint64 pixels) const
{
    return Share(pixels) * 100;
}

QRectF AreaScale::InWorld(const QRect& pixels) const
{
    if (pixels.isEmpty() || m_layerSize.isEmpty()) {
        return {};
    }
    const double metresX = double(m_worldSize.width()) / m_layerSize.width();
    const double metresZ = double(m_worldSize.height()) / m_layerSize.height();
    const int below = m_layerSize.height() - (pixels.top() + pixels.height());
    return {pixels.left() * metresX, below * metresZ, pixels.width() * metresX,
            pixels.height() * metresZ};
}

double AreaScale::Rounded(double value, int digits)
{
    const double scale = std::pow(10.0, digits);
    return std::round(value * scale) / scale;
}
