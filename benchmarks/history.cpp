// What the history costs in the editor's window: recording during a stroke, press and release, undo
// with the repaint, and a long history.

#include "app/ProjectSettings.h"
#include "benchmarks/support/Canvas.h"
#include "benchmarks/support/RatioReporter.h"
#include "benchmarks/support/Shapes.h"
#include "canvas/BrushDock.h"
#include "canvas/MainScene.h"
#include "canvas/MainView.h"
#include "document/Document.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "layers/raster/Mask.h"
#include "ui/QuillmapWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QSettings>
#include <QTemporaryDir>

#include <cstring>

using benchmark::State;

namespace {

/// The window with one layer of natural shapes in paint mode.
class Editor
{
public:
    explicit Editor(int side)
        : window(QString())
        , document(window.GetDocument())
        , view(*window.findChild<MainView*>())
    {
        document.Begin({side, side}, {side, side}, QDir());
        document.Do(Edits::AddPaintedLayer(document.Layers(), RepeatedNaturalMask(side)));
        layer = document.Layers().LayerAt(0);
        document.SetEditable(true);
        window.show();
        view.SetSceneSize(side, side);
        window.LayerSelected(layer);
        view.Scene()->ChangeMode(SceneMode::Paint);
        Settle();
    }

    /// Lets the journal write the layer, which no file holds, before anything is measured.
    static void Settle()
    {
        constexpr int milliseconds = 6000;
        QElapsedTimer time;
        time.start();
        while (!time.hasExpired(milliseconds)) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
    }

    void Mouse(QEvent::Type type, Qt::MouseButtons buttons)
    {
        ++m_step;
        const QPoint position(100 + m_step * 5 % 300, 100 + m_step * 3 % 200);
        SendMouse(view, type, position, buttons);
        QCoreApplication::processEvents();
    }

    /// A stroke of 4,000 layer pixels with a brush of 256, or as long as the layer allows.
    void Stroke()
    {
        constexpr int step = 8;
        Brush brush;
        brush.SetSize(256);
        brush.SetPaintColor(QColor(layer->Color().rgb()));
        LayerPainter& painter = view.Scene()->Painter();
        painter.BeginStroke();
        const int length = std::min(4000, layer->Image().width() - 512);
        QPointF from(256, 256);
        QRect changed;
        for (int done = 0; done < length; done += step) {
            brush.SetPosition(from + QPointF(step * 0.8, step * 0.6));
            changed |= painter.Segment(brush, BrushAction::Paint, from);
            from = brush.Position();
        }
        document.Do(std::make_unique<PaintMask>(QStringLiteral("Stroke"), *layer,
                                                painter.EndStroke(), changed));
    }

    void Fill()
    {
        QImage mask = raster::BlankMask(layer->Image().size());
        mask.fill(raster::MaskSet);
        document.Do(std::make_unique<PaintMask>(QStringLiteral("Fill"), *layer, mask));
    }

