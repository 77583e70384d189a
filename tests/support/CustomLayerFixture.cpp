#include "tests/support/CustomLayerFixture.h"

#include "layers/raster/Mask.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QTest>
#include <QTimer>

#include <algorithm>

CustomLayerFixture::CustomLayerFixture()
    : m_project({LayerSize, LayerSize}, {10 * LayerSize, 10 * LayerSize})
{
    // Messages reach the spy from other threads.
    qRegisterMetaType<Log::MessageType>("Log::MessageType");
    window.show();
    first = Add(QStringLiteral("first"), {0, 0, LayerSize / 2, LayerSize});
    second = Add(QStringLiteral("second"), {0, 0, LayerSize, LayerSize / 4});
}

Layer* CustomLayerFixture::Add(const QString& name, const QRect& setPart, const QString& code)
{
    QImage mask = raster::BlankMask({LayerSize, LayerSize});
    for (int y = setPart.top(); y <= setPart.bottom(); ++y) {
        std::fill_n(mask.scanLine(y) + setPart.left(), setPart.width(), raster::MaskSet);
    }
    auto layer = std::make_unique<Layer>(0, 0, &list, name, code);
    layer->SetImage(mask, Qt::red);
    Layer* added = layer.get();
    return list.AddLayer(std::move(layer)) ? added : nullptr;
}

QString CustomLayerFixture::Code(QString text) const
{
    return text.replace(QLatin1Char('A'), QString::number(first->Id()))
        .replace(QLatin1Char('B'), QString::number(second->Id()));
}

int CustomLayerFixture::Execute(Layer* layerToModify, const std::function<void()>& user)
{
    DialogCustomLayer opened(document, layerToModify, &window);
    QSignalSpy previewSpy(&opened, &DialogCustomLayer::PreviewComputationRequested);
    QSignalSpy computationSpy(&opened, &DialogCustomLayer::LayerComputationRequested);
    dialog = &opened;
    previews = &previewSpy;
    computations = &computationSpy;
    QTimer::singleShot(0, &opened, [&] {
        [&] { QVERIFY(QTest::qWaitForWindowActive(&opened)); }();
        user();
        if (QTest::currentTestFailed()) {
            WaitIdle();
            opened.reject();
        }
    });
    constexpr int milliseconds = 60000;
    QTimer::singleShot(milliseconds, &opened, [&] {
        opened.reject();
        QFAIL("The dialog was left open.");
    });
    const int result = opened.exec();
    created = opened.CreatedLayer();
    dialog = nullptr;
    previews = nullptr;
    computations = nullptr;
    return result;
}

void CustomLayerFixture::WaitIdle() const
{
    constexpr int milliseconds = 60000;
    QTimer timeout;
    timeout.setSingleShot(true);
    timeout.start(milliseconds);
    while (!IsIdle() && timeout.isActive()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QVERIFY(IsIdle());
}

void CustomLayerFixture::Click(const char* control) const
{
    QTest::mouseClick(Child(control), Qt::LeftButton);
}

void CustomLayerFixture::Key(const char* control, Qt::Key key) const
{
    Child(control)->setFocus();
    QTest::keyClick(Child(control), key);
}

void CustomLayerFixture::Type(const char* control, const QString& text) const
{
    Child(control)->setFocus();
    // Leaving the radius box requests a preview.
    WaitIdle();
    QTest::keyClick(Child(control), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(Child(control), Qt::Key_Delete);
    QTest::keyClicks(Child(control), text);
}

void CustomLayerFixture::Choose(const char* combo, int row) const
{
    const auto* box = Child<QComboBox>(combo);
    WaitIdle();
    while (box->currentIndex() != row) {
        const int before = box->currentIndex();
        Key(combo, before < row ? Qt::Key_Down : Qt::Key_Up);
        QVERIFY(box->currentIndex() != before);
        WaitIdle();
    }
}

void CustomLayerFixture::ChooseByMouse(const char* combo, int row, int x) const
{
    auto* box = Child<QComboBox>(combo);
    Click(combo);
    QWidget* popup = box->view()->window();
    QVERIFY(QTest::qWaitForWindowExposed(popup));
    // The list ignores releases until a timer of its own ends, so that the click that opened it
    // chooses nothing. Users click again when a click did nothing.
    QTest::qWait(QApplication::doubleClickInterval());
    const QPoint place{x, box->view()->visualRect(box->model()->index(row, 0)).center().y()};
    QVERIFY(QTest::qWaitFor([&] {
        if (popup->isVisible()) {
            QTest::mouseClick(box->view()->viewport(), Qt::LeftButton, {}, place);
        }
        return !popup->isVisible();
    }));
}

QString CustomLayerFixture::LastCode() const
{
    return previews->isEmpty() ? QString() : previews->last().at(1).toString();
}

QStringList CustomLayerFixture::EnabledControls() const
{
    QStringList names;
    for (const char* name : {"cboOperation", "spnRadius", "cboInputA", "cboInputB", "txtOutputName",
                             "btnCancel", "btnOk"}) {
        if (Child(name)->isEnabled()) {
            names.append(QLatin1String(name));
        }
    }
    return names;
}
