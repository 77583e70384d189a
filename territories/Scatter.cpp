#include "territories/Scatter.h"

#include "territories/ZonePlaces.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

/// A centre is so far from pixels that are not allowed, in pixels, that no rounding takes it there.
constexpr double Margin = 1.0 / 64;

double SquareSum(double a, double b)
{
    return a * a + b * b;
}

/// With this margin every way of computing the distance gives at least the demanded one.
double SafeSquare(double distance)
{
    return distance * distance * (1 + 1e-12);
}

// Most of the pixels of large worlds are looked at here, with functions that look at many at once.

/// Whether the mask is 0 there.
bool IsClear(const QImage& mask, int y, int firstX, int endX)
{
    const uchar* first = mask.constScanLine(y) + firstX;
    // Each pixel equals the next one.
    return *first == 0 &&
           std::memcmp(first, first + 1, static_cast<std::size_t>(endX - firstX - 1)) == 0;
}

/// The first place from x on where the mask is 0, or the end. It is 0 outside of its picture.
int NextClear(const QImage& mask, int y, int x, int endX)
{
    const int end = std::min(endX, mask.width());
    if (y >= mask.height() || x >= end) {
        return x;
    }
    const uchar* row = mask.constScanLine(y);
    const void* clear = std::memchr(row + x, 0, static_cast<std::size_t>(end - x));
    return clear ? static_cast<int>(static_cast<const uchar*>(clear) - row) : end;
}

} // namespace

CentreGrid::CentreGrid(double worldWidth, double worldHeight, double distance)
    : m_distance(distance)
{
    constexpr int mostBuckets = 256;
    if (!(distance > 0) || !(worldWidth > 0) || !(worldHeight > 0)) {
        m_distance = 0;
        return;
    }
    // What is read back from six digits may be a little elsewhere.
    constexpr double rounding = 1e-5;
    const auto divide = [distance](double length, double& width, int& count) {
        width = std::max(distance + length * rounding, length / mostBuckets);
        count = static_cast<int>(std::ceil(std::min<double>(length / width, mostBuckets)));
        count = std::max(count, 1);
    };
    divide(worldWidth, m_columnWidth, m_columns);
    divide(worldHeight, m_rowHeight, m_rows);
    m_buckets.resize(static_cast<std::size_t>(m_columns) * static_cast<std::size_t>(m_rows));
}

int CentreGrid::Column(double x) const
{
    return static_cast<int>(qBound(0.0, std::floor(x / m_columnWidth), m_columns - 1.0));
}

int CentreGrid::Row(double z) const
{
    return static_cast<int>(qBound(0.0, std::floor(z / m_rowHeight), m_rows - 1.0));
}

std::size_t CentreGrid::Bucket(int column, int row) const
{
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columns) +
           static_cast<std::size_t>(column);
}

void CentreGrid::Add(const Centre& centre)
{
    if (m_distance > 0 && std::isfinite(centre.x) && std::isfinite(centre.z)) {
        m_buckets[Bucket(Column(centre.x), Row(centre.z))].push_back(centre);
    }
}

/// Tests all centres within the distance of the place, and some beyond it.
template <typename Test>
bool CentreGrid::Any(double x, double z, Test test) const
{
    if (!(m_distance > 0)) {
        return false;
    }
    const int column = Column(x);
    const int row = Row(z);
    for (int r = std::max(row - 1, 0); r <= std::min(row + 1, m_rows - 1); ++r) {
        for (int c = std::max(column - 1, 0); c <= std::min(column + 1, m_columns - 1); ++c) {
            const auto& bucket = m_buckets[Bucket(c, r)];
            if (std::any_of(bucket.begin(), bucket.end(), test)) {
                return true;
            }
        }
    }
    return false;
}

bool CentreGrid::IsNear(const Centre& centre) const
{
    const double least = SafeSquare(m_distance);
    return Any(centre.x, centre.z, [&](const Centre& other) {
        return SquareSum(centre.x - other.x, centre.z - other.z) < least ||
               SquareSum(centre.writtenX - other.writtenX, centre.writtenZ - other.writtenZ) <
                   least;
    });
}

bool CentreGrid::Covers(double x, double z, double reachX, double reachZ) const
{
    const double square = m_distance * m_distance;
    return Any(x, z, [&](const Centre& centre) {
        return SquareSum(std::fabs(centre.x - x) + reachX, std::fabs(centre.z - z) + reachZ) <
               square;
    });
}

