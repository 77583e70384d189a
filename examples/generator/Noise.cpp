#include "Noise.h"

#include "Grid.h"

#include <array>

namespace generator {

// The finalizer of MurmurHash3 (Austin Appleby, 2008) over both coordinates.
std::uint32_t Hash(int x, int y, std::uint32_t seed)
{
    std::uint32_t hash = seed * 0x9E3779B1U + WorldSeed;
    for (const int word : {x, y}) {
        hash ^= static_cast<std::uint32_t>(word);
        hash ^= hash >> 16U;
        hash *= 0x85EBCA6BU;
        hash ^= hash >> 13U;
        hash *= 0xC2B2AE35U;
        hash ^= hash >> 16U;
    }
    return hash;
}

float Random01(int x, int y, std::uint32_t seed)
{
    // A float holds 24 bits exactly.
    return static_cast<float>(Hash(x, y, seed) >> 8U) * (1.0F / 16777216.0F);
}

namespace {

/// Unit vectors every 22.5 degrees. They are constants because sine and cosine differ between
/// libraries.
constexpr std::array<Point, 16> Directions = {{
    {1.0F, 0.0F},
    {0.92388F, 0.382683F},
    {0.707107F, 0.707107F},
    {0.382683F, 0.92388F},
    {0.0F, 1.0F},
    {-0.382683F, 0.92388F},
    {-0.707107F, 0.707107F},
    {-0.92388F, 0.382683F},
    {-1.0F, 0.0F},
    {-0.92388F, -0.382683F},
    {-0.707107F, -0.707107F},
    {-0.382683F, -0.92388F},
    {0.0F, -1.0F},
    {0.382683F, -0.92388F},
    {0.707107F, -0.707107F},
    {0.92388F, -0.382683F},
}};

float Slope(int cellX, int cellY, float dx, float dy, std::uint32_t seed)
{
    const Point direction = Directions[Hash(cellX, cellY, seed) & 15U];
    return direction.x * dx + direction.y * dy;
}

float Fade(float t)
{
    return t * t * t * (t * (t * 6.0F - 15.0F) + 10.0F);
}

} // namespace

// Gradient noise with the quintic fade (Ken Perlin, 1985 and 2002).
float GradientNoise(float x, float y, std::uint32_t seed)
{
    const float floorX = std::floor(x);
    const float floorY = std::floor(y);
    const int cellX = static_cast<int>(floorX);
    const int cellY = static_cast<int>(floorY);
    const float dx = x - floorX;
    const float dy = y - floorY;
    const float fadeX = Fade(dx);
    const float north =
        Mix(Slope(cellX, cellY, dx, dy, seed), Slope(cellX + 1, cellY, dx - 1.0F, dy, seed), fadeX);
    const float south = Mix(Slope(cellX, cellY + 1, dx, dy - 1.0F, seed),
                            Slope(cellX + 1, cellY + 1, dx - 1.0F, dy - 1.0F, seed), fadeX);
    return 1.5F * Mix(north, south, Fade(dy));
}

namespace {

/// Each octave is turned by this vector, so that their grids do not coincide.
constexpr Point OctaveTurn = {1.6F, 1.2F};

template <typename Shape>
float SumOctaves(float x, float y, int octaves, std::uint32_t seed, Shape shape)
{
    float sum = 0;
    float weight = 1;
    float total = 0;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += weight * shape(GradientNoise(x, y, seed + static_cast<std::uint32_t>(octave)));
        total += weight;
        weight *= 0.5F;
        const float turned = x * OctaveTurn.x - y * OctaveTurn.y;
        y = x * OctaveTurn.y + y * OctaveTurn.x + 7.3F;
        x = turned + 3.1F;
    }
    return sum / total;
}

} // namespace

float FractalNoise(float x, float y, int octaves, std::uint32_t seed)
{
    return 1.4F * SumOctaves(x, y, octaves, seed, [](float value) { return value; });
}

float RidgedNoise(float x, float y, int octaves, std::uint32_t seed)
{
    return SumOctaves(x, y, octaves, seed, [](float value) {
        const float crest = 1.0F - std::min(std::abs(value), 1.0F);
        return crest * crest;
    });
}

// Cellular noise (Steven Worley, 1996).
CellSample CellNoise(float x, float y, std::uint32_t seed)
{
    const int cellX = static_cast<int>(std::floor(x));
    const int cellY = static_cast<int>(std::floor(y));
    CellSample sample = {9.0F, 9.0F, 0};
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const std::uint32_t id = Hash(cellX + dx, cellY + dy, seed);
            const Point feature = {
                static_cast<float>(cellX + dx) + static_cast<float>(id & 0xFFFFU) / 65536.0F,
                static_cast<float>(cellY + dy) + static_cast<float>(id >> 16U) / 65536.0F};
            const float distance = Length(feature - Point{x, y});
            if (distance < sample.first) {
                sample = {distance, sample.first, id};
            } else if (distance < sample.second) {
                sample.second = distance;
            }
        }
    }
    return sample;
}

float RandomSequence::Next01()
{
    return Random01(m_count++, 0, m_seed);
}

int RandomSequence::Whole(int low, int high)
{
    return low + static_cast<int>(Next01() * static_cast<float>(high - low + 1));
}

} // namespace generator
