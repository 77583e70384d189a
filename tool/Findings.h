#pragma once

#include <QString>
#include <QVector>

struct ProjectData;

enum class Severity
{
    /// Suspicious, but the output is what the document says.
    Warning,
    /// The output is wrong or incomplete, or cannot be made.
    Error,
};

struct Finding
{
    /// Never changes, because users filter findings by it.
    QString rule;
    Severity severity = Severity::Error;
    /// The part of the project that it is about, such as "layer 'Forest'".
    QString place;
    /// What is wrong, and what to do about it.
    QString text;
    QString advice;
};

using Findings = QVector<Finding>;

/// Appends what is wrong with names.
void CheckNames(const ProjectData& project, Findings& findings);
/// Appends what is wrong with sizes, the background and the number of flag types.
void CheckSettings(const ProjectData& project, Findings& findings);
/// Appends what is wrong with layers, their flags and bitmaps.
void CheckLayers(const ProjectData& project, Findings& findings);
/// Appends what is wrong with territories and their zones.
void CheckTerritories(const ProjectData& project, Findings& findings);
