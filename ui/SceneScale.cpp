#include "ui/SceneScale.h"

#include "app/ProjectSettings.h"

SceneScale::SceneScale(QSizeF map)
    : m_map(map)
    , m_world(ProjectSettings::Instance().WorldWidth(), ProjectSettings::Instance().WorldHeight())
{
}

bool SceneScale::IsUsable() const
{
    return !m_map.isEmpty() && !m_world.isEmpty();
}

QPointF SceneScale::ToScene(QPointF metres) const
{
    return {metres.x() * m_map.width() / m_world.width(),
            m_map.height() - metres.y() * m_map.height() / m_world.height()};
}

QPointF SceneScale::ToWorld(QPointF scene) const
{
    return {scene.x() * m_world.width() / m_map.width(),
            (m_map.height() - scene.y()) * m_world.height() / m_map.height()};
}
