#include "Species.h"

#include "territories/Zone.h"

namespace generator {

namespace {

float Shelter(const Habitat& habitat, Point place)
{
    return habitat.Shelter(place);
}

float Shore(const Habitat& habitat, Point place)
{
    return habitat.Shore(place);
}

float Grass(const Habitat& habitat, Point place)
{
    return habitat.Grass(place);
}

float Pasture(const Habitat& habitat, Point place)
{
    return habitat.Pasture(place);
}

float ForestEdge(const Habitat& habitat, Point place)
{
    return habitat.ForestEdge(place);
}

float WildEdge(const Habitat& habitat, Point place)
{
    return habitat.ForestEdge(place) * (0.3F + 0.7F * habitat.Wilderness(place));
}

float WildShelter(const Habitat& habitat, Point place)
{
    return habitat.Shelter(place) * (0.3F + 0.7F * habitat.Wilderness(place));
}

float WildShore(const Habitat& habitat, Point place)
{
    return habitat.Shore(place) * (0.4F + 0.6F * habitat.Wilderness(place));
}

float HighWoods(const Habitat& habitat, Point place)
{
    return WildShelter(habitat, place) * (0.35F + 0.65F * habitat.Heights(place));
}

} // namespace

std::vector<Species> AllSpecies()
{
    return {
        {"Deer",
         0x78DCA03C,
         16,
         105.0F,
         ForestEdge,
         {{Zone::Graze, nullptr, 2, 130, 260, 3, 4, Grass},
          {Zone::Rest, nullptr, 2, 90, 180, 2, 3, Shelter},
          {Zone::Water, nullptr, 1, 60, 130, 0, 2, Shore},
          {Zone::DynamicEvent, "HerdCrossing", 1, 80, 160, 0, 5, ForestEdge}}},
        {"Wolf",
         0x785A6EA0,
         13,
         135.0F,
         WildEdge,
         {{Zone::HuntingGround, nullptr, 2, 220, 400, 2, 4, WildEdge},
          {Zone::Rest, nullptr, 2, 90, 170, 2, 3, WildShelter},
          {Zone::Water, nullptr, 1, 60, 120, 0, 2, WildShore},
          {Zone::DynamicEvent, "PackHowl", 1, 100, 200, 0, 6, WildShelter}}},
        {"Bear",
         0x78783C1E,
         10,
         120.0F,
         HighWoods,
         {{Zone::HuntingGround, nullptr, 2, 200, 350, 1, 2, WildEdge},
          {Zone::Rest, nullptr, 1, 70, 130, 1, 1, HighWoods},
          {Zone::Water, nullptr, 1, 60, 120, 0, 1, WildShore},
          {Zone::Graze, nullptr, 1, 80, 160, 0, 1, Grass},
          {Zone::DynamicEvent, "SalmonRun", 1, 50, 110, 0, 3, WildShore}}},
        {"Cattle",
         0x78F0F0F0,
         12,
         80.0F,
         Pasture,
         {{Zone::Graze, nullptr, 3, 110, 220, 4, 3, Pasture},
          {Zone::Rest, nullptr, 1, 60, 120, 3, 2, Pasture},
          {Zone::Water, nullptr, 1, 50, 100, 0, 3, Shore},
          {Zone::DynamicEvent, "StrayCalf", 1, 60, 120, 0, 2, ForestEdge}}},
    };
}

} // namespace generator
