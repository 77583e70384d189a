#pragma once

#include "World.h"

#include <QColor>
#include <QString>

namespace generator {

/// The area flags of the example, each the bit of its place in the lists of names.
enum UsageFlag : quint32
{
    Military = 1U << 0U,
    Village = 1U << 1U,
    Town = 1U << 2U,
    Farm = 1U << 3U,
    Coast = 1U << 4U,
    Hunting = 1U << 5U,
};
enum ValueFlag : quint32
{
    Tier1 = 1U << 0U,
    Tier2 = 1U << 1U,
    Tier3 = 1U << 2U,
    Tier4 = 1U << 3U,
};
QVector<QString> UsageNames();
QVector<QString> ValueNames();

/// The plan of a layer.
struct LayerPlan
{
    QString name;
    quint32 usageFlags;
    quint32 valueFlags;
    /// Its alpha lets the picture show through.
    QColor color;
    bool isVisible;
    Mask mask;
};

/// In the order of the list.
std::vector<LayerPlan> PlanLayers(const World& world);

} // namespace generator
