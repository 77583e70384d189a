#pragma once

/// The next id for an object of the class: 0, 1, 2 ... for as long as the process runs, also across
/// projects. Each class counts for itself. For the GUI thread only.
template <typename Class>
int NextId()
{
    static int nextId = 0;
    return nextId++;
}
