#pragma once

#include <QString>

namespace generator {

/// Makes the whole example in a folder, which is created when missing: the project document, the
/// layer bitmaps, the picture and the area types file. Always makes the same bytes. Needs a
/// top-level widget, because layers have colours only then. Returns an empty text on success,
/// otherwise what went wrong.
QString WriteExample(const QString& folder);

} // namespace generator
