#include "layers/CustomLayerWorker.h"

#include "app/Log.h"
#include "layers/CustomLayer.h"
#include "layers/raster/Mask.h"
#include "layers/raster/Morphology.h"
#include "layers/raster/SetOperations.h"

#include "tests/support/LogSpy.h"
#include "tests/support/OrderedEvents.h"
#include "tests/support/ProjectFixture.h"

#include <QPointer>
#include <QSignalSpy>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <QtTest>

#include <algorithm>
#include <future>
#include <memory>
#include <mutex>

/// Sends requests like a dialog that owns the worker's thread, and collects the results on the
/// dialog's thread.
class Requester : public QObject
{
    Q_OBJECT

public:
    Requester()
        : m_worker(new CustomLayerWorker)
    {
        m_worker->moveToThread(&m_thread);
        connect(&m_thread, &QThread::finished, m_worker, &QObject::deleteLater);
        connect(this, &Requester::PreviewRequested, m_worker, &CustomLayerWorker::ComputePreview);
        connect(this, &Requester::LayerRequested, m_worker, &CustomLayerWorker::ComputeLayer);
        connect(m_worker, &CustomLayerWorker::PreviewComputationFinished, this,
                [this](const QImage& preview) { m_previews.append(preview); });
        connect(m_worker, &CustomLayerWorker::LayerComputationFinished, this,
                [this](const QImage& image) { m_images.append(image); });
        connect(
            m_worker, &CustomLayerWorker::LayerComputationFinished, m_worker,
            [this] {
                if (!m_hasReported) {
                    m_hasReported = true;
                    m_firstReport.set_value();
                }
            },
            Qt::DirectConnection);
        m_thread.start(QThread::InheritPriority);
    }

    ~Requester() override
    {
        m_thread.quit();
        m_thread.wait();
    }

    CustomLayerWorker* Worker() const { return m_worker; }
    int ImageCount() const { return m_images.size(); }

    /// Waits for the first image to be reported, on the worker's thread.
    void WaitWithoutEvents() { m_firstReport.get_future().wait(); }

    QImage TakePreview() { return Take(m_previews); }
    QImage TakeImage() { return Take(m_images); }

signals:
    void PreviewRequested(const LayerList* layerList, QString code, QSize previewSize);
    void LayerRequested(const LayerList* layerList, QString code, Layer* layerToModify);

private:
    /// The first of the results, waiting for it.
    static QImage Take(QList<QImage>& results)
    {
        if (!QTest::qWaitFor([&] { return !results.isEmpty(); })) {
            qFatal("No result came.");
        }
        return results.takeFirst();
    }

    QThread m_thread;
    CustomLayerWorker* m_worker;
    std::promise<void> m_firstReport;
    bool m_hasReported = false;
    QList<QImage> m_previews;
    QList<QImage> m_images;
};

class tst_CustomLayerWorker : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void APreviewIsReported();
    void ALayerIsComputedAtTheLayerSize_data();
    void ALayerIsComputedAtTheLayerSize();
    void ALayerIsComputedOverTheListThatIsPassed();
    void MissingListsAndCodesGiveNull_data();
    void MissingListsAndCodesGiveNull();

    void ALayerToModifyIsNotChangedHere();
    void AnEqualCodeIsNotEvaluatedAgain();
    void ACodeThatEvaluatesToNothingKeepsTheLayer();
    void LayersMayGoBeforeTheResultIsTaken();
    void TheWorkerNeverWaitsForTheListsThread();
    void RequestsAreAnsweredInOrder();
    void ARequestWaitsWhileAnotherShowsAMessage();
    void AWorkerMayGoWhileItShowsAMessage();
    void AWorkerMayGoWhileItReports();
    void PicturesArePaintedWhileTheWorkerReads();

private:
    Layer* AddLayer(const QImage& mask);
    QString Code(QString text) const;

    std::unique_ptr<ProjectFixture> m_project;
    std::unique_ptr<LogSpy> m_log;
    std::unique_ptr<LayerList> m_layers;
    Layer* m_a = nullptr;
    Layer* m_b = nullptr;
};

