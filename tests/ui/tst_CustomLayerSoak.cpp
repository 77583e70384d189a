#include "tests/support/CustomLayerFixture.h"
#include "tests/support/OrderedEvents.h"
#include "tests/support/Random.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

namespace {

int ThreadCount()
{
    return QDir(QStringLiteral("/proc/self/task"))
        .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
        .size();
}

} // namespace

/// Opens the dialog repeatedly and closes it in every way. QUILLMAP_COMPUTATIONS sets how many
/// computations are abandoned at a random moment.
class tst_CustomLayerSoak : public QObject
{
    Q_OBJECT

private slots:
    void LeavesNothingBehind();
    void EndsWhileItComputes();
};

void tst_CustomLayerSoak::LeavesNothingBehind()
{
    constexpr int rounds = 200;
    constexpr int ways = 4;
    CustomLayerFixture fixture;
    Layer* modified = fixture.Add("modified", {5, 5, 20, 20});
    int refusedCount = 0;
    int widgetCount = 0;
    int threadCount = 0;
    const auto refuseToClose = [&] {
        QVERIFY(!fixture.IsIdle());
        QVERIFY(!fixture.dialog->close());
        QTest::keyClick(fixture.dialog, Qt::Key_Escape);
        QVERIFY(fixture.dialog->isVisible());
        ++refusedCount;
    };

    for (int round = 0; round < rounds; ++round) {
        const int way = round % ways;
        const int operation = round / ways % 8;
        const int result = fixture.Execute(way == 1 ? modified : nullptr, [&] {
            fixture.WaitIdle();
            fixture.Child<QComboBox>("cboOperation")->setCurrentIndex(operation);
            // During the computation and while it ends.
            QTimer closer;
            QObject::connect(&closer, &QTimer::timeout, fixture.dialog, [&] {
                if (!fixture.IsIdle()) {
                    refuseToClose();
                }
            });
            closer.start(1);
            fixture.WaitIdle();
            fixture.Key("cboOperation", operation < 7 ? Qt::Key_Down : Qt::Key_Up);
            refuseToClose();
            fixture.WaitIdle();
            closer.stop();
            if (way < 2) {
                fixture.Type("txtOutputName", QString::number(round));
                fixture.Click("btnOk");
                refuseToClose();
            } else if (way == 2) {
                fixture.Click("btnCancel");
            } else {
                QVERIFY(fixture.dialog->close());
            }
        });
        QVERIFY(!QTest::currentTestFailed());
        QCOMPARE(result, int(way < 2 ? QDialog::Accepted : QDialog::Rejected));
        QCOMPARE(fixture.created != nullptr, way == 0);
        if (fixture.created) {
            fixture.list.RemoveLayer(fixture.created->Id());
        }
        QCOMPARE(fixture.list.Layers().size(), 3);
        // Objects shared by all dialogs exist after the first four.
        if (round == ways) {
            widgetCount = QApplication::allWidgets().size();
            threadCount = ThreadCount();
        }
    }

    QVERIFY(refusedCount >= rounds);
    QCOMPARE(QApplication::allWidgets().size(), widgetCount);
    // A thread that has ended is listed for a moment.
    QTRY_VERIFY(ThreadCount() <= threadCount);
    QCOMPARE(fixture.log.Messages(), QStringList());
}

void tst_CustomLayerSoak::EndsWhileItComputes()
{
    bool isSet = false;
    const int wanted = qEnvironmentVariableIntValue("QUILLMAP_COMPUTATIONS", &isSet);
    const int rounds = isSet ? wanted : 50;
    CustomLayerFixture fixture;
    Random random;
    const int threadCount = ThreadCount();
    for (int round = 0; round < rounds; ++round) {
        DialogCustomLayer dialog(fixture.document, round % 2 == 0 ? fixture.second : nullptr,
                                 &fixture.window);
        if (random.Below(3) > 0) {
            dialog.show();
            // The largest number of events between a request and its result.
            QTest::qWait(random.Below(6));
        }
        if (random.Below(3) == 0) {
            dialog.ConfirmDialog();
        }
    }
    // Posted changes are made, or dropped with the list.
    QCoreApplication::processEvents();
    QTRY_VERIFY(ThreadCount() <= threadCount);
}

int main(int argc, char* argv[])
{
    OrderedApplication application(argc, argv);
    tst_CustomLayerSoak test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_CustomLayerSoak.moc"
