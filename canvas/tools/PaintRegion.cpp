#include "canvas/tools/PaintRegion.h"

#include "app/Log.h"
#include "canvas/MainScene.h"
#include "canvas/tools/PaintTools.h"
#include "document/Document.h"
#include "document/edits/PaintMask.h"
#include "layers/raster/Mask.h"

#include <memory>
#include <utility>

namespace {

void RestrictTo(const PaintOptions& options, raster::Region& pixels)
{
    // It shares a mask, which must be let go before the mask changes in place.
    const PixelLimit limit = options.Limit();
    if (limit.IsOn()) {
        pixels = raster::Restricted(pixels, limit.Mask(), limit.IsInside());
    }
}

} // namespace

qint64 PaintRegion(const MapToolParts& parts, Layer& layer, const QString& text,
                   raster::Region pixels, bool isErasing)
{
    RestrictTo(parts.scene.GetPaintTools()->Options(), pixels);
    if (pixels.empty()) {
        return 0;
    }
    const qint64 count = raster::PixelCount(pixels);
    auto edit = std::make_unique<PaintMask>(text.arg(layer.text()), layer, std::move(pixels),
                                            isErasing ? raster::MaskClear : raster::MaskSet);
    if (!edit->IsRecorded()) {
        LogError(QStringLiteral("There is no memory to paint on layer '%1'.").arg(layer.text()));
        return 0;
    }
    return parts.document.Do(std::move(edit)) ? count : 0;
}
