#pragma once

#include <QString>

/// "25 m = 3 px = 22.5 m": a radius in metres, the whole pixels of the layer size that an operation
/// makes of it, and what these measure. Where pixels are not square: "= 22.5 m by 30 m". Only the
/// metres while the project has no sizes.
QString RadiusText(int metres);
