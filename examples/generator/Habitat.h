#pragma once

#include "World.h"

#include <QString>

namespace generator {

/// The properties of a place that matter to creatures, from 0 to 1. All are 0 in the sea.
class Habitat
{
public:
    explicit Habitat(const World& world);

    float Shelter(Point place) const;
    float Shore(Point place) const;
    float Grass(Point place) const;
    float Pasture(Point place) const;
    float ForestEdge(Point place) const;
    float Wilderness(Point place) const;
    float Heights(Point place) const;
    bool IsOnLand(Point place) const;

    /// In words, like "north ridge".
    QString Describe(Point place) const;

private:
    /// One word for the look of the land.
    QString Feature(Point place) const;

    const World& m_world;
    Field m_toLake;
    Field m_toSwamp;
    Field m_steepness;
};

} // namespace generator
