#include "Picture.h"

#include "Buildings.h"
#include "PaintGround.h"
#include "PaintLight.h"
#include "PaintWater.h"

namespace generator {

namespace {

int ToByte(float value)
{
    return static_cast<int>(std::floor(Clamp01(value) * 255.0F + 0.5F));
}

/// Roads cross the rivers that were painted over them.
void PaintBridges(Canvas& canvas, const World& world)
{
    constexpr Colour bridge = {0.76F, 0.73F, 0.66F};
    for (int cell = 0; cell < canvas.Count(); ++cell) {
        if (world.water.river[cell] > 0.1F && !world.terrain.sea[cell]) {
            canvas[cell] = Mix(canvas[cell], bridge, 0.9F * world.roads.paved[cell]);
        }
    }
}

} // namespace

QImage PaintPicture(const World& world)
{
    const BuiltUp builtUp = BuildUp(world);
    Canvas canvas(WorldPixels);
    PaintGround(canvas, world, builtUp);
    PaintLight(canvas, world);
    PaintWater(canvas, world);
    PaintBridges(canvas, world);
    PaintBuildings(canvas, builtUp);
    QImage picture(WorldPixels, WorldPixels, QImage::Format_RGB32);
    for (int y = 0; y < WorldPixels; ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < WorldPixels; ++x) {
            const Colour colour = canvas.At(x, y);
            line[x] = qRgb(ToByte(colour.red), ToByte(colour.green), ToByte(colour.blue));
        }
    }
    return picture;
}

} // namespace generator
