#pragma once

#include <QPointF>
#include <QSizeF>

/// Turns scene positions of the map (layer pixels, y grows downward) into world metres (X to the
/// right, Z upward from the lower edge), and back, by the project's sizes.
class SceneScale
{
public:
    /// map: the size of the scene.
    explicit SceneScale(QSizeF map);

    /// False without a project, and for a project whose sizes are of no use. Nothing else may be
    /// asked then.
    bool IsUsable() const;
    /// In metres.
    QSizeF World() const { return m_world; }
    QPointF ToScene(QPointF metres) const;
    QPointF ToWorld(QPointF scene) const;

private:
    QSizeF m_map;
    QSizeF m_world;
};
