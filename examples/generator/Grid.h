#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

/// The program that makes the example project: an invented island and its creatures.
namespace generator {

/// The side of the world in pixels, and the metres of one pixel.
constexpr int WorldPixels = 2048;
constexpr int WorldMetres = 15360;
constexpr float MetresPerPixel = static_cast<float>(WorldMetres) / WorldPixels;

/// A place in pixels from the north-west corner; y grows to the south.
struct Point
{
    float x = 0;
    float y = 0;
};

inline Point operator+(Point a, Point b)
{
    return {a.x + b.x, a.y + b.y};
}

inline Point operator-(Point a, Point b)
{
    return {a.x - b.x, a.y - b.y};
}

inline Point operator*(Point a, float factor)
{
    return {a.x * factor, a.y * factor};
}

inline float Length(Point a)
{
    return std::sqrt(a.x * a.x + a.y * a.y);
}

inline float Clamp01(float value)
{
    return std::clamp(value, 0.0F, 1.0F);
}

/// 0 below low, 1 above high, smooth between.
inline float SmoothStep(float low, float high, float value)
{
    const float t = Clamp01((value - low) / (high - low));
    return t * t * (3.0F - 2.0F * t);
}

inline float Mix(float a, float b, float t)
{
    return a + (b - a) * t;
}

/// A square of values, row by row from the north-west corner.
template <typename T>
class Grid
{
public:
    explicit Grid(int size = 0, T value = {})
        : m_size(size)
        , m_cells(static_cast<std::size_t>(size) * static_cast<std::size_t>(size), value)
    {
    }

    int Size() const { return m_size; }
    int Count() const { return m_size * m_size; }
    bool Holds(int x, int y) const { return x >= 0 && y >= 0 && x < m_size && y < m_size; }

    T& operator[](int cell) { return m_cells[static_cast<std::size_t>(cell)]; }
    T operator[](int cell) const { return m_cells[static_cast<std::size_t>(cell)]; }
    T& At(int x, int y) { return (*this)[y * m_size + x]; }
    T At(int x, int y) const { return (*this)[y * m_size + x]; }
    /// Places outside get the value of the nearest cell.
    T Near(int x, int y) const
    {
        return At(std::clamp(x, 0, m_size - 1), std::clamp(y, 0, m_size - 1));
    }
    T Near(Point place) const
    {
        return Near(static_cast<int>(std::floor(place.x)), static_cast<int>(std::floor(place.y)));
    }

private:
    int m_size;
    std::vector<T> m_cells;
};

using Field = Grid<float>;
/// 1 is set, 0 is clear.
using Mask = Grid<std::uint8_t>;

/// Calls body(x, y, cell) for every cell, row by row.
template <typename T, typename Body>
void ForEachCell(const Grid<T>& grid, Body body)
{
    int cell = 0;
    for (int y = 0; y < grid.Size(); ++y) {
        for (int x = 0; x < grid.Size(); ++x) {
            body(x, y, cell++);
        }
    }
}

/// A step to one of the eight cells around a cell.
struct Step
{
    int x;
    int y;
    float length;
};
constexpr float Diagonal = 1.41421356F;
constexpr Step Steps[] = {
    {1, 0, 1.0F},     {-1, 0, 1.0F},     {0, 1, 1.0F},      {0, -1, 1.0F},
    {1, 1, Diagonal}, {-1, 1, Diagonal}, {1, -1, Diagonal}, {-1, -1, Diagonal},
};

} // namespace generator
