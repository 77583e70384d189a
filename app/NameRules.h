#pragma once

#include "app/Finding.h"

#include <QStringList>
#include <QVector>

#include <optional>

// Rules about the names of layers, territory types, territories and flag types, and of the project,
// which its map gets.

/// The names of a project, each list in the order of the findings' indexes.
struct ProjectNames
{
    /// Of the map; nothing while the project has none.
    std::optional<QString> project;
    QStringList layers;
    QStringList types;
    QStringList usages;
    QStringList values;
    /// Of each type; empty for a caller that checks them type by type.
    QVector<QStringList> territories;
};

/// Appends a finding for each name that equals an earlier one of its kind, or does but for upper
/// and lower case, and for each name of a file that some file system refuses or changes.
void CheckProjectNames(const ProjectNames& names, Findings& findings);
/// Appends a finding if some file system refuses or changes this name of a file.
void CheckFileName(const FindingSpot& spot, const QString& name, Findings& findings);
/// Appends a finding for each territory of a type whose name equals an earlier one, or does but for
/// upper and lower case.
void CheckEqualTerritories(int type, const QString& typeName, const QStringList& names,
                           Findings& findings);
