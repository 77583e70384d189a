#include "canvas/tools/FillTool.h"

#include "app/Log.h"
#include "canvas/MainScene.h"
#include "canvas/tools/PaintRegion.h"
#include "canvas/tools/PaintTools.h"
#include "document/Document.h"
#include "layers/raster/Flood.h"

#include <QGraphicsSceneMouseEvent>

#include <utility>

raster::Region FillTool::AreaAt(const Layer& layer, QPoint pixel) const
{
    const FillBounds bounds = Parts().scene.GetPaintTools()->Options().fillBounds;
    if (bounds == FillBounds::All) {
        return raster::EqualPixels(layer.Image(), pixel);
    }
    QVector<QImage> masks{layer.Image()};
    if (bounds == FillBounds::Ticked) {
        const QVector<Layer*> layers = Parts().document.Layers().Layers();
        for (const Layer* other : layers) {
            if (other != &layer && other->IsVisible()) {
                masks.append(other->Image());
            }
        }
    }
    return raster::AreaAt(masks, pixel);
}

void FillTool::Press(QGraphicsSceneMouseEvent& event)
{
    Layer* layer = Parts().document.CurrentLayer();
    const bool isErasing = event.button() == Qt::RightButton;
    if (!layer || (!isErasing && event.button() != Qt::LeftButton)) {
        return;
    }
    const QPoint pixel = PixelOf(event);
    const QSize size = layer->Image().size();
    if (!QRect(QPoint(), size).contains(pixel)) {
        return;
    }
    const QString text =
        isErasing ? Document::tr("Erase area on %1") : Document::tr("Fill area on %1");
    const QString name = layer->text();
    raster::Region area = AreaAt(*layer, pixel);
    if (area.empty()) {
        // It has the pixel under the mouse at least.
        LogError(QStringLiteral("There is no memory to paint on layer '%1'.").arg(name));
        return;
    }
    const qint64 count = PaintRegion(Parts(), *layer, text, std::move(area), isErasing);
    const qint64 all = qint64{size.width()} * size.height();
    if (2 * count > all) {
        constexpr double percent = 100;
        const QString share = QString::number(
            percent * static_cast<double>(count) / static_cast<double>(all), 'f', 1);
        LogInfo((isErasing ? QStringLiteral("Erased %1 % of the map on layer '%2'.")
                           : QStringLiteral("Filled %1 % of the map on layer '%2'."))
                    .arg(share, name));
    }
}
