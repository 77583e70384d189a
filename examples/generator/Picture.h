#pragma once

#include "World.h"

#include <QImage>

namespace generator {

/// The view from above, in afternoon light from the north-west.
QImage PaintPicture(const World& world);

} // namespace generator
