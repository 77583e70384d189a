#pragma once

#include "app/Finding.h"

struct ProjectData;

/// Appends what is wrong with layers: flags, bitmaps and formulas. Bitmaps are read band by band;
/// those of computed layers, and of what they are computed from, one at a time as a whole.
void CheckLayers(const ProjectData& project, Findings& findings);
