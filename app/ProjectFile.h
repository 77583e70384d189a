#pragma once

#include <QString>

struct ProjectParts;

/// Writes the open project's document to the path, and with it every layer's bitmap; from then on
/// the project lives there. False, and the project stays where it was and modified, when the
/// document cannot be written. The document takes the old one's place last and as a whole. A
/// bitmap that cannot be written keeps the project modified.
bool SaveProjectTo(const QString& path, const ProjectParts& parts);
