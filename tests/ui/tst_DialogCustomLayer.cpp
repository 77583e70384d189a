#include "ui/DialogCustomLayer.h"

#include "document/Document.h"
#include "layers/CustomLayer.h"
#include "layers/CustomLayerWorker.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "tests/support/LogSpy.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/OrderedEvents.h"
#include "tests/support/ProjectFixture.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <numeric>
#include <utility>
#include <vector>

namespace {

QImage Mask(const QRect& part)
{
    QImage mask = raster::BlankMask({64, 64});
    for (int y = part.top(); y <= part.bottom(); ++y) {
        memset(mask.scanLine(y) + part.left(), 255, static_cast<size_t>(part.width()));
    }
    return mask;
}

/// The dialog, shown, with two layers. Its requests to the worker are recorded.
class Opened
{
public:
    explicit Opened(Document& document, Layer* layer = nullptr)
        : dialog(document, layer)
        , previews(&dialog, &DialogCustomLayer::PreviewComputationRequested)
    {
        dialog.show();
        [&] { QVERIFY(QTest::qWaitForWindowActive(&dialog)); }();
        WaitIdle();
    }

    template <typename T>
    T* Child(const char* name) const
    {
        return dialog.findChild<T*>(QLatin1String(name));
    }
    bool IsIdle() const { return Child<QPushButton>("btnCancel")->isEnabled(); }
    void WaitIdle() const { QTRY_VERIFY(IsIdle()); }
    void Choose(const char* combo, int index) const
    {
        Child<QComboBox>(combo)->setCurrentIndex(index);
        WaitIdle();
    }
    QString LastCode() const { return previews.last().at(1).toString(); }

    DialogCustomLayer dialog;
    QSignalSpy previews;
};

} // namespace

/// The dialog's content when it opens, and its requests to the worker.
class tst_DialogCustomLayer : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void OpensWithAPreviewOfTheLabelsSize();
    void BuildsTheCode_data();
    void BuildsTheCode();
    void EnablesWhatTheOperationNeeds_data();
    void EnablesWhatTheOperationNeeds();
    void OpensAPaintedLayer();
    void OpensAComputedLayer_data();
    void OpensAComputedLayer();
    void MarksAnInputThatWasRemoved();
    void ShowsTheRadiusInEffect();
    void ALayerWithoutAnImageIsAdded();
    void IgnoresARequestForTheSameCode();
    void ComputesLaterWhatWasAskedMeanwhile();
    void ALayerThatIsRefusedIsNotCreated();
    void ALayerStaysAsItWasWithoutMemory();

private:
    Layer* Add(const QString& name, const QRect& part, const QString& code = {});

    /// Layers have data for views only while there is a window.
    QWidget m_window;
    std::unique_ptr<ProjectFixture> m_project;
    std::unique_ptr<Document> m_document;
    Layer* m_first = nullptr;
    Layer* m_second = nullptr;
};

Layer* tst_DialogCustomLayer::Add(const QString& name, const QRect& part, const QString& code)
{
    auto layer = std::make_unique<Layer>(0, 0, &m_document->Layers(), name, code);
    layer->SetImage(Mask(part), Qt::red);
    Layer* added = layer.get();
    m_document->Layers().AddLayer(std::move(layer));
    return added;
}

void tst_DialogCustomLayer::init()
{
    m_document.reset();
    m_project.reset();
    m_project = std::make_unique<ProjectFixture>(QSize(64, 64), QSize(640, 640));
    m_document = std::make_unique<Document>();
    m_first = Add("first", QRect(0, 0, 32, 64));
    m_second = Add("second", QRect(0, 0, 64, 16));
}

void tst_DialogCustomLayer::OpensWithAPreviewOfTheLabelsSize()
{
    DialogCustomLayer dialog(*m_document, nullptr);
    const auto* output = dialog.findChild<QLabel*>("lblImageOutput");
    const QSize before = output->size();
    QVERIFY(before != QSize(640, 480));
    dialog.show();
    QTRY_VERIFY(output->pixmap(Qt::ReturnByValue).size() == output->size());
    QCOMPARE(dialog.findChild<QLabel*>("lblImageInputA")->pixmap(Qt::ReturnByValue).size(), before);
}

