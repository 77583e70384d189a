#include "Raster.h"

namespace generator {

namespace {

/// Lower envelope of the parabolas that stand on one line of squared distances.
class LineTransform
{
public:
    explicit LineTransform(int size)
        : m_values(static_cast<std::size_t>(size))
        , m_feet(static_cast<std::size_t>(size))
        , m_starts(static_cast<std::size_t>(size) + 1)
    {
    }

    float& Value(int place) { return m_values[static_cast<std::size_t>(place)]; }

    /// Calls store with the new value of each place of the line.
    template <typename Store>
    void Run(Store store)
    {
        const int size = static_cast<int>(m_values.size());
        int last = 0;
        m_feet[0] = 0;
        m_starts[0] = -Endless;
        m_starts[1] = Endless;
        for (int place = 1; place < size; ++place) {
            float start = Crossing(place, m_feet[Index(last)]);
            while (start <= m_starts[Index(last)]) {
                --last;
                start = Crossing(place, m_feet[Index(last)]);
            }
            ++last;
            m_feet[Index(last)] = place;
            m_starts[Index(last)] = start;
            m_starts[Index(last + 1)] = Endless;
        }
        last = 0;
        for (int place = 0; place < size; ++place) {
            while (m_starts[Index(last + 1)] < static_cast<float>(place)) {
                ++last;
            }
            const auto way = static_cast<float>(place - m_feet[Index(last)]);
            store(place, way * way + Value(m_feet[Index(last)]));
        }
    }

    static constexpr float Endless = 1e9F;

private:
    static std::size_t Index(int place) { return static_cast<std::size_t>(place); }

    float Crossing(int right, int left)
    {
        const auto r = static_cast<float>(right);
        const auto l = static_cast<float>(left);
        return ((Value(right) + r * r) - (Value(left) + l * l)) / (2.0F * (r - l));
    }

    std::vector<float> m_values;
    std::vector<int> m_feet;
    std::vector<float> m_starts;
};

} // namespace

// Distance transform of sampled functions (Felzenszwalb and Huttenlocher, 2012).
Field DistanceTo(const Mask& mask)
{
    // Farther than any cell, and small enough that the sums stay exact.
    constexpr float far = 16777216.0F;
    const int size = mask.Size();
    Field squares(size);
    LineTransform line(size);
    for (int x = 0; x < size; ++x) {
        for (int y = 0; y < size; ++y) {
            line.Value(y) = mask.At(x, y) ? 0.0F : far;
        }
        line.Run([&](int y, float square) { squares.At(x, y) = square; });
    }
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            line.Value(x) = squares.At(x, y);
        }
        line.Run([&](int x, float square) { squares.At(x, y) = std::sqrt(square); });
    }
    return squares;
}

namespace {

/// The running mean along each row.
void BlurRows(const Field& in, Field& out, int radius)
{
    const float scale = 1.0F / static_cast<float>(2 * radius + 1);
    for (int y = 0; y < in.Size(); ++y) {
        float sum = 0;
        for (int x = -radius; x <= radius; ++x) {
            sum += in.Near(x, y);
        }
        for (int x = 0; x < in.Size(); ++x) {
            out.At(x, y) = sum * scale;
            sum += in.Near(x + radius + 1, y) - in.Near(x - radius, y);
        }
    }
}

/// The running mean along each column. It goes row by row through all columns at once, because
/// memory is faster along rows.
void BlurColumns(const Field& in, Field& out, int radius)
{
    const int size = in.Size();
    const float scale = 1.0F / static_cast<float>(2 * radius + 1);
    std::vector<float> sums(static_cast<std::size_t>(size));
    const auto add = [&](int y, float sign) {
        const int row = std::clamp(y, 0, size - 1);
        for (int x = 0; x < size; ++x) {
            sums[static_cast<std::size_t>(x)] += sign * in.At(x, row);
        }
    };
    for (int y = -radius; y <= radius; ++y) {
        add(y, 1.0F);
    }
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            out.At(x, y) = sums[static_cast<std::size_t>(x)] * scale;
        }
        add(y + radius + 1, 1.0F);
        add(y - radius, -1.0F);
    }
}

} // namespace

Field Blurred(const Field& field, int radius)
{
    Field blurred = field;
    Field rows(field.Size());
    for (int pass = 0; pass < 3; ++pass) {
        BlurRows(blurred, rows, radius);
        BlurColumns(rows, blurred, radius);
    }
    return blurred;
}

namespace {

/// The cubic curve through b and c, at t from b (Edwin Catmull and Raphael Rom, 1974).
float Cubic(float a, float b, float c, float d, float t)
{
    const float bend = 2.0F * a - 5.0F * b + 4.0F * c - d;
    const float twist = 3.0F * (b - c) + d - a;
    return b + 0.5F * t * (c - a + t * (bend + t * twist));
}

float CubicSample(const Field& field, float x, float y)
{
    const int cellX = static_cast<int>(std::floor(x));
    const int cellY = static_cast<int>(std::floor(y));
    const float tx = x - std::floor(x);
    float rows[4];
    for (int row = 0; row < 4; ++row) {
        const int nearY = cellY - 1 + row;
        rows[row] = Cubic(field.Near(cellX - 1, nearY), field.Near(cellX, nearY),
                          field.Near(cellX + 1, nearY), field.Near(cellX + 2, nearY), tx);
    }
    return Cubic(rows[0], rows[1], rows[2], rows[3], y - std::floor(y));
}

} // namespace

Field Enlarged(const Field& field)
{
    Field large(field.Size() * 2);
    ForEachCell(large, [&](int x, int y, int cell) {
        large[cell] = CubicSample(field, static_cast<float>(x) * 0.5F - 0.25F,
                                  static_cast<float>(y) * 0.5F - 0.25F);
    });
    return large;
}

Patches FindPatches(const Mask& mask)
{
    const int size = mask.Size();
    Patches patches = {Grid<int>(size, -1), {}};
    std::vector<int> open;
    for (int first = 0; first < mask.Count(); ++first) {
        if (patches.number[first] >= 0) {
            continue;
        }
        const int number = static_cast<int>(patches.cellCounts.size());
        int cellCount = 0;
        patches.number[first] = number;
        open.push_back(first);
        while (!open.empty()) {
            const int cell = open.back();
            open.pop_back();
            ++cellCount;
            for (int way = 0; way < 4; ++way) {
                const int x = cell % size + Steps[way].x;
                const int y = cell / size + Steps[way].y;
                if (mask.Holds(x, y) && patches.number.At(x, y) < 0 &&
                    mask.At(x, y) == mask[first]) {
                    patches.number.At(x, y) = number;
                    open.push_back(y * size + x);
                }
            }
        }
        patches.cellCounts.push_back(cellCount);
    }
    return patches;
}

void DropSmallPatches(Mask& mask, int minCells)
{
    const Patches patches = FindPatches(mask);
    for (int cell = 0; cell < mask.Count(); ++cell) {
        if (patches.cellCounts[static_cast<std::size_t>(patches.number[cell])] < minCells) {
            mask[cell] = mask[cell] ? 0 : 1;
        }
    }
}

Mask Inverse(const Mask& mask)
{
    Mask inverse(mask.Size());
    for (int cell = 0; cell < mask.Count(); ++cell) {
        inverse[cell] = mask[cell] ? 0 : 1;
    }
    return inverse;
}

} // namespace generator
