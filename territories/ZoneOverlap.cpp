#include "territories/ZoneOverlap.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace {

struct Circle
{
    double x;
    double z;
    double radius;
    /// Files change the distance of its rim from a place by less, because they hold six digits.
    double slack;
    std::size_t row;
};

double Square(double value)
{
    return value * value;
}

double SizeOf(const WorldCircle& circle)
{
    return std::abs(circle.x) + std::abs(circle.z) + circle.radius;
}

/// By the numbers that files hold, which are read as numbers of single precision.
bool TouchInFile(const Circle& a, const Circle& b)
{
    const WorldCircle first = AsWritten(WorldCircle{a.x, a.z, a.radius});
    const WorldCircle second = AsWritten(WorldCircle{b.x, b.z, b.radius});
    const double rounding = static_cast<double>(std::numeric_limits<float>::epsilon()) *
                            (SizeOf(first) + SizeOf(second));
    return std::hypot(first.x - second.x, first.z - second.z) <=
           first.radius + second.radius + rounding;
}

bool Touch(const Circle& a, const Circle& b)
{
    const double distance = Square(a.x - b.x) + Square(a.z - b.z);
    const double reach = a.radius + b.radius;
    const double slack = a.slack + b.slack;
    if (distance > Square(reach + slack)) {
        return false;
    }
    // Text takes long to make.
    return (reach > slack && distance <= Square(reach - slack)) || TouchInFile(a, b);
}

/// Circles by their centres, halved again and again along the longer side of their bounds. A part
/// that is too far away for its largest circle is passed over as a whole.
class CircleTree
{
public:
    explicit CircleTree(std::vector<Circle> circles)
        : m_circles(std::move(circles))
    {
        if (!m_circles.empty()) {
            Build(0, m_circles.size());
        }
    }

    const std::vector<Circle>& Circles() const { return m_circles; }

    /// Another circle that touches this one, which is in the tree; null for none.
    const Circle* TouchedBy(const Circle& circle) const
    {
        std::vector<std::size_t> parts = {0};
        while (!parts.empty()) {
            const std::size_t index = parts.back();
            const Part& part = m_parts[index];
            parts.pop_back();
            if (IsTooFar(part, circle)) {
                continue;
            }
            if (part.second != 0) {
                parts.push_back(part.second);
                parts.push_back(index + 1);
                continue;
            }
            for (std::size_t i = part.begin; i < part.end; ++i) {
                if (m_circles[i].row != circle.row && Touch(m_circles[i], circle)) {
                    return &m_circles[i];
                }
            }
        }
        return nullptr;
    }

private:
    struct Part
    {
        std::size_t begin;
        std::size_t end;
        double left;
        double right;
        double bottom;
        double top;
        /// Of the circles with their slacks.
        double largestReach;
        /// The index of its second half, the first one follows it; 0 for a part without halves.
        std::size_t second;
    };

    static bool IsTooFar(const Part& part, const Circle& circle)
    {
        const double dx = std::max({part.left - circle.x, circle.x - part.right, 0.0});
        const double dz = std::max({part.bottom - circle.z, circle.z - part.top, 0.0});
        return Square(dx) + Square(dz) > Square(part.largestReach + circle.radius + circle.slack);
    }

    void Build(std::size_t begin, std::size_t end)
    {
        constexpr std::size_t fewCircles = 8;
        const Circle& first = m_circles[begin];
        Part part{begin, end, first.x, first.x, first.z, first.z, 0, 0};
        for (std::size_t i = begin; i < end; ++i) {
            const Circle& circle = m_circles[i];
            part.left = std::min(part.left, circle.x);
            part.right = std::max(part.right, circle.x);
            part.bottom = std::min(part.bottom, circle.z);
            part.top = std::max(part.top, circle.z);
            part.largestReach = std::max(part.largestReach, circle.radius + circle.slack);
        }
        const std::size_t index = m_parts.size();
        m_parts.push_back(part);
        if (end - begin <= fewCircles) {
            return;
        }
        const std::size_t middle = begin + (end - begin) / 2;
        const auto side = part.right - part.left > part.top - part.bottom ? &Circle::x : &Circle::z;
        std::nth_element(m_circles.data() + begin, m_circles.data() + middle,
                         m_circles.data() + end,
                         [side](const Circle& a, const Circle& b) { return a.*side < b.*side; });
        Build(begin, middle);
        m_parts[index].second = m_parts.size();
        Build(middle, end);
    }

    std::vector<Circle> m_circles;
    std::vector<Part> m_parts;
};

bool CanTouch(const WorldCircle& circle)
{
    return std::isfinite(circle.x) && std::isfinite(circle.z) && std::isfinite(circle.radius) &&
           circle.radius >= 0;
}

} // namespace

std::vector<bool> OverlappingRows(const std::vector<ZoneRow>& rows)
{
    // Half a unit of the last digit of six is less.
    constexpr double roundingOfFiles = 1e-5;
    QHash<QString, std::vector<Circle>> types;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const WorldCircle& circle = rows[i].circle;
        if (CanTouch(circle)) {
            types[rows[i].type].push_back(
                {circle.x, circle.z, circle.radius, roundingOfFiles * SizeOf(circle), i});
        }
    }
    std::vector<bool> doOverlap(rows.size(), false);
    for (const std::vector<Circle>& circles : qAsConst(types)) {
        const CircleTree tree(circles);
        for (const Circle& circle : tree.Circles()) {
            const Circle* other = doOverlap[circle.row] ? nullptr : tree.TouchedBy(circle);
            if (other) {
                doOverlap[circle.row] = true;
                doOverlap[other->row] = true;
            }
        }
    }
    return doOverlap;
}
