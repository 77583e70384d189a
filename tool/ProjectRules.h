#pragma once

#include "app/Finding.h"
#include "territories/rules/ZonePairs.h"

struct ProjectData;

/// What is wrong with a project, by the rules that the editor has too: names, settings, layers with
/// their bitmaps and formulas, territories with their zones.
///
/// overlap: zones of one type that share more of the smaller one are reported; from 0.5 to 1. The
/// editor has the default.
Findings ApplyRules(const ProjectData& project, double overlap = ZonePairs::DefaultShare);
