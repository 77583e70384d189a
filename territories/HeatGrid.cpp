#include "territories/HeatGrid.h"

#include "territories/Pi.h"

#include <algorithm>
#include <cmath>

namespace {

/// A circle is cut into horizontal strips of even density: so many for each row of cells, and so
/// many at least.
constexpr double StripsPerRow = 4;
constexpr double LeastStrips = 16;

/// The area of the unit circle below a height from -1 to 1, measured from the middle.
double AreaBelow(double height)
{
    const double y = std::clamp(height, -1.0, 1.0);
    return y * std::sqrt(1 - y * y) + std::asin(y) + Pi / 2;
}

} // namespace

HeatGrid::HeatGrid(QSize cells, QSizeF world)
{
    if (!cells.isEmpty() && !world.isEmpty()) {
        m_cells = cells;
        m_cell = QSizeF(world.width() / cells.width(), world.height() / cells.height());
        m_creatures.resize(static_cast<std::size_t>(cells.width()) *
                           static_cast<std::size_t>(cells.height()));
    }
}

void HeatGrid::Add(const WorldCircle& circle, double creatures)
{
    const double radius = circle.radius;
    const bool isFinite = std::isfinite(circle.x) && std::isfinite(circle.z) &&
                          std::isfinite(radius) && std::isfinite(creatures);
    const double bottom = std::max(circle.z - radius, 0.0);
    const double top = std::min(circle.z + radius, m_cell.height() * m_cells.height());
    if (!isFinite || radius <= 0 || m_creatures.empty() || bottom >= top) {
        return;
    }
    const double thickest = std::min(m_cell.height() / StripsPerRow, 2 * radius / LeastStrips);
    const int strips = static_cast<int>(std::ceil((top - bottom) / thickest));
    const double thickness = (top - bottom) / strips;
    double below = AreaBelow((bottom - circle.z) / radius);
    for (int strip = 0; strip < strips; ++strip) {
        const double upper = bottom + (strip + 1) * thickness;
        const double belowUpper = AreaBelow((upper - circle.z) / radius);
        // As much of the circle's area as the strip has.
        const double share = (belowUpper - below) / Pi;
        const double halfWidth = share * Pi * radius * radius / thickness / 2;
        below = belowUpper;
        AddLine(circle.x - halfWidth, circle.x + halfWidth, upper - thickness / 2,
                creatures * share);
    }
}

/// Spreads creatures from left to right; those beyond the world get lost.
void HeatGrid::AddLine(double left, double right, double middle, double creatures)
{
    const double width = m_cell.width();
    const double first = std::max(left, 0.0);
    const double last = std::min(right, width * m_cells.width());
    if (first >= last) {
        return;
    }
    const int fromBottom =
        std::clamp(static_cast<int>(middle / m_cell.height()), 0, m_cells.height() - 1);
    double* row = m_creatures.data() +
                  static_cast<std::ptrdiff_t>(m_cells.height() - 1 - fromBottom) * m_cells.width();
    const int end = std::min(static_cast<int>(last / width), m_cells.width() - 1);
    for (int column = static_cast<int>(first / width); column <= end; ++column) {
        const double covered =
            std::min(last, (column + 1) * width) - std::max(first, column * width);
        row[column] += creatures * std::max(covered, 0.0) / (right - left);
    }
}

double HeatGrid::PerSquareKm(int column, int row) const
{
    constexpr double squareMetres = 1e6;
    const std::ptrdiff_t index = static_cast<std::ptrdiff_t>(row) * m_cells.width() + column;
    return m_creatures[static_cast<std::size_t>(index)] /
           (m_cell.width() * m_cell.height() / squareMetres);
}

double HeatGrid::Highest() const
{
    double highest = 0;
    for (int row = 0; row < m_cells.height(); ++row) {
        for (int column = 0; column < m_cells.width(); ++column) {
            highest = std::max(highest, PerSquareKm(column, row));
        }
    }
    return highest;
}