void tst_DialogCustomLayer::BuildsTheCode_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QString>("code");

    QTest::newRow("complement") << 0 << "!(A)";
    QTest::newRow("union") << 1 << "+(A)(B)";
    QTest::newRow("intersection") << 2 << ".(A)(B)";
    QTest::newRow("difference") << 3 << "-(A)(B)";
    QTest::newRow("erosion") << 4 << "e(A:25)";
    QTest::newRow("dilation") << 5 << "d(A:25)";
    QTest::newRow("opening") << 6 << "o(A:25)";
    QTest::newRow("closing") << 7 << "c(A:25)";
}

void tst_DialogCustomLayer::BuildsTheCode()
{
    QFETCH(int, operation);
    QFETCH(QString, code);
    const Opened opened(*m_document);
    opened.Choose("cboOperation", operation);
    opened.Choose("cboInputA", 1);
    opened.Choose("cboInputB", 0);

    code.replace("A", QString::number(m_second->Id())).replace("B", QString::number(m_first->Id()));
    QCOMPARE(opened.LastCode(), code);
}

void tst_DialogCustomLayer::EnablesWhatTheOperationNeeds_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<bool>("hasB");
    QTest::addColumn<bool>("hasRadius");

    for (int operation = 0; operation < 8; ++operation) {
        QTest::addRow("%d", operation)
            << operation << (operation >= 1 && operation <= 3) << (operation >= 4);
    }
}

void tst_DialogCustomLayer::EnablesWhatTheOperationNeeds()
{
    QFETCH(int, operation);
    const Opened opened(*m_document);
    // From union to erosion: the second input goes, the radius comes.
    opened.Choose("cboOperation", 1);

    opened.Choose("cboOperation", operation);

    QTEST(opened.Child<QWidget>("groupBoxInputB")->isEnabled(), "hasB");
    QTEST(opened.Child<QWidget>("cboInputB")->isEnabled(), "hasB");
    QTEST(opened.Child<QWidget>("lblRadius")->isEnabled(), "hasRadius");
    QTEST(opened.Child<QWidget>("spnRadius")->isEnabled(), "hasRadius");
}

void tst_DialogCustomLayer::OpensAPaintedLayer()
{
    const Opened opened(*m_document, m_second);

    QCOMPARE(opened.dialog.windowTitle(), "Modify layer - second");
    QCOMPARE(opened.Child<QLineEdit>("txtOutputName")->text(), "second");
    QCOMPARE(opened.Child<QComboBox>("cboOperation")->currentIndex(), 0);
    QCOMPARE(opened.Child<QComboBox>("cboInputA")->currentIndex(), 1);
    QCOMPARE(opened.Child<QComboBox>("cboInputB")->currentIndex(), 1);
}

void tst_DialogCustomLayer::OpensAComputedLayer_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<int>("operation");
    QTest::addColumn<int>("rowA");
    QTest::addColumn<int>("rowB");
    QTest::addColumn<int>("radius");

    QTest::newRow("one input") << "!(B)" << 0 << 1 << 0 << 25;
    QTest::newRow("two inputs") << "-(B)(A)" << 3 << 1 << 0 << 25;
    QTest::newRow("a radius") << "d(B:40)" << 5 << 1 << 0 << 40;
    QTest::newRow("a radius below the range") << "d(B:0)" << 5 << 1 << 0 << 1;
    QTest::newRow("a radius above the range") << "d(B:5000)" << 5 << 1 << 0 << 2000;
    QTest::newRow("an unknown operation") << "x(B)" << 0 << 1 << 0 << 25;
    QTest::newRow("an id that is gone") << "!(999999)" << 0 << -1 << 0 << 25;
    QTest::newRow("two ids that are gone") << "+(999999)(999998)" << 1 << -1 << -1 << 25;
}

