#include "canvas/LayerPainter.h"

#include "document/Brush.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "layers/raster/MaskDelta.h"
#include "tests/support/LiteralCanvas.h"
#include "tests/support/Masks.h"
#include "tests/support/Random.h"

#include <QPainter>
#include <QTest>
#include <QWidget>

#include <memory>

namespace {

/// A layer and its expected mask.
struct LayerUnderTest
{
    Layer* layer = nullptr;
    QImage mask;
};

/// Performs the same operations with the painter and with the literal canvas.
class Editing
{
public:
    explicit Editing(QSize size);

    void RandomStep();
    /// A stroke from press to release that is recorded, and given back by what was recorded or by
    /// the painter itself.
    void RandomStroke();
    void Compare() const;

private:
    void Load(int index);
    void ChangeSomething();
    void ChangeMask(LayerUnderTest& target);
    void Move(BrushAction action, bool isDab);
    QPointF RandomPosition();
    QColor RandomColor();
    QColor AlmostTheColorOf(const Layer& layer);
    LayerUnderTest& Current() { return m_layers[m_current]; }

    Random m_random;
    QSize m_size;
    LayerList m_list;
    std::unique_ptr<Layer> m_looseLayer;
    QVector<LayerUnderTest> m_layers;
    int m_current = 0;
    LayerPainter m_painter;
    Brush m_brush;
    BrushAction m_action = BrushAction::None;
    QPointF m_strokePoint;
    /// The literal one.
    QImage m_picture;
};

Editing::Editing(QSize size)
    : m_size(size)
{
    for (int i = 0; i < 3; ++i) {
        auto layer = std::make_unique<Layer>(1, 1, i == 2 ? nullptr : &m_list);
        m_layers.append({layer.get(), QImage()});
        ChangeMask(m_layers.last());
        if (i == 2) {
            m_looseLayer = std::move(layer);
        } else {
            m_list.AddLayer(std::move(layer));
        }
    }
    Load(0);
}

QPointF Editing::RandomPosition()
{
    const auto near = [this](int length) {
        return m_random.Between(-60 * 8, (length + 60) * 8) / 8.0;
    };
    if (m_random.Below(30) == 0) {
        const int far = 1 << m_random.Between(8, 20);
        return {double(m_random.Between(-far, far)), double(m_random.Between(-far, far))};
    }
    if (m_random.Below(3) > 0 && m_action != BrushAction::None) {
        return m_strokePoint + QPointF(m_random.Between(-9, 9), m_random.Between(-9, 9)) / 4;
    }
    return {near(m_size.width()), near(m_size.height())};
}

QColor Editing::RandomColor()
{
    static const QColor colors[] = {QColor(255, 0, 0), QColor(0, 128, 255), QColor(1, 2, 3),
                                    QColor(Qt::black), QColor(Qt::white)};
    return colors[m_random.Below(5)];
}

/// Translucent colours, and colours that differ only in bits that a picture does not store.
QColor Editing::AlmostTheColorOf(const Layer& layer)
{
    QColor color = layer.Color();
    color.setAlpha(m_random.Below(256));
    if (m_random.Below(2) == 0) {
        const QRgba64 rgba = color.rgba64();
        color = QRgba64::fromRgba64(rgba.red() ^ 0xFF, rgba.green(), rgba.blue() ^ 0x7F, 0xFFFF);
    }
    return color;
}

void Editing::Load(int index)
{
    m_current = index;
    m_painter.Load(Current().layer);
    m_picture = literal::Display(Current().mask, Current().layer->Color().rgb());
    if (m_random.Below(8) > 0) {
        m_brush.SetPaintColor(Current().layer->Color().rgb());
    }
}

void Editing::ChangeMask(LayerUnderTest& target)
{
    const QColor color = RandomColor();
    if (m_random.Below(3) == 0) {
        QImage picture = literal::Display(RandomMask(m_random, m_size), color.rgb());
        picture.setPixelColor(0, 0, Qt::green);
        target.layer->SetImage(picture, color);
        target.mask = literal::Mask(picture, color.rgb());
        return;
    }
    target.mask = RandomMask(m_random, m_size);
    if (m_random.Below(2) == 0) {
        target.mask = literal::Mask(literal::Display(target.mask, color.rgb()), color.rgb());
    }
    target.layer->SetImage(target.mask, color);
}

void Editing::ChangeSomething()
{
    switch (m_random.Below(9)) {
    case 0:
        Current().layer->SetColor(RandomColor());
        break;
    case 1:
        Current().layer->SetOpacity(m_random.Below(256));
        break;
    case 2:
        m_brush.SetPaintColor(RandomColor());
        break;
    case 3:
        m_brush.SetPaintColor(AlmostTheColorOf(*Current().layer));
        break;
    case 4:
        ChangeMask(Current());
        break;
    case 5:
        m_brush.SetPaintColor(Current().layer->Color().rgb());
        break;
    default:
        Load(m_random.Below(m_layers.size()));
    }
}

void Editing::Move(BrushAction action, bool isDab)
{
    literal::BrushStep step;
    step.isDab = isDab;
    step.isErasing = action == BrushAction::Erase;
    step.color = m_brush.PaintColor();
    step.size = m_brush.Size();
    step.from = m_strokePoint;
    step.to = RandomPosition();
    m_brush.SetPosition(step.to);
    const QImage before = m_painter.Picture();
    const QRect changed =
        isDab ? m_painter.Dab(m_brush, action) : m_painter.Segment(m_brush, action, m_strokePoint);
    m_strokePoint = step.to;
    if (action != BrushAction::None) {
        literal::Paint(m_picture, step);
    }
    LayerUnderTest& current = Current();
    if (current.layer->List()) {
        current.mask = literal::Mask(m_picture, current.layer->Color().rgb());
    }
    // Pixels outside of the rectangle need no repaint.
    QImage repainted = before;
    QPainter painter(&repainted);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(changed, m_painter.Picture(), changed);
    painter.end();
    QCOMPARE(repainted, m_picture);
}

void Editing::RandomStep()
{
    if (m_random.Below(25) == 0) {
        ChangeSomething();
    }
    if (m_random.Below(10) == 0) {
        m_brush.SetSize(m_random.Below(4) == 0 ? m_random.Between(1, 256) : m_random.Between(1, 9));
    }
    if (m_random.Below(12) > 0) {
        Move(m_action, false);
        return;
    }
    m_action = static_cast<BrushAction>(m_random.Below(3));
    if (m_action != BrushAction::None) {
        Move(m_action, true);
    }
}

void Editing::RandomStroke()
{
    ChangeSomething();
    if (!Current().layer->List()) {
        // It keeps its mask.
        Load(0);
    }
    Layer& layer = *Current().layer;
    const QByteArray before = Indices(layer.Image());
    m_painter.BeginStroke();
    m_action = m_random.Below(3) == 0 ? BrushAction::Erase : BrushAction::Paint;
    m_brush.SetSize(m_random.Between(1, 40));
    Move(m_action, true);
    for (int i = m_random.Below(12); i > 0 && !QTest::currentTestFailed(); --i) {
        if (m_random.Below(15) == 0) {
            layer.SetColor(RandomColor());
            m_brush.SetPaintColor(m_random.Below(2) == 0 ? RandomColor() : layer.Color());
        }
        Move(m_action, false);
    }
    Compare();
    const QByteArray after = Indices(layer.Image());
    const bool isCancelled = m_random.Below(2) == 0;
    if (isCancelled) {
        m_painter.CancelStroke();
    } else {
        raster::MaskDelta delta = m_painter.EndStroke();
        QCOMPARE(delta.IsEmpty(), after == before);
        m_painter.Load(nullptr);
        layer.SwapPixels(delta);
    }
    QCOMPARE(Indices(layer.Image()), before);
    Current().mask = layer.Image().copy();
    Load(m_current);
    Compare();
}

void Editing::Compare() const
{
    for (const LayerUnderTest& each : m_layers) {
        QCOMPARE(each.layer->Image(), each.mask);
    }
    QCOMPARE(m_painter.Picture(), m_picture);
}

} // namespace

