#pragma once

#include <QString>

#include <functional>
#include <memory>
#include <system_error>

/// The kind is part of a hidden name, so that leftovers can be recognised.
enum class HiddenKind
{
    File,
    Group
};

/// Whether a name (no path) is one that MakeHidden gives.
bool IsHiddenName(const QString& name, HiddenKind kind);

/// Something in a folder whose maker holds a lock on it.
struct HiddenThing
{
    QString path;
    /// Null where there are no locks.
    std::shared_ptr<void> lock;
    std::error_code error;
};

/// A path in the folder that is not in use.
QString HiddenPath(const QString& folder, HiddenKind kind);

/// Makes something under a new name by the function, and locks it; removes it by the other function
/// when that has to be tried again.
HiddenThing MakeHidden(const QString& folder, HiddenKind kind,
                       const std::function<std::error_code(const QString& path)>& make,
                       const std::function<void(const QString& path)>& remove);
