#pragma once

class QString;
struct VersionLimits;

/// Removes the versions in a store's folder that exceed the limits, and what killed programs left
/// unfinished there. A file that a project still shares costs nothing; one that several versions
/// share counts once. The newest version of all stays whatever its size; one that is larger than
/// the limit does not count for the others.
void PruneVersions(const QString& store, const VersionLimits& limits);
