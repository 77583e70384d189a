#pragma once

#include "territories/TerritoryRecords.h"

#include <QImage>
#include <QPointF>
#include <QSize>

#include <cstdint>
#include <random>
#include <vector>

/// What is to be scattered, as plain values.
struct ScatterTask
{
    /// The world in layer pixels, and what they are in metres.
    QSize layerSize;
    WorldScale scale;
    /// Masks with one byte a pixel. A centre lies on a pixel that is not 0 in one of the first, and
    /// 0 in all of the others. Without any of the first the whole world is allowed. Outside of its
    /// picture a mask is 0.
    std::vector<QImage> inside;
    std::vector<QImage> outside;
    /// The centres of the zones that exist.
    std::vector<WorldCircle> existing;
    /// The smallest distances between new centres, and from these to existing ones, in metres.
    double distance = 0;
    double existingDistance = 0;
    int count = 0;
    quint32 seed = 0;
};

/// A set of centres that are remembered by their places.
class CentreGrid
{
public:
    /// A place in world metres, as files are about to hold it: as a 32-bit number, and as that is
    /// read back from its six digits.
    struct Centre
    {
        double x = 0;
        double z = 0;
        double writtenX = 0;
        double writtenZ = 0;
    };

    /// world: in metres. Only what is within the distance is of interest.
    CentreGrid(double worldWidth, double worldHeight, double distance);

    void Add(const Centre& centre);
    /// Whether a centre in the grid is nearer than the distance, in either kind of numbers.
    bool IsNear(const Centre& centre) const;
    /// Whether one centre in the grid is nearer than the distance to all of the rectangle, which
    /// reaches so far from its middle to either side.
    bool Covers(double x, double z, double reachX, double reachZ) const;

private:
    int Column(double x) const;
    int Row(double z) const;
    std::size_t Bucket(int column, int row) const;
    template <typename Test>
    bool Any(double x, double z, Test test) const;

    double m_distance;
    double m_columnWidth = 1;
    double m_rowHeight = 1;
    int m_columns = 1;
    int m_rows = 1;
    std::vector<std::vector<Centre>> m_buckets;
};

/// Finds random places for zones that keep their distances. It draws from all places that are still
/// free with the same probability, and ends when there are enough places or no free one is left.
/// Equal tasks give equal places on every machine.
///
/// This is the maximal Poisson-disc sampling of Ebeida, Mitchell, Patney, Davidson and Owens ("A
/// Simple Algorithm for Maximal Poisson-Disk Sampling in High Dimensions", 2012): darts are thrown
/// into equally large cells; then the cells are quartered, and those with nothing free are dropped.
class Scatter
{
public:
    explicit Scatter(ScatterTask task);

    /// Goes on with the work by so many small steps, of some microseconds each. Returns whether it
    /// is finished.
    bool Advance(int steps);
    bool IsFinished() const { return m_phase == Phase::Finished; }
    /// The places found so far, in scene units.
    const std::vector<QPointF>& Places() const { return m_places; }

private:
    enum class Phase
    {
        /// The zones that exist are entered into their grid.
        Listing,
        /// The first cells are chosen.
        Dividing,
        Throwing,
        Quartering,
        Finished,
    };
    /// A square; its place in units of the present side.
    struct Cell
    {
        int x;
        int y;
    };

    void List();
    void Divide();
    void Throw();
    void Quarter();
    void BeginThrowing();
    void BeginQuartering();
    void Keep(const Cell& cell);
    bool IsAllowed(double sceneX, double sceneY) const;
    bool IsSafelyAllowed(const QPointF& place) const;
    bool HasAllowed(const Cell& cell) const;
    bool HasAllowedInRow(int y, int firstX, int endX) const;
    bool IsExcluded(int x, int y) const;
    bool IsCovered(const Cell& cell) const;
    double Fraction();

    ScatterTask m_task;
    std::mt19937 m_random;
    CentreGrid m_own;
    CentreGrid m_existing;
    Phase m_phase = Phase::Listing;
    /// The side of all cells in layer pixels; a power of two.
    double m_side = 1;
    double m_smallestSide = 1;
    int m_columns = 0;
    int m_rows = 0;
    std::vector<Cell> m_cells;
    std::vector<Cell> m_kept;
    std::size_t m_index = 0;
    std::size_t m_throwsLeft = 0;
    std::vector<QPointF> m_places;
};