    QuillmapWindow window;
    Document& document;
    MainView& view;
    Layer* layer = nullptr;

private:
    int m_step = 0;
};

/// One at a time: large layers leave no room for two.
Editor& EditorOf(int side)
{
    static std::unique_ptr<Editor> editor;
    if (!editor || editor->layer->Image().width() != side) {
        editor.reset();
        editor = std::make_unique<Editor>(side);
    }
    return *editor;
}

void MoveBrush(State& state, int side, bool isRecorded)
{
    Editor& editor = EditorOf(side);
    editor.Mouse(QEvent::MouseButtonPress, Qt::LeftButton);
    if (!isRecorded) {
        editor.view.Scene()->Painter().EndStroke();
    }
    for (auto _ : state) {
        editor.Mouse(QEvent::MouseMove, Qt::LeftButton);
    }
    editor.Mouse(QEvent::MouseButtonRelease, Qt::NoButton);
}

void Click(State& state, int side)
{
    Editor& editor = EditorOf(side);
    for (auto _ : state) {
        editor.Mouse(QEvent::MouseButtonPress, Qt::LeftButton);
        editor.Mouse(QEvent::MouseButtonRelease, Qt::NoButton);
    }
}

void MoveTwice(State& state, int side)
{
    Editor& editor = EditorOf(side);
    editor.Mouse(QEvent::MouseButtonPress, Qt::LeftButton);
    for (auto _ : state) {
        editor.Mouse(QEvent::MouseMove, Qt::LeftButton);
        editor.Mouse(QEvent::MouseMove, Qt::LeftButton);
    }
    editor.Mouse(QEvent::MouseButtonRelease, Qt::NoButton);
}

/// Undo and redo in turn, each with the repaint.
void Travel(State& state, int side, void (Editor::*edit)())
{
    Editor& editor = EditorOf(side);
    (editor.*edit)();
    bool isUndo = true;
    for (auto _ : state) {
        if (isUndo) {
            editor.document.Undo();
        } else {
            editor.document.Redo();
        }
        QCoreApplication::processEvents();
        isUndo = !isUndo;
    }
}

void CopyMask(State& state, int side)
{
    const QImage& from = EditorOf(side).layer->Image();
    QImage to = raster::BlankMask(from.size());
    for (auto _ : state) {
        std::memcpy(to.bits(), from.constBits(), static_cast<std::size_t>(from.sizeInBytes()));
        benchmark::ClobberMemory();
    }
}

/// All of a history back and forth; the time is that of one step.
void TravelAll(State& state, int steps)
{
    Document document;
    document.SetEditable(true);
    document.Begin({64, 64}, {64, 64}, QDir());
    document.Do(Edits::AddPaintedLayer(document.Layers(), raster::BlankMask({64, 64})));
    Layer& layer = *document.Layers().LayerAt(0);
    for (int i = 1; i < steps; ++i) {
        document.EndGesture();
        if (i % 2 == 0) {
            document.Do(Edits::SetLayerOpacity(layer, i % 255));
        } else {
            QImage mask = layer.Image().copy();
            mask.setPixel(i % 64, i / 64 % 64, i % 256);
            document.Do(std::make_unique<PaintMask>(QStringLiteral("Dot"), layer, mask));
        }
    }
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        while (document.CanUndo()) {
            document.Undo();
        }
        while (document.CanRedo()) {
            document.Redo();
        }
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(taken.count() / (2 * steps));
    }
}

template <typename Work>
benchmark::internal::Benchmark* Register(const std::string& name, Work work)
{
    return benchmark::RegisterBenchmark(name.c_str(), work)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

void RegisterAll(int side)
{
    const std::string size = std::to_string(side);
    Register("move of the brush, " + size + "/ours",
             [side](State& s) { MoveBrush(s, side, true); });
    Register("move of the brush, " + size + "/unrecorded",
             [side](State& s) { MoveBrush(s, side, false); });
    Register("press and release, " + size + "/ours", [side](State& s) { Click(s, side); });
    Register("press and release, " + size + "/two moves", [side](State& s) { MoveTwice(s, side); });
    Register("undo of a stroke with the repaint, " + size + "/ours",
             [side](State& s) { Travel(s, side, &Editor::Stroke); });
    Register("undo of a stroke with the repaint, " + size + "/memcpy of the mask",
             [side](State& s) { CopyMask(s, side); });
    Register("undo of a fill with the repaint, " + size + "/ours",
             [side](State& s) { Travel(s, side, &Editor::Fill); });
    Register("undo of a fill with the repaint, " + size + "/memcpy of the mask",
             [side](State& s) { CopyMask(s, side); });
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.path()));
    const QWidget guiIsRunning;
    for (const int side : {2048, 16384}) {
        RegisterAll(side);
    }
    for (const char* version : {"ours", "1000 steps"}) {
        const int steps = version[0] == 'o' ? 10000 : 1000;
        const std::string name = std::string("a step of 10000 undone and done again/") + version;
        benchmark::RegisterBenchmark(name.c_str(), [steps](State& s) { TravelAll(s, steps); })
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime()
            ->Iterations(1);
    }
    return RunBenchmarks(argc, argv);
}