/// Random strokes by the painter and by the literal canvas, pixel by pixel.
class tst_RandomStrokes : public QObject
{
    Q_OBJECT

private slots:
    void PaintsAsTheWholeImageRuleSays_data();
    void PaintsAsTheWholeImageRuleSays();
    void RecordsWhatAStrokeChanges_data();
    void RecordsWhatAStrokeChanges();

private:
    /// Layers have colours only while there is a window.
    QWidget m_window;
};

void tst_RandomStrokes::PaintsAsTheWholeImageRuleSays_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("steps");
    QTest::newRow("97 x 61") << QSize(97, 61) << 3000;
    QTest::newRow("128 x 64") << QSize(128, 64) << 2000;
    QTest::newRow("1 x 1") << QSize(1, 1) << 1500;
    QTest::newRow("3 x 200") << QSize(3, 200) << 1000;
}

void tst_RandomStrokes::PaintsAsTheWholeImageRuleSays()
{
    QFETCH(QSize, size);
    QFETCH(int, steps);
    Editing editing(size);
    for (int i = 0; i < steps && !QTest::currentTestFailed(); ++i) {
        editing.RandomStep();
        editing.Compare();
    }
}

void tst_RandomStrokes::RecordsWhatAStrokeChanges_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("197 x 161") << QSize(197, 161);
    QTest::newRow("128 x 64") << QSize(128, 64);
    QTest::newRow("1 x 1") << QSize(1, 1);
}

void tst_RandomStrokes::RecordsWhatAStrokeChanges()
{
    QFETCH(QSize, size);
    Editing editing(size);
    for (int i = 0; i < 150 && !QTest::currentTestFailed(); ++i) {
        editing.RandomStroke();
    }
}

QTEST_MAIN(tst_RandomStrokes)
#include "tst_RandomStrokes.moc"
