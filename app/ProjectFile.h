#pragma once

#include <QString>

struct ProjectParts;

/// Writes the open project's document to the path, and every layer's bitmap beside it, and the
/// formulas of computed layers (FormulaPath). Without any formula their file is removed. The new
/// path then becomes the project's. All files take their places together. If the document cannot be
/// written, the function returns false, the old files stay, and the project keeps its old path and
/// stays modified. If only a bitmap cannot be written, the project stays modified.
bool SaveProjectTo(const QString& path, const ProjectParts& parts);
