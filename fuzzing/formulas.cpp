// The formulas of computed layers beside a project.

#include "document/Formulas.h"
#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "document/LiveLayers.h"
#include "fuzzing/support/Fuzz.h"
#include "layers/FormulaFile.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"

#include <QApplication>

namespace {

constexpr int Side = 12;

/// A project with the layers A, B and C.
std::unique_ptr<Document> MakeDocument()
{
    ProjectSettings::Instance().SetSizes(Side, Side, 120, 120);
    auto document = std::make_unique<Document>();
    for (const char name : {'A', 'B', 'C'}) {
        QImage mask = raster::BlankMask({Side, Side});
        mask.scanLine(name - 'A')[5] = 255;
        auto layer =
            std::make_unique<Layer>(0U, 0U, &document->Layers(), QString(QLatin1Char(name)));
        layer->SetImage(mask, Qt::white);
        document->Layers().AddLayer(std::move(layer));
    }
    return document;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    MakeApplicationOnce<QApplication>();
    const QByteArray text(reinterpret_cast<const char*>(bytes), static_cast<int>(count));
    const FormulaReading reading = ReadFormulas(text);
    Require(reading.fault.isEmpty() || reading.records.empty(), "formulas of a faulty document");
    Require(FormulaDocument(ReadFormulas(FormulaDocument(reading.records)).records) ==
                FormulaDocument(reading.records),
            "what is written is not read");

    const std::unique_ptr<Document> document = MakeDocument();
    document->LayerFormulas().Read(reading, QStringLiteral("formulas"));
    const QVector<Layer*> layers = document->Layers().Layers();
    for (Layer* layer : layers) {
        document->LayerFormulas().Describe(*layer);
        emit document->Painted(layer, {2, 2, 3, 3});
    }
    document->Live().Finish();
    Require(document->LayerFormulas().Records().size() <= std::size_t(3), "too many formulas");
    return 0;
}
