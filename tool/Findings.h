#pragma once

#include <QString>
#include <QVector>

struct ProjectData;

enum class Severity
{
    /// Odd, but the output is what the document says.
    Warning,
    /// The output is wrong or incomplete, or cannot be made.
    Error,
};

struct Finding
{
    /// Never changes, for those who sort findings out.
    QString rule;
    Severity severity = Severity::Error;
    /// What in the project it is about, as in "layer 'Forest'".
    QString place;
    /// What is wrong, and what to do about it.
    QString text;
    QString advice;
};

using Findings = QVector<Finding>;

/// What is wrong with names, sizes and flag types.
void CheckNames(const ProjectData& project, Findings& findings);
void CheckSettings(const ProjectData& project, Findings& findings);
/// What is wrong with layers, their flags and bitmaps.
void CheckLayers(const ProjectData& project, Findings& findings);
/// What is wrong with territories and their zones.
void CheckTerritories(const ProjectData& project, Findings& findings);