Scatter::Scatter(ScatterTask task)
    : m_task(std::move(task))
    , m_random(m_task.seed)
    , m_own(m_task.layerSize.width() * static_cast<double>(m_task.scale.metresPerPixelX),
            m_task.layerSize.height() * static_cast<double>(m_task.scale.metresPerPixelZ),
            m_task.distance)
    , m_existing(m_task.layerSize.width() * static_cast<double>(m_task.scale.metresPerPixelX),
                 m_task.layerSize.height() * static_cast<double>(m_task.scale.metresPerPixelZ),
                 m_task.existingDistance)
{
    constexpr int mostCells = 256 * 256;
    /// Metres; finer than what files hold of most places.
    constexpr double smallestCell = 0.02;
    constexpr double mostCellsInARow = 1 << 29;
    const auto metres =
        static_cast<double>(std::max(m_task.scale.metresPerPixelX, m_task.scale.metresPerPixelZ));
    const QSize size = m_task.layerSize;
    if (size.isEmpty() || m_task.count <= 0 || !(metres > 0) || !std::isfinite(metres)) {
        m_phase = Phase::Finished;
        return;
    }
    do {
        m_side *= 2;
        m_columns = static_cast<int>(std::ceil(size.width() / m_side));
        m_rows = static_cast<int>(std::ceil(size.height() / m_side));
    } while (m_columns > mostCells / m_rows);
    m_smallestSide =
        std::max(smallestCell / metres, std::max(size.width(), size.height()) / mostCellsInARow);
}

/// The numbers of the engine are the same everywhere; how std maps them to a range is not.
double Scatter::Fraction()
{
    constexpr double range = 4294967296.0;
    return static_cast<double>(m_random() & 0xffffffffU) / range;
}

bool Scatter::Advance(int steps)
{
    for (int i = 0; i < steps && m_phase != Phase::Finished; ++i) {
        if (m_phase == Phase::Listing) {
            List();
        } else if (m_phase == Phase::Dividing) {
            Divide();
        } else if (m_phase == Phase::Throwing) {
            Throw();
        } else {
            Quarter();
        }
    }
    return IsFinished();
}

void Scatter::List()
{
    if (m_index < m_task.existing.size()) {
        const WorldCircle& zone = m_task.existing[m_index];
        m_existing.Add({zone.x, zone.z, AsWritten(zone.x), AsWritten(zone.z)});
        ++m_index;
    } else {
        m_index = 0;
        m_phase = Phase::Dividing;
    }
}

void Scatter::Divide()
{
    const auto columns = static_cast<std::size_t>(m_columns);
    Keep({static_cast<int>(m_index % columns), static_cast<int>(m_index / columns)});
    ++m_index;
    if (m_index == columns * static_cast<std::size_t>(m_rows)) {
        BeginThrowing();
    }
}

void Scatter::BeginThrowing()
{
    m_cells = std::move(m_kept);
    m_kept.clear();
    m_throwsLeft = m_cells.size();
    m_phase = m_cells.empty() ? Phase::Finished : Phase::Throwing;
}

void Scatter::Throw()
{
    if (m_throwsLeft == 0 || m_cells.empty()) {
        BeginQuartering();
        return;
    }
    --m_throwsLeft;
    const auto index = static_cast<std::size_t>(Fraction() * static_cast<double>(m_cells.size()));
    const Cell cell = m_cells[index];
    const double sceneX = (cell.x + Fraction()) * m_side;
    const double sceneY = (cell.y + Fraction()) * m_side;
    if (!IsAllowed(sceneX, sceneY)) {
        return;
    }
    // A place that its six digits in files say exactly, as far as a zone can be there.
    const WorldScale& scale = m_task.scale;
    const QPointF place = PlaceInScene(
        AsWritten(sceneX * static_cast<double>(scale.metresPerPixelX)),
        AsWritten(scale.worldHeight - sceneY * static_cast<double>(scale.metresPerPixelZ)), scale);
    const WorldCircle circle = InWorld({{}, place, 0}, scale);
    const CentreGrid::Centre centre{circle.x, circle.z, AsWritten(circle.x), AsWritten(circle.z)};
    if (!IsSafelyAllowed(place) || m_own.IsNear(centre) || m_existing.IsNear(centre)) {
        return;
    }
    m_places.push_back(place);
    m_own.Add(centre);
    if (m_places.size() == static_cast<std::size_t>(m_task.count)) {
        m_phase = Phase::Finished;
    } else if (IsCovered(cell)) {
        m_cells[index] = m_cells.back();
        m_cells.pop_back();
    }
}

