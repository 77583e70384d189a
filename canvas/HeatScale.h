#pragma once

#include <QColor>
#include <QString>

#include <vector>

/// The classes of a map of densities, with round bounds: 1, 2, 5, 10, 20 ...
class HeatScale
{
public:
    /// highest: the highest density on the map. For 0 there are no classes.
    explicit HeatScale(double highest = 0);

    /// The classes are counted from 0, the lowest.
    int Count() const { return m_bounds.empty() ? 0 : static_cast<int>(m_bounds.size()) + 1; }
    /// -1 for a density that is in no class: 0 and below.
    int ClassOf(double density) const;
    /// Such as "10 to 20".
    QString Label(int number) const;
    QColor Color(int number) const;

private:
    /// Between the classes, ascending.
    std::vector<double> m_bounds;
};
