#pragma once

#include "tool/ProjectData.h"
#include "tool/Report.h"

#include <QString>
#include <QVector>

/// Appends a difference at this place if the texts differ.
void AddDifference(const QString& place, const QString& a, const QString& b,
                   QVector<Report>& differences);

/// Appends the differences of two projects: settings, layers with their bitmaps, territories. Items
/// are matched by their names. Returns false after printing an error.
bool CompareDocuments(const ProjectData& a, const ProjectData& b, QVector<Report>& differences);