void tst_DialogCustomLayer::OpensAComputedLayer()
{
    QFETCH(QString, code);
    code.replace("A", QString::number(m_first->Id())).replace("B", QString::number(m_second->Id()));
    const Opened opened(*m_document, Add("computed", QRect(0, 0, 4, 4), code));

    QCOMPARE(opened.dialog.windowTitle(), "Modify layer - computed");
    QTEST(opened.Child<QComboBox>("cboOperation")->currentIndex(), "operation");
    QTEST(opened.Child<QComboBox>("cboInputA")->currentIndex(), "rowA");
    QTEST(opened.Child<QComboBox>("cboInputB")->currentIndex(), "rowB");
    QTEST(opened.Child<QSpinBox>("spnRadius")->value(), "radius");
}

void tst_DialogCustomLayer::MarksAnInputThatWasRemoved()
{
    Layer* gone = Add("gone", QRect(0, 0, 8, 8));
    const QString code = QString("-(%1)(%2)").arg(m_first->Id()).arg(gone->Id());
    Layer* computed = Add("computed", QRect(0, 0, 4, 4), code);
    m_document->Layers().RemoveLayer(gone->Id());
    const Opened opened(*m_document, computed);
    const auto* ok = opened.Child<QPushButton>("btnOk");
    const auto* input = opened.Child<QComboBox>("cboInputB");
    QCOMPARE(input->currentIndex(), -1);
    QCOMPARE(input->placeholderText(), "(removed)");
    QVERIFY(!ok->isEnabled());
    // Painted as well: see below.
    const QImage marked = opened.Child<QWidget>("cboInputB")->grab().toImage();
    // Enter and another name do not get by.
    QTest::keyClicks(opened.Child<QLineEdit>("txtOutputName"), "x");
    QVERIFY(!ok->isEnabled());
    opened.Child<QPushButton>("btnOk")->click();
    QCOMPARE(computed->Code(), code);
    // What works on one layer does not need it.
    opened.Choose("cboOperation", OperationComplement);
    QVERIFY(ok->isEnabled());
    opened.Choose("cboOperation", OperationUnion);
    QVERIFY(!ok->isEnabled());
    opened.Choose("cboInputB", 1);
    QVERIFY(ok->isEnabled());
    QVERIFY(opened.Child<QWidget>("cboInputB")->grab().toImage() != marked);
    QCOMPARE(opened.LastCode(), QString("+(%1)(%2)").arg(m_first->Id()).arg(m_second->Id()));
}

void tst_DialogCustomLayer::ShowsTheRadiusInEffect()
{
    const Opened opened(*m_document);
    const auto* effect = opened.Child<QLabel>("lblRadiusEffective");
    const auto* hint = opened.Child<QLabel>("lblPreviewHint");
    QCOMPARE(effect->text(), QString());
    QCOMPARE(hint->text(), QString());
    opened.Choose("cboOperation", OperationDilation);
    // 10 metres a pixel.
    QCOMPARE(effect->text(), "25 m = 2 px = 20 m");
    QVERIFY(hint->text().contains("exaggerates"));
    // While one types, before the preview follows.
    auto* radius = opened.Child<QSpinBox>("spnRadius");
    const struct
    {
        QSize layer;
        QSize world;
        int metres;
        const char* text;
    } cases[] = {
        {{2048, 2048}, {15360, 15360}, 25, "25 m = 3 px = 22.5 m"},
        {{64, 64}, {640, 640}, 9, "9 m = 0 px = 0 m"},
        {{64, 64}, {640, 640}, 2000, "2000 m = 200 px = 2000 m"},
        {{64, 32}, {640, 640}, 31, "31 m = 3 px = 30 m by 60 m"},
        {{1000, 1000}, {333, 333}, 1, "1 m = 3 px = 0.999 m"},
        {{64, 64}, {0, 0}, 30, "30 m"},
    };
    for (const auto& each : cases) {
        ProjectSettings::Instance().SetSizes(each.layer.width(), each.layer.height(),
                                             each.world.width(), each.world.height());
        radius->setValue(each.metres == 1 ? 2 : 1);
        radius->setValue(each.metres);
        QCOMPARE(effect->text(), each.text);
    }
    opened.Choose("cboOperation", OperationUnion);
    QCOMPARE(effect->text(), QString());
    QCOMPARE(hint->text(), QString());
}

