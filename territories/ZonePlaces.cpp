#include "territories/ZonePlaces.h"

#include "territories/TerritoryRecords.h"

#include <cmath>
#include <limits>

namespace {

/// Of the 32-bit numbers around the guess, the one whose metres are nearest to those wanted.
template <typename Metres>
double Nearest(double guess, double wanted, Metres metresAt)
{
    constexpr float most = std::numeric_limits<float>::max();
    const auto middle = static_cast<float>(guess);
    double best = static_cast<double>(middle);
    double smallest = std::fabs(metresAt(best) - wanted);
    for (const float end : {-most, most}) {
        float candidate = middle;
        for (int i = 0; i < 2; ++i) {
            candidate = std::nextafter(candidate, end);
            const double difference = std::fabs(metresAt(static_cast<double>(candidate)) - wanted);
            if (difference < smallest) {
                smallest = difference;
                best = static_cast<double>(candidate);
            }
        }
    }
    return best;
}

WorldCircle MetresAt(double sceneX, double sceneY, const WorldScale& scale)
{
    return InWorld({{}, QPointF(sceneX, sceneY), 0}, scale);
}

/// Whether a 32-bit number can be near it.
bool IsInRange(double pixel)
{
    constexpr double most = 1e30;
    return std::fabs(pixel) < most;
}

double SceneX(double metres, const WorldScale& scale, double otherwise)
{
    const double guess = metres / static_cast<double>(scale.metresPerPixelX);
    if (!IsInRange(guess)) {
        return otherwise;
    }
    return Nearest(guess, InSinglePrecision(metres),
                   [&scale](double x) { return MetresAt(x, 0, scale).x; });
}

double SceneY(double metres, const WorldScale& scale, double otherwise)
{
    const double guess = (scale.worldHeight - metres) / static_cast<double>(scale.metresPerPixelZ);
    if (!IsInRange(guess)) {
        return otherwise;
    }
    return Nearest(guess, InSinglePrecision(metres),
                   [&scale](double y) { return MetresAt(0, y, scale).z; });
}

bool IsWrittenAs(double metres, double wanted)
{
    return AsWritten(metres) == AsWritten(wanted);
}

} // namespace

QPointF PlaceInScene(double x, double z, const WorldScale& scale)
{
    return {SceneX(x, scale, 0), SceneY(z, scale, 0)};
}

QPointF PlaceAtMetres(QPointF place, double x, double z, const WorldScale& scale)
{
    return PlaceAtZ(PlaceAtX(place, x, scale), z, scale);
}

QPointF PlaceAtX(QPointF place, double x, const WorldScale& scale)
{
    const double before = MetresAt(place.x(), place.y(), scale).x;
    return {x == before ? place.x() : SceneX(x, scale, place.x()), place.y()};
}

QPointF PlaceAtZ(QPointF place, double z, const WorldScale& scale)
{
    const double before = MetresAt(place.x(), place.y(), scale).z;
    return {place.x(), z == before ? place.y() : SceneY(z, scale, place.y())};
}

QPointF MovedPlace(QPointF place, double metresX, double metresZ, const WorldScale& scale)
{
    const WorldCircle before = MetresAt(place.x(), place.y(), scale);
    QPointF moved = PlaceAtMetres(place, before.x + metresX, before.z + metresZ, scale);
    // The digits leave out what rounding has added to a place. From move to move it may become
    // more, until they show it.
    const double writtenX = AsWritten(before.x) + metresX;
    const double writtenZ = AsWritten(before.z) + metresZ;
    const QPointF other = PlaceAtMetres(place, writtenX, writtenZ, scale);
    const WorldCircle after = MetresAt(moved.x(), moved.y(), scale);
    const WorldCircle otherwise = MetresAt(other.x(), other.y(), scale);
    if (!IsWrittenAs(after.x, writtenX) && IsWrittenAs(otherwise.x, writtenX)) {
        moved.setX(other.x());
    }
    if (!IsWrittenAs(after.z, writtenZ) && IsWrittenAs(otherwise.z, writtenZ)) {
        moved.setY(other.y());
    }
    return moved;
}
