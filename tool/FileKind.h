#pragma once

#include <QString>

enum class FileKind
{
    Project,
    /// What is exported of a territory type.
    TerritoryType,
    AreaTypes,
    Map,
    Bitmap,
};

/// What a file is taken for, by what is in it or else by its name. False after a printed error
/// for one that cannot be read or is none of these.
bool FindKind(const QString& path, FileKind& kind);
