#include "Shapes.h"

namespace generator {

namespace {

void DrawSegment(Field& coverage, Point from, Point to, float fromWidth, float toWidth)
{
    const Point way = to - from;
    const float square = std::max(way.x * way.x + way.y * way.y, 1e-6F);
    const float reach = 0.5F * (Length(way) + std::max(fromWidth, toWidth)) + 1.0F;
    ForEachCellAround(coverage.Size(), (from + to) * 0.5F, reach, [&](int x, int y) {
        const Point there = CentreOf(x, y) - from;
        const float t = Clamp01((there.x * way.x + there.y * way.y) / square);
        const float distance = Length(there - way * t);
        const float width = Mix(fromWidth, toWidth, t);
        // Lines thinner than a pixel are drawn fainter.
        const float share =
            Clamp01(0.5F * std::max(width, 1.0F) + 0.5F - distance) * std::min(width, 1.0F);
        coverage.At(x, y) = std::max(coverage.At(x, y), share);
    });
}

} // namespace

void DrawLine(Field& coverage, const Line& line, float width)
{
    DrawLine(coverage, line, std::vector<float>(line.size(), width));
}

void DrawLine(Field& coverage, const Line& line, const std::vector<float>& widths)
{
    for (std::size_t i = 1; i < line.size(); ++i) {
        DrawSegment(coverage, line[i - 1], line[i], widths[i - 1], widths[i]);
    }
}

Point Rectangle::ToLocal(Point place) const
{
    const Point there = place - centre;
    return {there.x * axis.x + there.y * axis.y, there.y * axis.x - there.x * axis.y};
}

Point Rectangle::ToWorld(Point local) const
{
    return centre + Point{local.x * axis.x - local.y * axis.y, local.x * axis.y + local.y * axis.x};
}

void DrawRectangle(Field& coverage, const Rectangle& rectangle)
{
    const float reach = rectangle.halfLength + rectangle.halfWidth + 1.0F;
    ForEachCellAround(coverage.Size(), rectangle.centre, reach, [&](int x, int y) {
        const Point local = rectangle.ToLocal(CentreOf(x, y));
        const float along = Clamp01(rectangle.halfLength + 0.5F - std::abs(local.x));
        const float across = Clamp01(rectangle.halfWidth + 0.5F - std::abs(local.y));
        coverage.At(x, y) = std::max(coverage.At(x, y), along * across);
    });
}

Line Smoothed(Line line, int passes)
{
    for (int pass = 0; pass < passes; ++pass) {
        const Line before = line;
        for (std::size_t i = 1; i + 1 < line.size(); ++i) {
            line[i] = (before[i - 1] + before[i] * 2.0F + before[i + 1]) * 0.25F;
        }
    }
    return line;
}

Point DirectionOf(float turn)
{
    // Projects a diamond onto the circle. Does not use sine and cosine, which differ between
    // libraries.
    const float around = 4.0F * turn;
    const Point diamond = {around < 2.0F ? 1.0F - around : around - 3.0F, around < 1.0F ? around
                                                                          : around < 3.0F
                                                                              ? 2.0F - around
                                                                              : around - 4.0F};
    return diamond * (1.0F / std::max(Length(diamond), 1e-6F));
}

} // namespace generator
