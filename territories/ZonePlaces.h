#pragma once

#include <QPointF>

struct WorldScale;

// Places of zones: in the scene they are 32-bit layer pixels, in files 32-bit world metres. These
// functions find the pixels that give certain metres.

/// The place in the scene at which files hold these world metres as X and Z, or the nearest ones
/// that a place can have. Without a usable scale a coordinate is 0.
QPointF PlaceInScene(double x, double z, const WorldScale& scale);

/// The same for a zone that is at a place already: a coordinate at which files hold these metres
/// stays as it is, and so does one that no number can say.
QPointF PlaceAtMetres(QPointF place, double x, double z, const WorldScale& scale);

/// The same for one of the coordinates; the other one stays.
QPointF PlaceAtX(QPointF place, double x, const WorldScale& scale);
QPointF PlaceAtZ(QPointF place, double z, const WorldScale& scale);

/// The place moved by metres, as files hold them: X grows to the right, Z upward. If a place for
/// that exists, the digits of the files differ by as much.
QPointF MovedPlace(QPointF place, double metresX, double metresZ, const WorldScale& scale);