void tst_DialogCustomLayer::ALayerWithoutAnImageIsAdded()
{
    Layer layer(0, 0, &m_document->Layers(), "empty");
    const Opened opened(*m_document, &layer);
    QCOMPARE(opened.dialog.windowTitle(), "Add layer");
}

void tst_DialogCustomLayer::IgnoresARequestForTheSameCode()
{
    Opened opened(*m_document);
    opened.Child<QComboBox>("cboInputA")->setCurrentIndex(1);
    const int count = opened.previews.size();

    opened.dialog.RequestPreview();
    opened.WaitIdle();
    QTest::qWait(20);

    QCOMPARE(opened.previews.size(), count);
}

void tst_DialogCustomLayer::ComputesLaterWhatWasAskedMeanwhile()
{
    const Opened opened(*m_document);
    opened.Choose("cboOperation", 4);
    auto* radius = opened.Child<QSpinBox>("spnRadius");
    radius->setFocus();
    radius->selectAll();
    QTest::keyClicks(radius, "30");
    QTest::keyClick(radius, Qt::Key_Return);
    const int count = opened.previews.size();
    radius->setValue(50);
    emit radius->editingFinished();
    QCOMPARE(opened.previews.size(), count);

    QTRY_COMPARE(opened.previews.size(), count + 1);

    QVERIFY(opened.LastCode().endsWith(":50)"));
    opened.WaitIdle();
}

void tst_DialogCustomLayer::ALayerThatIsRefusedIsNotCreated()
{
    Opened opened(*m_document);

    opened.dialog.FinalizeLayerComputation(QImage());

    QCOMPARE(opened.dialog.CreatedLayer(), nullptr);
    QCOMPARE(m_document->Layers().Layers().size(), 2);
}

namespace {

using HeapBlocks = std::vector<std::unique_ptr<char[]>>;

/// Takes the memory that the heap can give, but for so many bytes: what was freed before needs no
/// more address space. Room for the blocks must be reserved.
void FillHeap(HeapBlocks& heap, quint64 bytesLeft)
{
    constexpr std::size_t large = 1 << 16;
    constexpr std::size_t small = 1 << 10;
    for (const std::size_t size : {large, small}) {
        while (heap.size() < heap.capacity()) {
            std::unique_ptr<char[]> block(new (std::nothrow) char[size]);
            if (!block) {
                break;
            }
            heap.push_back(std::move(block));
        }
    }
    const auto count = std::min(heap.size(), static_cast<std::size_t>(bytesLeft / large));
    heap.erase(heap.begin(), heap.begin() + static_cast<std::ptrdiff_t>(count));
}

} // namespace

void tst_DialogCustomLayer::ALayerStaysAsItWasWithoutMemory()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("The sanitizers take address space as they go.");
#endif
    const QString code = QStringLiteral("!(%1)").arg(m_first->Id());
    Layer* layer = Add("computed", QRect(0, 0, 4, 4), code);
    QImage mask = raster::BlankMask({8192, 8192});
    for (int y = 0; y < mask.height(); ++y) {
        std::iota(mask.scanLine(y), mask.scanLine(y) + mask.width(), uchar(0));
    }
    layer->SetImage(mask, Qt::red);
    const QImage result = raster::BlankMask(mask.size());
    Opened opened(*m_document, layer);
    opened.Child<QLineEdit>("txtOutputName")->setText("another");
    opened.Choose("cboOperation", OperationErosion);
    LogSpy log;
    HeapBlocks heap;
    heap.reserve(1 << 18);
    {
        const MemoryLimit limit(8 * AMebibyte);
        FillHeap(heap, 8 * AMebibyte);
        opened.dialog.FinalizeLayerComputation(result);
    }
    QCOMPARE(log.Messages(), QStringList("Error: Layer 'another' could not be computed."));
    QCOMPARE(layer->text(), "computed");
    QCOMPARE(layer->Code(), code);
    QVERIFY(layer->Image() == mask);
    QCOMPARE(m_document->History().count(), 0);
}

int main(int argc, char* argv[])
{
    OrderedApplication application(argc, argv);
    tst_DialogCustomLayer test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_DialogCustomLayer.moc"
