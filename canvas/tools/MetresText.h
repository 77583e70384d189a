#pragma once

#include <QPointF>
#include <QString>

/// Metres beside the mouse: at most one decimal, no unit.
QString ShortMetres(double metres);
/// A way in the scene, in metres of the open project's world. Downward is positive.
QPointF WayInMetres(QPointF way);
