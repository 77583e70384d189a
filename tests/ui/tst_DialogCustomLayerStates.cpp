#include "document/LiveLayers.h"
#include "document/edits/FormulaEdits.h"
#include "document/edits/PaintMask.h"
#include "layers/Formula.h"
#include "layers/raster/Mask.h"
#include "tests/support/CustomLayerFixture.h"
#include "tests/support/Masks.h"
#include "tests/support/OrderedEvents.h"

#include <QApplication>
#include <QProgressBar>
#include <QSpinBox>
#include <QTest>
#include <QWheelEvent>

namespace {

void Turn(QWidget* widget)
{
    const QPointF center = widget->rect().center();
    QWheelEvent event(center, widget->mapToGlobal(center.toPoint()), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

} // namespace

/// Which controls are enabled when. There is one computation at a time.
class tst_DialogCustomLayerStates : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void AddsOneLayerForTwoClicks();
    void DisablesItsControlsWhileComputing_data();
    void DisablesItsControlsWhileComputing();
    void CannotBeLeftWhileComputing();
    void Closes_data();
    void Closes();
    void AsksOnceForOneRadius();
    void TakesTheRadiusWhenItsEditingEnds();
    void ConfirmsAndCancelsFromTheRadiusBoxAtOnce_data();
    void ConfirmsAndCancelsFromTheRadiusBoxAtOnce();
    void StaysOpenOnEnter_data();
    void StaysOpenOnEnter();
    void GivesTheFocusBack();
    void LeavesTheWheelToTheFocus();
    void OpensWhenLiveLayersAreComputed();

private:
    std::unique_ptr<CustomLayerFixture> m;
};

void tst_DialogCustomLayerStates::init()
{
    m = std::make_unique<CustomLayerFixture>();
}

void tst_DialogCustomLayerStates::cleanup()
{
    m.reset();
}

void tst_DialogCustomLayerStates::AddsOneLayerForTwoClicks()
{
    m->Execute(nullptr, [&] {
        m->WaitIdle();
        m->Click("btnOk");
        m->Click("btnOk");
        m->dialog->ConfirmDialog();
        QCOMPARE(m->computations->size(), 1);
    });

    QCOMPARE(m->list.Layers().size(), 3);
}

void tst_DialogCustomLayerStates::DisablesItsControlsWhileComputing_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QString>("more");

    for (const int operation : {0, 1, 2, 3, 4, 5, 6, 7}) {
        QTest::addRow("%d", operation) << operation
                                       << (operation > 3   ? "spnRadius"
                                           : operation > 0 ? "cboInputB"
                                                           : QString());
    }
}

void tst_DialogCustomLayerStates::DisablesItsControlsWhileComputing()
{
    QFETCH(int, operation);
    QFETCH(QString, more);
    QStringList all = {"btnCancel", "btnOk", "cboInputA", "cboOperation", "txtOutputName"};
    if (!more.isEmpty()) {
        all.append(more);
    }
    all.sort();

    m->Execute(nullptr, [&] {
        const auto* bar = m->Child<QProgressBar>("pgr");
        const auto verify = [&](bool isIdle) {
            QStringList enabled = m->EnabledControls();
            enabled.sort();
            QCOMPARE(enabled, isIdle ? all : QStringList());
            QCOMPARE(bar->minimum(), 0);
            QCOMPARE(bar->maximum(), isIdle ? 1 : 0);
            QVERIFY(isIdle ? bar->value() == 0 : bar->text().isEmpty());
        };
        m->Choose("cboOperation", operation);
        verify(true);
        m->Key("cboInputA", Qt::Key_Down);
        verify(false);
        m->WaitIdle();
        verify(true);
        m->Click("btnOk");
        verify(false);
    });
}

void tst_DialogCustomLayerStates::CannotBeLeftWhileComputing()
{
    m->Execute(nullptr, [&] {
        m->WaitIdle();
        for (const char* request : {"cboInputA", "btnOk"}) {
            m->Key(request, request[0] == 'c' ? Qt::Key_Down : Qt::Key_Space);
            QVERIFY(!m->IsIdle());
            QVERIFY(!m->dialog->close());
            QTest::keyClick(m->dialog, Qt::Key_Escape);
            m->dialog->reject();
            m->dialog->CloseDialog();
            m->Click("btnCancel");
            QVERIFY(m->dialog->isVisible());
            QTRY_VERIFY(m->IsIdle());
        }
    });
    QCOMPARE(m->list.Layers().size(), 3);
}

void tst_DialogCustomLayerStates::Closes_data()
{
    QTest::addColumn<QByteArray>("way");

    for (const char* way : {"btnCancel", "Escape", "close"}) {
        QTest::newRow(way) << QByteArray(way);
    }
}

void tst_DialogCustomLayerStates::Closes()
{
    QFETCH(QByteArray, way);

    const int result = m->Execute(nullptr, [&] {
        m->WaitIdle();
        if (way == "btnCancel") {
            m->Click("btnCancel");
        } else if (way == "Escape") {
            m->Key("txtOutputName", Qt::Key_Escape);
        } else {
            QVERIFY(m->dialog->close());
        }
    });

    QCOMPARE(result, int(QDialog::Rejected));
    QCOMPARE(m->created, nullptr);
    QCOMPARE(m->list.Layers().size(), 2);
}