namespace {

constexpr int LayerSize = 64;

QImage MaskA()
{
    QImage mask = raster::BlankMask({LayerSize, LayerSize});
    for (int y = 10; y < 30; ++y) {
        std::fill_n(mask.scanLine(y) + 20, 25, raster::MaskSet);
    }
    return mask;
}

QImage MaskB()
{
    QImage mask = raster::BlankMask({LayerSize, LayerSize});
    std::fill_n(mask.scanLine(20), LayerSize, raster::MaskSet);
    return mask;
}

QImage OnlyResult(const QSignalSpy& spy)
{
    return spy.size() == 1 ? spy.first().first().value<QImage>() : QImage();
}

} // namespace

void tst_CustomLayerWorker::initTestCase()
{
    // Messages reach the spy from other threads.
    qRegisterMetaType<Log::MessageType>("Log::MessageType");
}

void tst_CustomLayerWorker::init()
{
    const QSize size(LayerSize, LayerSize);
    m_project = std::make_unique<ProjectFixture>(size, size);
    m_log = std::make_unique<LogSpy>();
    m_layers = std::make_unique<LayerList>();
    m_a = AddLayer(MaskA());
    m_b = AddLayer(MaskB());
}

void tst_CustomLayerWorker::cleanup()
{
    m_layers.reset();
    m_log.reset();
    m_project.reset();
}

Layer* tst_CustomLayerWorker::AddLayer(const QImage& mask)
{
    auto layer = std::make_unique<Layer>(0, 0, m_layers.get(), "area");
    layer->SetImage(mask, Qt::white);
    return m_layers->AddLayer(layer.get()) ? layer.release() : nullptr;
}

QString tst_CustomLayerWorker::Code(QString text) const
{
    return text.replace('A', QString::number(m_a->Id())).replace('B', QString::number(m_b->Id()));
}

void tst_CustomLayerWorker::APreviewIsReported()
{
    Requester requester;
    emit requester.PreviewRequested(m_layers.get(), Code("d(A:2)"), QSize(40, 20));
    QCOMPARE(requester.TakePreview(), Evaluate(*m_layers, Code("d(A:2)"), 40, 20));
}

void tst_CustomLayerWorker::ALayerIsComputedAtTheLayerSize_data()
{
    QTest::addColumn<QSize>("layerSize");
    QTest::newRow("that of the operands") << QSize(LayerSize, LayerSize);
    QTest::newRow("wide") << QSize(90, 40);
    QTest::newRow("high") << QSize(41, 130);
}

