#pragma once

#include "layers/AreaFlagTypes.h"
#include "layers/MapProbe.h"
#include "territories/ZoneProbe.h"
#include "tool/Places.h"
#include "tool/ProjectData.h"

#include <QString>
#include <QVector>

#include <vector>

/// What the file holds at one place.
struct PlaceAnswer
{
    MapPlace place;
    LayersHere layers;
    std::vector<ZoneHere> zones;
};

/// What a file holds at some places, and the names for it.
struct PlaceAnswers
{
    /// Without layers and territory types if the file is a map.
    ProjectData project;
    /// Which columns the sections hold.
    MapProbe probe{{}, {}, 0, 0};
    /// The zones of all territories; their owners are territories, counted through all types.
    ProbedZones zones;
    std::vector<PlaceAnswer> answers;

    void Print(bool asJson) const;
};

/// Reads only what the places need. Return false after printing an error, and after an
/// interruption.
bool AskProject(const QString& path, const std::vector<PlaceNumbers>& places, PlaceUnit unit,
                PlaceAnswers& answers);
/// types: the names of the flags.
bool AskMap(const QString& path, const AreaFlagTypes& types,
            const std::vector<PlaceNumbers>& places, PlaceUnit unit, PlaceAnswers& answers);
