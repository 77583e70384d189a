#include "ui/LayerComposition.h"

#include "tests/support/CanvasFixture.h"

#include <QPainter>
#include <QTest>

namespace {

const QRect Left(0, 0, 100, 160);
const QRect Right(100, 0, 100, 160);

} // namespace

class tst_LayerComposition : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void ShowsCheckedLayersWithTheFirstRowOnTop();
    void ShowsTheCurrentLayerOnTopOfAll();
    void FollowsCheckMarks();
    void ForgetsALayerBeforeItDies();
    void ShowsNothingOfAnEmptyList();
    void EnablesTheView();

private:
    QRgb PixelAt(QPoint position);

    std::unique_ptr<CanvasFixture> m_canvas;
    std::unique_ptr<LayerComposition> m_composition;
};

void tst_LayerComposition::init()
{
    m_composition.reset();
    m_canvas.reset();
    m_canvas = std::make_unique<CanvasFixture>();
    m_composition = std::make_unique<LayerComposition>(m_canvas->document, m_canvas->view);
}

QRgb tst_LayerComposition::PixelAt(QPoint position)
{
    QImage picture(200, 160, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    m_canvas->Scene().render(&painter, QRectF(), QRectF(0, 0, 200, 160));
    painter.end();
    return picture.pixel(position);
}

void tst_LayerComposition::ShowsCheckedLayersWithTheFirstRowOnTop()
{
    Layer* first = m_canvas->AddLayer(Qt::red, Left);
    Layer* second = m_canvas->AddLayer(Qt::green, QRect(0, 0, 200, 160));
    Layer* hidden = m_canvas->AddLayer(Qt::blue, QRect(0, 0, 200, 160));
    first->SetVisible(true);
    second->SetVisible(true);
    hidden->SetVisible(false);

    m_composition->Recompose();

    QCOMPARE(PixelAt({50, 80}), QColor(Qt::red).rgba());
    QCOMPARE(PixelAt({150, 80}), QColor(Qt::green).rgba());
}

void tst_LayerComposition::ShowsTheCurrentLayerOnTopOfAll()
{
    Layer* first = m_canvas->AddLayer(Qt::red, QRect(0, 0, 200, 160));
    Layer* current = m_canvas->AddLayer(Qt::blue, Right);
    first->SetVisible(true);

    m_canvas->document.SetCurrentLayer(current);
    m_composition->Recompose();

    QCOMPARE(m_canvas->Scene().CurrentLayer(), current);
    QCOMPARE(PixelAt({50, 80}), QColor(Qt::red).rgba());
    // The current layer is shown even while its box is not checked.
    QCOMPARE(PixelAt({150, 80}), QColor(Qt::blue).rgba());

    m_canvas->document.SetCurrentLayer(nullptr);
    m_composition->Recompose();

    QCOMPARE(PixelAt({150, 80}), QColor(Qt::red).rgba());
}

void tst_LayerComposition::FollowsCheckMarks()
{
    Layer* layer = m_canvas->AddLayer(Qt::red, Left);
    layer->SetVisible(true);
    m_composition->Recompose();
    QCOMPARE(PixelAt({50, 80}), QColor(Qt::red).rgba());

    layer->SetVisible(false);
    m_composition->Recompose();
    QCOMPARE(PixelAt({50, 80}), 0U);
}

void tst_LayerComposition::ForgetsALayerBeforeItDies()
{
    Layer* layer = m_canvas->AddLayer(Qt::red, Left);
    layer->SetVisible(true);
    m_canvas->document.SetCurrentLayer(layer);
    m_composition->Recompose();

    m_canvas->layers.RemoveLayer(layer->Id());

    QCOMPARE(m_canvas->document.CurrentLayer(), nullptr);
    QCOMPARE(m_canvas->Scene().CurrentLayer(), nullptr);
    m_composition->Recompose();
    QCOMPARE(PixelAt({50, 80}), 0U);
}

void tst_LayerComposition::ShowsNothingOfAnEmptyList()
{
    Layer* layer = m_canvas->AddLayer(Qt::red, Left);
    layer->SetVisible(true);
    m_composition->Recompose();

    m_canvas->layers.Clear();

    QCOMPARE(PixelAt({50, 80}), 0U);
}

void tst_LayerComposition::EnablesTheView()
{
    m_canvas->view.setEnabled(false);
    m_composition->Recompose();
    QVERIFY(!m_canvas->view.isEnabled());

    m_canvas->AddLayer(Qt::red, Left);
    m_composition->Recompose();
    QVERIFY(m_canvas->view.isEnabled());
}

QTEST_MAIN(tst_LayerComposition)
#include "tst_LayerComposition.moc"
