#pragma once

#include "tool/ProjectData.h"
#include "tool/Report.h"

#include <QString>
#include <QVector>

/// Appends a difference of a place when the texts differ.
void AddDifference(const QString& place, const QString& a, const QString& b,
                   QVector<Report>& differences);

/// Appends where two projects differ: settings, layers with their bitmaps, territories. Items are
/// matched by their names. False after a printed error.
bool CompareDocuments(const ProjectData& a, const ProjectData& b, QVector<Report>& differences);
