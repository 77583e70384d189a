#pragma once

#include <QString>

struct ProjectParts;

/// Writes the open project's document to the path, and every layer's bitmap beside it. The new path
/// then becomes the project's. The document replaces the old one last and completely. If it cannot
/// be written, the function returns false, and the project keeps its old path and stays modified.
/// If only a bitmap cannot be written, the project stays modified.
bool SaveProjectTo(const QString& path, const ProjectParts& parts);
