#pragma once

#include "territories/TerritoryRecords.h"

#include <QSize>
#include <QSizeF>

#include <vector>

/// How many creatures there are for each square kilometre, in the cells of a coarse grid over the
/// world. The creatures of a zone are spread evenly over its circle; where circles overlap they add
/// up, and those outside of the world are left out.
class HeatGrid
{
public:
    HeatGrid() = default;
    /// cells: columns and rows. world: metres. Without either there are no cells.
    HeatGrid(QSize cells, QSizeF world);

    /// Circles without a positive radius, and with values that are no finite numbers, have no
    /// creatures.
    void Add(const WorldCircle& circle, double creatures);

    QSize Cells() const { return m_cells; }
    /// Row 0 is the top of the map.
    double PerSquareKm(int column, int row) const;
    /// The highest density of all cells; 0 without any.
    double Highest() const;

private:
    void AddLine(double left, double right, double middle, double creatures);

    QSize m_cells;
    /// Of a cell, in metres.
    QSizeF m_cell;
    /// By row.
    std::vector<double> m_creatures;
};
