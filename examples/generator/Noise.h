#pragma once

#include <cstdint>

/// Noise from integer hashes, so that every machine makes the same world from the same seed.
namespace generator {

/// The seed of all noise of the world.
constexpr std::uint32_t WorldSeed = 20417;

std::uint32_t Hash(int x, int y, std::uint32_t seed);
/// From 0 to less than 1.
float Random01(int x, int y, std::uint32_t seed);

/// Smooth noise with one bump a unit, about -1 to 1.
float GradientNoise(float x, float y, std::uint32_t seed);
/// Octaves of gradient noise, each twice as fine and half as strong; about -1 to 1.
float FractalNoise(float x, float y, int octaves, std::uint32_t seed);
/// The same with sharp crests, 0 to 1.
float RidgedNoise(float x, float y, int octaves, std::uint32_t seed);

/// The distances from a point to random feature points, of which there is one in each unit square.
struct CellSample
{
    /// Distances to the nearest and the second nearest feature point.
    float first;
    float second;
    /// Hash of the nearest one.
    std::uint32_t id;
};
CellSample CellNoise(float x, float y, std::uint32_t seed);

/// A sequence of random numbers, the same for the same seed.
class RandomSequence
{
public:
    explicit RandomSequence(std::uint32_t seed)
        : m_seed(seed)
    {
    }

    float Next01();
    float Between(float low, float high) { return low + (high - low) * Next01(); }
    /// low to high, both included.
    int Whole(int low, int high);

private:
    std::uint32_t m_seed;
    int m_count = 0;
};

} // namespace generator
