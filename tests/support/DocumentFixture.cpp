#include "tests/support/DocumentFixture.h"

#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "document/edits/TerritoryEdits.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"

#include <algorithm>
#include <memory>

DocumentFixture::DocumentFixture()
{
    document.SetZoneScene(&scene);
    document.SetEditable(true);
    auto deer = std::make_unique<TerritoryType>(QStringLiteral("Deer"));
    type = deer.get();
    document.Do(Edits::AddType(document.Types(), std::move(deer)));
    document.Do(Edits::AddTerritory(*type, std::make_unique<Territory>(QStringLiteral("North"))));
    territory = dynamic_cast<Territory*>(type->child(0));
    document.BeginHistory(true);
}

Layer* DocumentFixture::AddLayer()
{
    document.Do(Edits::AddPaintedLayer(document.Layers(), raster::BlankMask({Side, Side})));
    return document.Layers().LayerAt(document.Layers().model()->rowCount() - 1);
}

void DocumentFixture::Fill(Layer& layer, const QRect& rect, uchar value)
{
    QImage mask = layer.Image().copy();
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        std::fill_n(mask.scanLine(y) + rect.left(), rect.width(), value);
    }
    document.Do(std::make_unique<PaintMask>(QStringLiteral("Fill"), layer, mask));
}
