#include "tests/support/ShownZoneFixture.h"

#include <QButtonGroup>
#include <QSpinBox>

ShownZoneFixture::ShownZoneFixture()
    : type(AddType(QStringLiteral("Deer")))
    , territory(AddTerritory(type, QStringLiteral("North"), 1))
    , zone(territory->Zones().first())
{
    MakeCurrent(territory);
    SelectZone(zone);
    TakeModified();
}

QStringList ShownZoneFixture::Totals() const
{
    QStringList texts;
    for (const char* label : {"lblTerStaticMinVal", "lblTerStaticMaxVal", "lblTerDynMinVal",
                              "lblTerDynMaxVal", "lblTerTotalMinVal", "lblTerTotalMaxVal"}) {
        texts.append(Text(label));
    }
    return texts;
}

int ShownZoneFixture::CheckedUsage() const
{
    return Child<QButtonGroup>("btngAIUsage")->checkedId();
}

int ShownZoneFixture::Value(const char* box) const
{
    return Child<QSpinBox>(box)->value();
}

void SetCounts(Zone* zone, int staticMin, int staticMax, int dynamicMin, int dynamicMax)
{
    zone->SetStaticMin(staticMin);
    zone->SetStaticMax(staticMax);
    zone->SetDynamicMin(dynamicMin);
    zone->SetDynamicMax(dynamicMax);
}

QString CountsText(const SpawnCounts& counts)
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(counts.staticMin)
        .arg(counts.staticMax)
        .arg(counts.dynamicMin)
        .arg(counts.dynamicMax);
}
