#include "Flow.h"

#include "Noise.h"

namespace generator {

namespace {

/// The queue of the flood: cells in fine classes of height, lowest class first. A heap would sort
/// exactly, but take several times as long.
class ClassQueue
{
public:
    ClassQueue(int cellCount, float low, float high)
        : m_next(static_cast<std::size_t>(cellCount), None)
        , m_heads(ClassCount, None)
        , m_low(low)
        , m_classesPerMetre(static_cast<float>(ClassCount - 1) / std::max(high - low, 1e-3F))
    {
    }

    void Push(int cell, float height)
    {
        const int wanted = static_cast<int>((height - m_low) * m_classesPerMetre);
        const int number = std::clamp(wanted, m_current, ClassCount - 1);
        int& head = m_heads[static_cast<std::size_t>(number)];
        m_next[static_cast<std::size_t>(cell)] = head;
        head = cell;
    }

    /// Returns none if the queue is empty.
    int Pop()
    {
        while (m_current < ClassCount) {
            int& head = m_heads[static_cast<std::size_t>(m_current)];
            if (head != None) {
                const int cell = head;
                head = m_next[static_cast<std::size_t>(cell)];
                return cell;
            }
            ++m_current;
        }
        return None;
    }

    static constexpr int None = -1;

private:
    static constexpr int ClassCount = 1 << 16;

    std::vector<int> m_next;
    std::vector<int> m_heads;
    float m_low;
    float m_classesPerMetre;
    int m_current = 0;
};

/// The flood's state of a cell.
enum : std::uint8_t
{
    Dry,
    Queued,
    Done,
};

/// The steepest way down to a cell that the flood has passed. Slopes are changed slightly at
/// random, because otherwise straight valleys would follow the eight directions of the grid.
int SteepestReceiver(const Field& level, const Mask& state, int x, int y, int fallback)
{
    constexpr std::uint32_t seed = 11;
    int receiver = fallback;
    float steepest = 0;
    for (const Step& step : Steps) {
        const int nearX = x + step.x;
        const int nearY = y + step.y;
        if (!level.Holds(nearX, nearY) || state.At(nearX, nearY) != Done) {
            continue;
        }
        const float blur = 0.7F + 0.6F * Random01(nearX, nearY, seed);
        const float slope = blur * (level.At(x, y) - level.At(nearX, nearY)) / step.length;
        if (slope > steepest) {
            steepest = slope;
            receiver = nearY * level.Size() + nearX;
        }
    }
    return receiver;
}

float Highest(const Field& height)
{
    float highest = 0;
    for (int cell = 0; cell < height.Count(); ++cell) {
        highest = std::max(highest, height[cell]);
    }
    return highest;
}

void SumAreas(Flow& flow)
{
    for (auto cell = flow.order.rbegin(); cell != flow.order.rend(); ++cell) {
        const int receiver = flow.receiver[*cell];
        if (receiver != *cell) {
            flow.area[receiver] += flow.area[*cell];
        }
    }
}

} // namespace

// Priority-flood (Barnes, Lehman and Mulla, 2014).
Flow RouteFlow(const Field& height, const Mask& outlets)
{
    constexpr float brim = 1e-3F;
    const int size = height.Size();
    Flow flow = {Grid<int>(size), Field(size, 1.0F), {}};
    flow.order.reserve(static_cast<std::size_t>(height.Count()));
    Field level = height;
    Mask state(size, Dry);
    ClassQueue queue(height.Count(), 0.0F, Highest(height));
    for (int cell = 0; cell < height.Count(); ++cell) {
        flow.receiver[cell] = cell;
        if (outlets[cell]) {
            state[cell] = Queued;
            queue.Push(cell, height[cell]);
        }
    }
    for (int cell = queue.Pop(); cell != ClassQueue::None; cell = queue.Pop()) {
        const int x = cell % size;
        const int y = cell / size;
        if (!outlets[cell]) {
            flow.receiver[cell] = SteepestReceiver(level, state, x, y, flow.receiver[cell]);
        }
        state[cell] = Done;
        flow.order.push_back(cell);
        for (const Step& step : Steps) {
            if (!level.Holds(x + step.x, y + step.y)) {
                continue;
            }
            const int near = (y + step.y) * size + x + step.x;
            if (state[near] == Dry) {
                state[near] = Queued;
                flow.receiver[near] = cell;
                level[near] = std::max(level[near], level[cell] + brim);
                queue.Push(near, level[near]);
            }
        }
    }
    SumAreas(flow);
    return flow;
}

} // namespace generator