void Scatter::BeginQuartering()
{
    m_side /= 2;
    m_index = 0;
    m_phase = m_cells.empty() || m_side < m_smallestSide ? Phase::Finished : Phase::Quartering;
}

void Scatter::Quarter()
{
    // Without a distance everything stays free.
    constexpr std::size_t mostCells = 1 << 22;
    const Cell cell = m_cells[m_index];
    for (const int down : {0, 1}) {
        for (const int right : {0, 1}) {
            Keep({2 * cell.x + right, 2 * cell.y + down});
        }
    }
    ++m_index;
    if (m_kept.size() > mostCells) {
        m_phase = Phase::Finished;
    } else if (m_index == m_cells.size()) {
        BeginThrowing();
    }
}

void Scatter::Keep(const Cell& cell)
{
    if (HasAllowed(cell) && !IsCovered(cell)) {
        m_kept.push_back(cell);
    }
}

bool Scatter::IsAllowed(double sceneX, double sceneY) const
{
    const QSize size = m_task.layerSize;
    if (!(sceneX >= 0 && sceneY >= 0 && sceneX < size.width() && sceneY < size.height())) {
        return false;
    }
    const auto x = static_cast<int>(sceneX);
    return HasAllowedInRow(static_cast<int>(sceneY), x, x + 1);
}

bool Scatter::IsSafelyAllowed(const QPointF& place) const
{
    return IsAllowed(place.x() - Margin, place.y() - Margin) &&
           IsAllowed(place.x() + Margin, place.y() - Margin) &&
           IsAllowed(place.x() - Margin, place.y() + Margin) &&
           IsAllowed(place.x() + Margin, place.y() + Margin);
}

bool Scatter::HasAllowed(const Cell& cell) const
{
    const QSize size = m_task.layerSize;
    const auto firstX = static_cast<int>(cell.x * m_side);
    const auto firstY = static_cast<int>(cell.y * m_side);
    const int endX = std::min(size.width(), static_cast<int>(std::ceil((cell.x + 1) * m_side)));
    const int endY = std::min(size.height(), static_cast<int>(std::ceil((cell.y + 1) * m_side)));
    for (int y = firstY; y < endY; ++y) {
        if (firstX < endX && HasAllowedInRow(y, firstX, endX)) {
            return true;
        }
    }
    return false;
}

bool Scatter::HasAllowedInRow(int y, int firstX, int endX) const
{
    if (m_task.inside.empty()) {
        for (int x = firstX; x < endX; ++x) {
            x = m_task.outside.empty() ? x : NextClear(m_task.outside.front(), y, x, endX);
            if (x < endX && !IsExcluded(x, y)) {
                return true;
            }
        }
        return false;
    }
    for (const QImage& mask : m_task.inside) {
        const int end = std::min(endX, mask.width());
        if (y >= mask.height() || firstX >= end || IsClear(mask, y, firstX, end)) {
            continue;
        }
        const uchar* row = mask.constScanLine(y);
        for (int x = firstX; x < end; ++x) {
            if (row[x] != 0 && !IsExcluded(x, y)) {
                return true;
            }
        }
    }
    return false;
}

bool Scatter::IsExcluded(int x, int y) const
{
    const auto& masks = m_task.outside;
    return std::any_of(masks.begin(), masks.end(), [x, y](const QImage& mask) {
        return x < mask.width() && y < mask.height() && mask.constScanLine(y)[x] != 0;
    });
}

bool Scatter::IsCovered(const Cell& cell) const
{
    const auto metresX = static_cast<double>(m_task.scale.metresPerPixelX);
    const auto metresZ = static_cast<double>(m_task.scale.metresPerPixelZ);
    const double x = (cell.x + 0.5) * m_side * metresX;
    const double z = m_task.scale.worldHeight - (cell.y + 0.5) * m_side * metresZ;
    const double reachX = m_side * metresX / 2;
    const double reachZ = m_side * metresZ / 2;
    return m_own.Covers(x, z, reachX, reachZ) || m_existing.Covers(x, z, reachX, reachZ);
}
