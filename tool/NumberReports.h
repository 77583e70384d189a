#pragma once

class ProjectFields;
class Report;
struct ProjectData;

// What `info` tells of a project beside the counts of pixels and zones.

/// Adds where layers and flags are, and the pixels of layers that are neither clear nor set. fields
/// is that of the project, opened. Returns false after printing an error, and after an
/// interruption.
bool AddPixelNumbers(Report& report, const ProjectData& project, const ProjectFields& fields);

/// Adds the creatures and areas of zones, by type, territory and usage.
void AddZoneNumbers(Report& report, const ProjectData& project);
