#pragma once

#include <QPointF>

struct WorldScale;

// Places of zones: in the scene they are 32-bit layer pixels, in files 32-bit world metres. These
// functions find the pixels that give certain metres.

/// The place in the scene for which files hold these world metres as X and Z. If there is none, the
/// place with the nearest metres. Without a usable scale a coordinate is 0.
QPointF PlaceInScene(double x, double z, const WorldScale& scale);

/// The same for a zone that already has a place. A coordinate stays as it is when it has these
/// metres already, and when they are out of range for scene coordinates.
QPointF PlaceAtMetres(QPointF place, double x, double z, const WorldScale& scale);

/// The same for one of the coordinates; the other one stays.
QPointF PlaceAtX(QPointF place, double x, const WorldScale& scale);
QPointF PlaceAtZ(QPointF place, double z, const WorldScale& scale);

/// The place moved by metres, as files hold them: X grows to the right, Z upward. If a place for
/// that exists, the digits of the files differ by as much.
QPointF MovedPlace(QPointF place, double metresX, double metresZ, const WorldScale& scale);
