// What live layers add to a move of the brush: the shore of a lake, which is a chain of two live
// layers, and a dilation by kilometres. Repainting is not measured.

#include "benchmarks/support/Canvas.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "document/LiveLayers.h"
#include "document/edits/FormulaEdits.h"
#include "document/edits/LayerEdits.h"
#include "layers/Formula.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"
#include "ui/LayerComposition.h"

#include <QApplication>

#include <cstdio>
#include <memory>
#include <string>

using benchmark::State;

namespace {

constexpr int BrushSize = 32;
constexpr int MovesPerStroke = 50;

enum class Live
{
    None,
    Shore,
    Wide,
};

/// A map on which the lake is painted.
class Painting
{
public:
    Painting(int side, Live live)
        : m_canvas(side)
        , m_composition(m_canvas.document, m_canvas.view)
    {
        auto lake = std::make_unique<Layer>(0, 0, &m_canvas.layers, QStringLiteral("Lake"));
        lake->SetImage(RepeatedNaturalMask(side), Qt::blue);
        Layer* painted = lake.get();
        m_canvas.layers.AddLayer(std::move(lake));
        m_canvas.document.SetEditable(true);
        if (live == Live::Shore) {
            const Layer* wide = Add({OperationDilation, {painted->Id()}, 25});
            Add({OperationDifference, {wide->Id(), painted->Id()}, 0});
        } else if (live == Live::Wide) {
            Add({OperationDilation, {painted->Id()}, 2000});
        }
        m_canvas.document.SetCurrentLayer(painted);
        m_canvas.dock.SetSize(BrushSize);
        m_canvas.dock.SetPaintColor(painted->Color().rgb());
        m_canvas.scene()->ChangeMode(SceneMode::Paint);
        m_composition.Recompose();
        m_canvas.SetZoom(1);
    }

    void Press() { m_canvas.Mouse(QEvent::MouseButtonPress, Next(), Qt::LeftButton); }
    void Move() { m_canvas.Mouse(QEvent::MouseMove, Next(), Qt::LeftButton); }
    void Release()
    {
        m_canvas.Mouse(QEvent::MouseButtonRelease, Next(), Qt::NoButton);
        m_canvas.document.Undo();
    }

private:
    Layer* Add(const Formula& formula)
    {
        Document& document = m_canvas.document;
        const QString code = formula.Code();
        document.Do(Edits::AddComputedLayer(document.Layers(), code, code,
                                            EvaluateAtLayerSize(document.Layers(), code)));
        Layer* layer = document.Layers().LayerAt(document.Layers().model()->rowCount() - 1);
        document.Do(Edits::MakeLayerLive(*layer, {}));
        layer->SetVisible(true);
        return layer;
    }
    QPoint Next()
    {
        m_step = (m_step + 1) % MovesPerStroke;
        return {200 + 12 * m_step, 300 + (m_step * 37) % 60};
    }

    Canvas m_canvas;
    LayerComposition m_composition;
    int m_step = 0;
};

void MoveBrush(State& state, int side, Live live)
{
    Painting painting(side, live);
    int moves = 0;
    painting.Press();
    for (auto _ : state) {
        painting.Move();
        if (++moves == MovesPerStroke) {
            state.PauseTiming();
            moves = 0;
            painting.Release();
            painting.Press();
            state.ResumeTiming();
        }
    }
    painting.Release();
}

void Register(const std::string& name, int side, Live live)
{
    benchmark::RegisterBenchmark(name.c_str(), MoveBrush, side, live)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    for (const int side : {2048, 16384}) {
        const std::string size = std::to_string(side);
        Register("brush move, shore of 25 m, " + size + "/ours", side, Live::Shore);
        Register("brush move, shore of 25 m, " + size + "/nothing live", side, Live::None);
        Register("brush move, dilation of 2,000 m, " + size + "/ours", side, Live::Wide);
        Register("brush move, dilation of 2,000 m, " + size + "/nothing live", side, Live::None);
    }
    return RunBenchmarks(argc, argv);
}
