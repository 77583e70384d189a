#pragma once

#include "document/Edit.h"

#include <QColor>
#include <QString>

#include <memory>

/// What users do with the picture behind the map and the colour over it, each as the edit that does
/// it.
namespace Edits {

/// path: of the picture; undo finds the one before also when the project has moved meanwhile.
/// setsModified: false where a program names the picture, not the user.
std::unique_ptr<Edit> SetBackgroundPicture(const QString& path, bool setsModified);
/// Keeps the alpha.
std::unique_ptr<Edit> SetBackgroundColor(const QColor& color);
/// alpha: 0 to 255.
std::unique_ptr<Edit> SetBackgroundOpacity(int alpha);

} // namespace Edits
