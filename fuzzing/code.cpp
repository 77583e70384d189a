// Codes of computed layers.

#include "app/ProjectSettings.h"
#include "fuzzing/support/Fuzz.h"
#include "layers/CustomLayer.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"

#include <QGuiApplication>

namespace {

constexpr int Side = 12;

/// Three layers, which have the ids 0 to 2 if they are the first ones of the process.
std::unique_ptr<LayerList> MakeLayers()
{
    ProjectSettings::Instance().SetSizes(Side, Side, 120, 120);
    auto layers = std::make_unique<LayerList>();
    for (int i = 0; i < 3; ++i) {
        QImage mask(Side, Side, QImage::Format_Indexed8);
        mask.setColorCount(256);
        mask.fill(0);
        for (int y = i; y < Side - i; ++y) {
            mask.setPixel((y * (i + 3)) % Side, y, i == 2 ? 100 : 255);
        }
        auto layer = std::make_unique<Layer>(0U, 0U, layers.get(), QString::number(i));
        layer->SetImage(mask, Qt::white);
        layers->AddLayer(std::move(layer));
    }
    return layers;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    MakeApplicationOnce<QGuiApplication>();
    static const std::unique_ptr<LayerList> layers = MakeLayers();
    const QString code =
        QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
    SplitOperands(code);
    ParseIds(code);
    RadiusFromCode(code);
    for (const int side : {Side, 5}) {
        const QImage mask = Evaluate(*layers, code, side, side);
        Require(mask.isNull() || mask.size() == QSize(side, side), "a mask of another size");
    }
    return 0;
}
