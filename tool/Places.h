#pragma once

#include <QPair>
#include <QString>
#include <QStringList>

#include <vector>

/// How a user names places.
enum class PlaceUnit
{
    /// X and Z in world metres.
    Metres,
    /// Column and row of a layer pixel, from the top left.
    Pixels,
};

/// The two numbers of a place. Those of a pixel are whole and fit an int.
using PlaceNumbers = QPair<double, double>;

/// Reads the two numbers. Returns what is wrong; empty if nothing is. Metres may be any number that
/// is finite.
QString ParsePlace(const QStringList& texts, PlaceUnit unit, PlaceNumbers& place);

/// Reads the standard input to its end, one place a line. Lines of blanks are passed over. Returns
/// false after printing an error about a line, and after an interruption.
bool ReadPlaces(PlaceUnit unit, std::vector<PlaceNumbers>& places);
