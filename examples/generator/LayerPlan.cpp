#include "LayerPlan.h"

#include "LayerMasks.h"

namespace generator {

QVector<QString> UsageNames()
{
    return {QStringLiteral("Military"), QStringLiteral("Village"), QStringLiteral("Town"),
            QStringLiteral("Farm"),     QStringLiteral("Coast"),   QStringLiteral("Hunting")};
}

QVector<QString> ValueNames()
{
    return {QStringLiteral("Tier1"), QStringLiteral("Tier2"), QStringLiteral("Tier3"),
            QStringLiteral("Tier4")};
}

namespace {

struct LayerRow
{
    const char* name;
    quint32 usageFlags;
    quint32 valueFlags;
    QRgb color;
    bool isVisible;
    Mask (LayerMasks::*mask)() const;
};

// From the sea up to the peaks; man-made areas come last. Layers that would cover others are hidden
// at first.
constexpr LayerRow Rows[] = {
    {"Fishing grounds", Coast, Tier1, 0x6E1E5AC8, true, &LayerMasks::FishingGrounds},
    {"Coast", Coast, Tier1, 0x82F5DC8C, true, &LayerMasks::Coast},
    {"Harbours", Coast | Town, Tier2, 0x960096C8, true, &LayerMasks::Harbours},
    {"Isles", Coast | Hunting, Tier2 | Tier3, 0x78C88CFF, false, &LayerMasks::Isles},
    {"Lakes and rivers", Hunting, Tier1, 0xA03CC8FF, true, &LayerMasks::FreshWater},
    {"Swamps", Hunting, Tier2, 0x96508C78, true, &LayerMasks::Swamps},
    {"Forest", Hunting, Tier1 | Tier2, 0x6E14A03C, true, &LayerMasks::Forest},
    {"Deep forest", Hunting, Tier2 | Tier3, 0x82005028, true, &LayerMasks::DeepForest},
    {"Meadows", Hunting | Farm, Tier1, 0x78B4E650, false, &LayerMasks::Meadows},
    {"North hills", Hunting, Tier2 | Tier3, 0x6EA078DC, true, &LayerMasks::NorthHills},
    {"Snow peaks", Hunting, Tier4, 0x8CB4F0FF, true, &LayerMasks::SnowPeaks},
    {"Farmland", Farm, Tier1 | Tier2, 0x78FFC832, true, &LayerMasks::Farmland},
    {"Villages", Village, Tier1 | Tier2, 0xAAFF8228, true, &LayerMasks::Villages},
    {"Towns", Town | Village, Tier2 | Tier3, 0xAAE63C96, true, &LayerMasks::Towns},
    {"Roads", Village | Farm, Tier1, 0xA0FFFFFF, true, &LayerMasks::Roads},
    {"Military zones", Military, Tier2 | Tier3 | Tier4, 0xAADC2828, true,
     &LayerMasks::MilitaryZones},
    {"Airfields", Military, Tier3 | Tier4, 0xAA962864, true, &LayerMasks::Airfields},
};

} // namespace

std::vector<LayerPlan> PlanLayers(const World& world)
{
    const LayerMasks masks(world);
    std::vector<LayerPlan> plans;
    for (const LayerRow& row : Rows) {
        plans.push_back({QString::fromLatin1(row.name), row.usageFlags, row.valueFlags,
                         QColor::fromRgba(row.color), row.isVisible, (masks.*row.mask)()});
    }
    return plans;
}

} // namespace generator