void tst_DialogCustomLayerStates::AsksOnceForOneRadius()
{
    m->Execute(nullptr, [&] {
        m->Choose("cboOperation", 5);
        m->Type("spnRadius", "50");
        const int count = m->previews->size();
        m->Key("spnRadius", Qt::Key_Return);
        m->WaitIdle();
        QTest::qWait(20);
        QCOMPARE(m->previews->size(), count + 1);
        QCOMPARE(m->LastCode(), m->Code("d(A:50)"));
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerStates::TakesTheRadiusWhenItsEditingEnds()
{
    m->Execute(nullptr, [&] {
        m->Choose("cboOperation", 5);
        const int count = m->previews->size();
        m->Type("spnRadius", "70");
        m->Key("spnRadius", Qt::Key_Up);
        QCOMPARE(m->previews->size(), count);
        QTest::keyClick(m->dialog->focusWidget(), Qt::Key_Tab);
        QCOMPARE(m->previews->size(), count + 1);
        QCOMPARE(m->LastCode(), m->Code("d(A:71)"));
        m->WaitIdle();
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerStates::ConfirmsAndCancelsFromTheRadiusBoxAtOnce_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("result");

    QTest::newRow("OK") << QByteArray("btnOk") << int(QDialog::Accepted);
    QTest::newRow("Cancel") << QByteArray("btnCancel") << int(QDialog::Rejected);
}

void tst_DialogCustomLayerStates::ConfirmsAndCancelsFromTheRadiusBoxAtOnce()
{
    QFETCH(QByteArray, button);
    int requestedBefore = 0;
    int requestedAfter = 0;

    const int result = m->Execute(nullptr, [&] {
        m->Choose("cboOperation", 5);
        m->Type("spnRadius", "60");
        requestedBefore = m->previews->size();
        m->Click(button);
        QTRY_VERIFY(!m->dialog->isVisible());
        // A destroyed dialog starts no computation.
        QTest::qWait(20);
        requestedAfter = m->previews->size();
    });

    QTEST(result, "result");
    QCOMPARE(requestedAfter, requestedBefore);
    QCOMPARE(m->created ? m->created->Code() : QString(),
             result == QDialog::Accepted ? m->Code("d(A:60)") : QString());
}

void tst_DialogCustomLayerStates::StaysOpenOnEnter_data()
{
    QTest::addColumn<QByteArray>("control");

    for (const char* control : {"cboOperation", "spnRadius", "cboInputA", "txtOutputName"}) {
        QTest::newRow(control) << QByteArray(control);
    }
}

void tst_DialogCustomLayerStates::StaysOpenOnEnter()
{
    QFETCH(QByteArray, control);

    m->Execute(nullptr, [&] {
        m->Choose("cboOperation", 4);
        m->Key(control, Qt::Key_Return);
        m->WaitIdle();
        QTest::qWait(20);
        QVERIFY(m->dialog->isVisible());
        QCOMPARE(m->computations->size(), 0);
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerStates::GivesTheFocusBack()
{
    m->Execute(nullptr, [&] {
        m->WaitIdle();
        QTRY_VERIFY(m->Child("cboOperation")->hasFocus());
        QTest::keyClick(m->dialog->focusWidget(), Qt::Key_End);
        m->WaitIdle();
        QTRY_VERIFY(m->Child("cboOperation")->hasFocus());
        m->Key("spnRadius", Qt::Key_Return);
        m->WaitIdle();
        QTRY_VERIFY(m->Child("spnRadius")->hasFocus());
        // Leaving the box also requests a preview. The focus moves on nevertheless.
        QTest::keyClick(m->Child("spnRadius"), Qt::Key_Tab);
        m->WaitIdle();
        QTRY_VERIFY(m->Child("cboInputA")->hasFocus());
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerStates::LeavesTheWheelToTheFocus()
{
    m->Execute(nullptr, [&] {
        m->Choose("cboOperation", 4);
        const int count = m->previews->size();
        m->Child("txtOutputName")->setFocus();
        m->WaitIdle();
        for (const char* control : {"cboOperation", "spnRadius", "cboInputA", "cboInputB"}) {
            Turn(m->Child(control));
            QTRY_VERIFY(m->Child("txtOutputName")->hasFocus());
        }
        QCOMPARE(m->previews->size(), count);
        QCOMPARE(m->Child<QSpinBox>("spnRadius")->value(), 25);
        m->Child("spnRadius")->setFocus();
        Turn(m->Child("spnRadius"));
        QCOMPARE(m->Child<QSpinBox>("spnRadius")->value(), 24);
        m->Child("cboOperation")->setFocus();
        m->WaitIdle();
        Turn(m->Child("cboOperation"));
        QCOMPARE(m->Child<QComboBox>("cboOperation")->currentIndex(), 5);
        m->WaitIdle();
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerStates::OpensWhenLiveLayersAreComputed()
{
    constexpr int side = CustomLayerFixture::LayerSize;
    const QString code = Formula{OperationComplement, {m->first->Id()}, 0}.Code();
    Layer* land = m->Add(QStringLiteral("land"), {side / 2, 0, side / 2, side}, code);
    m->document.Do(Edits::MakeLayerLive(*land, {}));
    m->document.Live().SetFrameCost(0);
    const QImage full = FullMask({side, side});
    m->document.Do(std::make_unique<PaintMask>(QString(), *m->first, full));
    QVERIFY(m->document.Live().IsPending(*land));

    const DialogCustomLayer dialog(m->document, nullptr, &m->window);
    QVERIFY(!m->document.Live().IsPending(*land));
    QVERIFY(raster::SetBounds(land->Image()).isEmpty());
}

int main(int argc, char* argv[])
{
    OrderedApplication application(argc, argv);
    tst_DialogCustomLayerStates test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_DialogCustomLayerStates.moc"