void tst_CustomLayerWorker::ALayerIsComputedAtTheLayerSize()
{
    QFETCH(QSize, layerSize);
    ProjectSettings::Instance().SetSizes(layerSize.width(), layerSize.height(), LayerSize,
                                         LayerSize);
    const auto scaled = [layerSize](const QImage& mask) {
        return mask.scaled(layerSize, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    };
    Requester requester;
    emit requester.LayerRequested(m_layers.get(), Code("-(A)(B)"), nullptr);
    QCOMPARE(requester.TakeImage(), raster::Difference(scaled(MaskA()), scaled(MaskB())));
    QCOMPARE(m_a->Image(), MaskA());
    QCOMPARE(m_b->Image(), MaskB());

    emit requester.LayerRequested(m_layers.get(), Code("!(A)"), m_b);
    QCOMPARE(requester.TakeImage(), raster::Complement(scaled(MaskA())));
    QCOMPARE(m_a->Image(), MaskA());
    QCOMPARE(m_b->Image(), MaskB());
}

void tst_CustomLayerWorker::ALayerIsComputedOverTheListThatIsPassed()
{
    LayerList others;
    auto other = std::make_unique<Layer>(0, 0, &others, "other");
    other->SetImage(MaskB(), Qt::white);
    const QString ofOther = QString("!(%1)").arg(other->Id());
    QVERIFY(others.AddLayer(std::move(other)));

    Requester requester;
    emit requester.LayerRequested(&others, ofOther, nullptr);
    QCOMPARE(requester.TakeImage(), raster::Complement(MaskB()));
    emit requester.LayerRequested(m_layers.get(), ofOther, m_b);
    QVERIFY(requester.TakeImage().isNull());
    emit requester.LayerRequested(&others, Code("!(A)"), nullptr);
    QVERIFY(requester.TakeImage().isNull());
}

void tst_CustomLayerWorker::MissingListsAndCodesGiveNull_data()
{
    QTest::addColumn<bool>("hasList");
    QTest::addColumn<QString>("code");
    QTest::newRow("no list") << false << "!(A)";
    QTest::newRow("no code") << true << "";
}

void tst_CustomLayerWorker::MissingListsAndCodesGiveNull()
{
    QFETCH(bool, hasList);
    QFETCH(QString, code);
    const LayerList* list = hasList ? m_layers.get() : nullptr;
    Requester requester;
    emit requester.PreviewRequested(list, Code(code), QSize(8, 8));
    emit requester.LayerRequested(list, Code(code), m_a);
    QVERIFY(requester.TakePreview().isNull());
    QVERIFY(requester.TakeImage().isNull());
    QCOMPARE(m_a->Image(), MaskA());
    QCOMPARE(m_a->Code(), QString());
}

/// Whoever asked does that, on its own thread, when the result has come.
void tst_CustomLayerWorker::ALayerToModifyIsNotChangedHere()
{
    QVERIFY(m_b->SetCode(Code("d(A:2)")));
    const QImage image = m_b->Image();
    const auto isUnchanged = [&] { return m_b->Code() == Code("d(A:2)") && m_b->Image() == image; };
    CustomLayerWorker worker;
    QSignalSpy finished(&worker, &CustomLayerWorker::LayerComputationFinished);
    worker.ComputeLayer(m_layers.get(), Code("!(A)"), m_b);
    QCOMPARE(OnlyResult(finished), raster::Complement(MaskA()));
    QVERIFY(isUnchanged());

    Requester requester;
    emit requester.LayerRequested(m_layers.get(), Code("d(A:5)"), m_b);
    QCOMPARE(requester.TakeImage(), raster::Dilate(MaskA(), 5));
    QCoreApplication::processEvents();
    QVERIFY(isUnchanged());
}

void tst_CustomLayerWorker::AnEqualCodeIsNotEvaluatedAgain()
{
    const QString code = Code("!(A)");
    QVERIFY(m_a->SetCode(code));
    const QImage image = m_a->Image();
    Requester requester;
    emit requester.LayerRequested(m_layers.get(), code, m_a);
    QCOMPARE(requester.TakeImage(), image);
    QCOMPARE(m_a->Image(), image);
}

void tst_CustomLayerWorker::ACodeThatEvaluatesToNothingKeepsTheLayer()
{
    Requester requester;
    const QString code = Code("+(A)(x)");
    emit requester.LayerRequested(m_layers.get(), code, m_b);
    QVERIFY(requester.TakeImage().isNull());
    QCOMPARE(m_b->Image(), MaskB());
    QCOMPARE(m_b->Code(), QString());
    const QStringList messages = {
        "Error: Code '" + code + "' contains invalid ID - 'x'",
        "Error: Unknown unary operator in code '" + code + "'",
    };
    QTRY_COMPARE(m_log->Messages(), messages);

    CustomLayerWorker worker;
    QSignalSpy finishedHere(&worker, &CustomLayerWorker::LayerComputationFinished);
    worker.ComputeLayer(m_layers.get(), "!(99999)", m_b);
    QCOMPARE(finishedHere.size(), 1);
    QVERIFY(OnlyResult(finishedHere).isNull());
    QCOMPARE(m_b->Image(), MaskB());
}

void tst_CustomLayerWorker::LayersMayGoBeforeTheResultIsTaken()
{
    Requester requester;
    emit requester.LayerRequested(m_layers.get(), Code("!(A)"), m_b);
    requester.WaitWithoutEvents();
    m_layers->RemoveLayer(m_b->Id());
    QCOMPARE(requester.TakeImage(), raster::Complement(MaskA()));
    // The worker takes the next requests all the same.
    emit requester.LayerRequested(m_layers.get(), QString("!(%1)").arg(m_a->Id()), nullptr);
    QCOMPARE(requester.TakeImage(), raster::Complement(MaskA()));
    m_layers.reset();
    emit requester.LayerRequested(nullptr, "!(0)", nullptr);
    QVERIFY(requester.TakeImage().isNull());
}

void tst_CustomLayerWorker::TheWorkerNeverWaitsForTheListsThread()
{
    // The list's thread waits for the worker's to end, as a dialog's destructor does.
    auto requester = std::make_unique<Requester>();
    emit requester->LayerRequested(m_layers.get(), Code("!(A)"), m_b);
    emit requester->LayerRequested(m_layers.get(), Code("!(B)"), m_a);
    requester->WaitWithoutEvents();
    requester.reset();
    QCoreApplication::processEvents();
    QCOMPARE(m_a->Image(), MaskA());
    QCOMPARE(m_b->Image(), MaskB());
}

void tst_CustomLayerWorker::RequestsAreAnsweredInOrder()
{
    Requester requester;
    emit requester.LayerRequested(m_layers.get(), Code("!(A)"), m_b);
    emit requester.LayerRequested(m_layers.get(), Code("!(B)"), m_a);
    emit requester.PreviewRequested(m_layers.get(), Code("+(A)(B)"), QSize(LayerSize, LayerSize));
    QCOMPARE(requester.TakeImage(), raster::Complement(MaskA()));
    QCOMPARE(requester.TakeImage(), raster::Complement(MaskB()));
    QCOMPARE(requester.TakePreview(), raster::Union(MaskA(), MaskB()));
}

void tst_CustomLayerWorker::ARequestWaitsWhileAnotherShowsAMessage()
{
    // All requests have arrived when the first one starts. It logs two messages, each of which
    // processes the events of its thread.
    QStringList order;
    std::mutex mutex;
    const auto note = [&](const QString& text) {
        const std::lock_guard locker(mutex);
        order.append(text);
    };
    Requester requester;
    connect(
        &Log::Instance(), &Log::MessageReceived, requester.Worker(),
        [&](const QString&) { note("message"); }, Qt::DirectConnection);
    connect(
        requester.Worker(), &CustomLayerWorker::LayerComputationFinished, requester.Worker(),
        [&](const QImage& image) { note(image.isNull() ? "nothing" : "image"); },
        Qt::DirectConnection);
    CustomLayerWorker* worker = requester.Worker();
    const auto request = [this, worker](const QString& code) {
        worker->ComputeLayer(m_layers.get(), Code(code), nullptr);
    };
    const auto requestAll = [worker, request] {
        for (const char* code : {"!(A)", "?( )"}) {
            QMetaObject::invokeMethod(
                worker, [request, code] { request(code); }, Qt::QueuedConnection);
        }
        request("+(A)(x)");
    };
    QMetaObject::invokeMethod(worker, requestAll, Qt::QueuedConnection);
    QTRY_COMPARE(requester.ImageCount(), 3);
    const std::lock_guard locker(mutex);
    QCOMPARE(order, QStringList({"message", "message", "nothing", "image", "message", "message",
                                 "nothing"}));
}

void tst_CustomLayerWorker::AWorkerMayGoWhileItShowsAMessage()
{
    auto* worker = new CustomLayerWorker;
    QSignalSpy finished(worker, &CustomLayerWorker::LayerComputationFinished);
    const QPointer<CustomLayerWorker> alive(worker);
    QTimer::singleShot(0, worker, [worker] { delete worker; });
    worker->ComputeLayer(m_layers.get(), "?( )", nullptr);
    QVERIFY(!alive);
    QCOMPARE(finished.size(), 0);
}

void tst_CustomLayerWorker::AWorkerMayGoWhileItReports()
{
    auto* worker = new CustomLayerWorker;
    const QPointer<CustomLayerWorker> alive(worker);
    connect(worker, &CustomLayerWorker::LayerComputationFinished, worker,
            [worker] { delete worker; });
    worker->ComputeLayer(m_layers.get(), Code("!(A)"), nullptr);
    QVERIFY(!alive);
}

void tst_CustomLayerWorker::PicturesArePaintedWhileTheWorkerReads()
{
    // With a widget there is a GUI, so that layers have pictures.
    QWidget window;
    Requester requester;
    constexpr int rounds = 20;
    for (int i = 0; i < rounds; ++i) {
        emit requester.LayerRequested(m_layers.get(),
                                      Code("c(A:R)").replace('R', QString::number(i % 7)), m_b);
        emit requester.LayerRequested(m_layers.get(), Code("-(B)(A)"), m_b);
    }
    int paintedCount = 0;
    while (requester.ImageCount() < 2 * rounds && paintedCount < 100000) {
        QVERIFY(!m_b->Pixmap().isNull());
        QVERIFY(!m_a->Pixmap().isNull());
        ++paintedCount;
        QCoreApplication::processEvents();
    }
    QCOMPARE(requester.ImageCount(), 2 * rounds);
    QCOMPARE(m_a->Image(), MaskA());
    QCOMPARE(m_b->Image(), MaskB());
}

int main(int argc, char* argv[])
{
    OrderedApplication application(argc, argv);
    tst_CustomLayerWorker test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_CustomLayerWorker.moc"
