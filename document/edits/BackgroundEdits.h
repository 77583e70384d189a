#pragma once

#include "document/Edit.h"

#include <QColor>
#include <QString>

#include <memory>

/// The edits of the picture behind the map and of the colour over it, one for each user action.
namespace Edits {

/// path: of the picture. Undo finds the former picture even if the project has moved meanwhile.
/// setsModified: false where a program names the picture, not the user.
std::unique_ptr<Edit> SetBackgroundPicture(const QString& path, bool setsModified);
/// Keeps the alpha.
std::unique_ptr<Edit> SetBackgroundColor(const QColor& color);
/// alpha: 0 to 255.
std::unique_ptr<Edit> SetBackgroundOpacity(int alpha);

} // namespace Edits
