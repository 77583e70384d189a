#pragma once

#include "tool/ProjectData.h"
#include "tool/Report.h"

#include <QSize>
#include <QString>
#include <QVector>

QString SizeText(QSize size);

/// Appends a difference of a place when the texts differ.
void AddDifference(const QString& place, const QString& a, const QString& b,
                   QVector<Report>& differences);

/// Where two projects differ: settings, layers with their bitmaps, territories. Items are matched
/// by their names.
QVector<Report> CompareDocuments(const ProjectData& a, const ProjectData& b);
