#include "ui/SceneScale.h"

#include "app/ProjectSettings.h"

#include <cmath>

SceneScale::SceneScale(QSizeF map)
    : m_map(map)
    , m_metresX(static_cast<double>(ProjectSettings::Instance().MetresPerPixelX()))
    , m_metresZ(static_cast<double>(ProjectSettings::Instance().MetresPerPixelZ()))
{
}

bool SceneScale::IsUsable() const
{
    return !m_map.isEmpty() && std::isfinite(m_metresX) && std::isfinite(m_metresZ) &&
           m_metresX > 0 && m_metresZ > 0;
}

QSizeF SceneScale::World() const
{
    return {m_map.width() * m_metresX, m_map.height() * m_metresZ};
}

QPointF SceneScale::ToScene(QPointF metres) const
{
    return {metres.x() / m_metresX, m_map.height() - metres.y() / m_metresZ};
}

QPointF SceneScale::ToWorld(QPointF scene) const
{
    return {scene.x() * m_metresX, (m_map.height() - scene.y()) * m_metresZ};
}
