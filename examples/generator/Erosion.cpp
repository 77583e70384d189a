#include "Erosion.h"

#include "Flow.h"

namespace generator {

namespace {

void Creep(Field& height, const Mask& sea, float share)
{
    const Field before = height;
    ForEachCell(height, [&](int x, int y, int cell) {
        if (sea[cell]) {
            return;
        }
        const float around = before.Near(x - 1, y) + before.Near(x + 1, y) + before.Near(x, y - 1) +
                             before.Near(x, y + 1);
        height[cell] += share * (around - 4.0F * before[cell]);
    });
}

} // namespace

// Stream power erosion, solved implicitly from the outlets upward (Jean Braun and Sean Willett,
// 2013); rising land carved by it (Guillaume Cordonnier and others, 2016).
void Erode(Field& height, const Field& uplift, const Mask& sea, const ErosionRun& run)
{
    const int size = height.Size();
    const float cellMetres = static_cast<float>(WorldMetres) / static_cast<float>(size);
    for (int step = 0; step < run.steps; ++step) {
        const Flow flow = RouteFlow(height, sea);
        for (const int cell : flow.order) {
            const int receiver = flow.receiver[cell];
            if (receiver == cell) {
                continue;
            }
            const bool isDiagonal =
                cell % size != receiver % size && cell / size != receiver / size;
            const float way = cellMetres * (isDiagonal ? Diagonal : 1.0F);
            const float force = run.cut * std::sqrt(flow.area[cell]) * cellMetres / way;
            const float risen = height[cell] + run.rise * uplift[cell];
            height[cell] =
                std::max((risen + force * height[receiver]) / (1.0F + force), height[receiver]);
        }
        if (run.creep > 0) {
            Creep(height, sea, run.creep);
        }
    }
}

} // namespace generator
