#include "ui/WorldScale.h"

#include "app/ProjectSettings.h"

#include <cmath>

WorldScale::WorldScale(QSizeF map)
    : m_map(map)
    , m_metresX(static_cast<double>(ProjectSettings::Instance().MetresPerPixelX()))
    , m_metresZ(static_cast<double>(ProjectSettings::Instance().MetresPerPixelZ()))
{
}

bool WorldScale::IsUsable() const
{
    return !m_map.isEmpty() && std::isfinite(m_metresX) && std::isfinite(m_metresZ) &&
           m_metresX > 0 && m_metresZ > 0;
}

QSizeF WorldScale::World() const
{
    return {m_map.width() * m_metresX, m_map.height() * m_metresZ};
}

QPointF WorldScale::ToScene(QPointF metres) const
{
    return {metres.x() / m_metresX, m_map.height() - metres.y() / m_metresZ};
}

QPointF WorldScale::ToWorld(QPointF scene) const
{
    return {scene.x() * m_metresX, (m_map.height() - scene.y()) * m_metresZ};
}
