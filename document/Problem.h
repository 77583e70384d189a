#pragma once

#include "app/Finding.h"
#include "app/Tracked.h"
#include "layers/Layer.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"

#include <vector>

/// A finding about the open project with the thing that it is about. At most one of the pointers is
/// set. A pointer becomes null when its object is destroyed. A removed object exists as long as
/// undo can restore it.
struct Problem
{
    Finding finding;
    Tracked<Layer> layer;
    Tracked<TerritoryType> type;
    Tracked<Territory> territory;
    Tracked<Zone> zone;

    /// Whether both are of one rule and about one thing, maybe with other numbers. Findings without
    /// a thing that could be pointed to are never alike.
    bool IsLike(const Problem& other) const
    {
        return finding.rule == other.finding.rule && HasThing() && Thing() == other.Thing();
    }
    bool HasThing() const { return Thing() != nullptr; }
    /// To tell things apart; null without one.
    const void* Thing() const
    {
        if (const Layer* itsLayer = layer) {
            return itsLayer;
        }
        if (const TerritoryType* itsType = type) {
            return itsType;
        }
        if (const Territory* itsTerritory = territory) {
            return itsTerritory;
        }
        const Zone* itsZone = zone;
        return itsZone;
    }
    /// Whether the thing is in the project now; true for those without one.
    bool IsPresent() const
    {
        switch (finding.subject.kind) {
        case FindingSubject::Kind::Layer:
            // Layers that a load left out were never there.
            return !layer || layer->model();
        case FindingSubject::Kind::Type:
            return type && type->model();
        case FindingSubject::Kind::Territory:
            return territory && territory->model();
        case FindingSubject::Kind::Zone:
            return zone && zone->Holder() && zone->Holder()->model();
        default:
            return true;
        }
    }
};

using ProblemList = std::vector<Problem>;
