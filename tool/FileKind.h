#pragma once

#include <QString>

enum class FileKind
{
    Project,
    /// An exported territory type.
    TerritoryType,
    AreaTypes,
    Map,
    Bitmap,
};

/// Finds the kind by the content, or else by the name. Returns false after printing an error if the
/// file cannot be read or is none of these.
bool FindKind(const QString& path, FileKind& kind);
