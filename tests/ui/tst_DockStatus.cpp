#include "ui/DockStatus.h"

#include "tests/support/PaintCounter.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QLayout>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QProgressBar>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QTest>
#include <QTimer>

namespace {

QListView* List(const DockStatus& dock)
{
    return dock.findChild<QListView*>(QStringLiteral("messageListView"));
}

QProgressBar* Bar(const DockStatus& dock)
{
    return dock.findChild<QProgressBar*>(QStringLiteral("pgrStatus"));
}

/// The widgets beside the progress bar.
QSpacerItem* Spacer(const DockStatus& dock)
{
    const auto* row = dock.findChild<QHBoxLayout*>(QStringLiteral("horizontalLayout"));
    return row->itemAt(0)->spacerItem();
}

const QStandardItem* Line(const DockStatus& dock, int row)
{
    return qobject_cast<QStandardItemModel*>(List(dock)->model())->item(row);
}

} // namespace

class tst_DockStatus : public QObject
{
    Q_OBJECT

private slots:
    void ColorsMessagesByType_data();
    void ColorsMessagesByType();
    void ScrollsToTheNewestMessage();
    void ShowsTheNewestOfWhatWasSaidBeforeItWasShown();
    void ScrollsToTheEndOfTheLongestLine();
    void ShowsAMessageWithLineBreaksInOneLine();
    void PaintsMessagesInAHurryTogether();
    void PaintsTheLastMessageBeforeItGetsBusy();
    void PaintsAtOnceWhatIsAnnounced();
    void StaysWhereOlderMessagesAreRead();
    void RunsBusy();
    void MakesRoomWhileTheBarIsHidden();
    void TellsWhetherTheBarIsOnScreen();
    void CopiesAllMessages();
};

void tst_DockStatus::ColorsMessagesByType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QBrush>("brush");

    QTest::newRow("information") << 0 << QBrush();
    QTest::newRow("success") << 1 << QBrush(Qt::darkGreen, Qt::SolidPattern);
    QTest::newRow("error") << 2 << QBrush(Qt::red, Qt::SolidPattern);
    QTest::newRow("another number") << 7 << QBrush();
    QTest::newRow("a negative number") << -1 << QBrush();
}

void tst_DockStatus::ColorsMessagesByType()
{
    QFETCH(int, type);
    QFETCH(QBrush, brush);
    DockStatus dock;

    dock.AddMessage(QStringLiteral("12:00:00 - done"), static_cast<Log::MessageType>(type));

    QCOMPARE(List(dock)->model()->rowCount(), 1);
    QCOMPARE(Line(dock, 0)->text(), QStringLiteral("12:00:00 - done"));
    QCOMPARE(Line(dock, 0)->foreground(), brush);
}

void tst_DockStatus::ScrollsToTheNewestMessage()
{
    DockStatus dock;
    dock.resize(300, 200);
    dock.show();

    for (int i = 0; i < 200; ++i) {
        dock.AddMessage(QStringLiteral("message %1").arg(i), Log::Info);
        const QScrollBar* bar = List(dock)->verticalScrollBar();
        QCOMPARE(bar->value(), bar->maximum());
    }

    QVERIFY(List(dock)->verticalScrollBar()->maximum() > 100);
    QVERIFY(List(dock)->visualRect(Line(dock, 199)->index()).bottom() <=
            List(dock)->viewport()->height());
}

void tst_DockStatus::ShowsTheNewestOfWhatWasSaidBeforeItWasShown()
{
    DockStatus dock;
    dock.resize(300, 200);
    for (int i = 0; i < 50; ++i) {
        dock.AddMessage(QStringLiteral("message %1").arg(i), Log::Info);
    }

    dock.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dock));

    const QRect newest = List(dock)->visualRect(Line(dock, 49)->index());
    QVERIFY(List(dock)->viewport()->rect().intersects(newest));
    QVERIFY(newest.bottom() <= List(dock)->viewport()->height());
}

void tst_DockStatus::ScrollsToTheEndOfTheLongestLine()
{
    DockStatus dock;
    dock.resize(300, 200);
    dock.show();
    dock.AddMessage(QStringLiteral("short"), Log::Info);
    dock.AddMessage(QString(200, QLatin1Char('m')), Log::Info);
    dock.AddMessage(QStringLiteral("short again"), Log::Info);
    QCoreApplication::processEvents();

    const int width = List(dock)->fontMetrics().horizontalAdvance(QString(200, QLatin1Char('m')));
    QVERIFY(List(dock)->visualRect(Line(dock, 1)->index()).width() >= width);
    QVERIFY(List(dock)->horizontalScrollBar()->maximum() > 0);
}

void tst_DockStatus::ShowsAMessageWithLineBreaksInOneLine()
{
    DockStatus dock;
    dock.show();
    // The mouse may be on the first line.
    dock.AddMessage(QStringLiteral("first"), Log::Info);
    dock.AddMessage(QStringLiteral("Layer 'a\nb' saved."), Log::Info);
    dock.AddMessage(QStringLiteral("Layer 'a b' saved."), Log::Info);
    QCoreApplication::processEvents();

    QCOMPARE(Line(dock, 1)->text(), QStringLiteral("Layer 'a\nb' saved."));
    const QRect broken = List(dock)->visualRect(Line(dock, 1)->index());
    const QRect whole = List(dock)->visualRect(Line(dock, 2)->index());
    QVERIFY(broken.height() < 2 * List(dock)->fontMetrics().height());
    const QImage picture = List(dock)->viewport()->grab().toImage();
    QCOMPARE(picture.copy(broken), picture.copy(whole));
}

void tst_DockStatus::PaintsMessagesInAHurryTogether()
{
    DockStatus dock;
    dock.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dock));
    const PaintCounter paints(List(dock)->viewport());

    int messages = 0;
    // The last one waits for the next frame.
    while (messages < 200 || List(dock)->updatesEnabled()) {
        dock.AddMessage(QStringLiteral("message %1").arg(++messages), Log::Info);
        QCoreApplication::processEvents();
    }

    const int paintsInAHurry = paints.Count();
    QVERIFY(paintsInAHurry >= 1);
    QVERIFY(paintsInAHurry < messages);
    QTRY_VERIFY(paints.Count() > paintsInAHurry);
    QTRY_VERIFY(List(dock)->updatesEnabled());
}

void tst_DockStatus::PaintsTheLastMessageBeforeItGetsBusy()
{
    DockStatus dock;
    dock.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dock));
    dock.AddMessage(QStringLiteral("first"), Log::Info);
    QCoreApplication::processEvents();
    dock.AddMessage(QStringLiteral("last"), Log::Info);
    const PaintCounter paints(List(dock)->viewport());

    dock.SetBusy();

    QCOMPARE(paints.Count(), 1);
}

void tst_DockStatus::PaintsAtOnceWhatIsAnnounced()
{
    DockStatus dock;
    dock.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dock));
    const PaintCounter paints(List(dock)->viewport());
    for (int i = 0; i < 5; ++i) {
        dock.AddMessage(QStringLiteral("Layer saved."), Log::Success);
        QCoreApplication::processEvents();
    }
    const int paintsBefore = paints.Count();

    dock.AddMessage(QStringLiteral("Processing binary map ..."), Log::Info);
    QCoreApplication::processEvents();

    QCOMPARE(paints.Count(), paintsBefore + 1);
}

void tst_DockStatus::StaysWhereOlderMessagesAreRead()
{
    DockStatus dock;
    dock.resize(300, 200);
    dock.show();
    for (int i = 0; i < 100; ++i) {
        dock.AddMessage(QStringLiteral("message %1").arg(i), Log::Info);
    }
    QScrollBar* bar = List(dock)->verticalScrollBar();
    bar->setValue(10);

    dock.resize(300, 150);
    QCoreApplication::processEvents();
    QCOMPARE(bar->value(), 10);

    dock.AddMessage(QStringLiteral("the newest"), Log::Info);
    QCOMPARE(bar->value(), bar->maximum());
    dock.resize(300, 200);
    QCoreApplication::processEvents();
    QCOMPARE(bar->value(), bar->maximum());
}

void tst_DockStatus::RunsBusy()
{
    DockStatus dock;
    Bar(dock)->setRange(0, 10);
    Bar(dock)->setValue(5);

    dock.SetBusy();

    QCOMPARE(Bar(dock)->minimum(), 0);
    QCOMPARE(Bar(dock)->maximum(), 0);
    QVERIFY(Bar(dock)->value() <= 0);
}

void tst_DockStatus::MakesRoomWhileTheBarIsHidden()
{
    DockStatus dock;
    dock.show();

    dock.SetProgressVisible(false);

    QVERIFY(Bar(dock)->isHidden());
    QCOMPARE(Spacer(dock)->sizeHint(), QSize(1, 1));
    QCOMPARE(Spacer(dock)->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    QCOMPARE(Spacer(dock)->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);

    dock.SetProgressVisible(true);

    QVERIFY(!Bar(dock)->isHidden());
    QCOMPARE(Spacer(dock)->sizeHint(), QSize(0, 0));
    QCOMPARE(Spacer(dock)->sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    QCOMPARE(Spacer(dock)->sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
}

void tst_DockStatus::TellsWhetherTheBarIsOnScreen()
{
    QMainWindow window;
    auto* dock = new DockStatus(&window);
    window.addDockWidget(Qt::BottomDockWidgetArea, dock);
    window.show();
    dock->SetProgressVisible(true);
    QVERIFY(dock->IsProgressOnScreen());

    dock->hide();
    QVERIFY(!dock->IsProgressOnScreen());

    dock->show();
    dock->SetProgressVisible(false);
    QVERIFY(!dock->IsProgressOnScreen());
}

void tst_DockStatus::CopiesAllMessages()
{
    DockStatus dock;
    dock.show();
    dock.AddMessage(QStringLiteral("12:00:00 - one"), Log::Info);
    dock.AddMessage(QStringLiteral("12:00:01 - two"), Log::Error);
    bool wasShown = false;
    QTimer::singleShot(0, &dock, [&wasShown] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        QVERIFY(menu);
        QCOMPARE(menu->actions().size(), 1);
        QCOMPARE(menu->actions().constFirst()->text(), QStringLiteral("Copy all"));
        QTest::mouseClick(menu, Qt::LeftButton, {},
                          menu->actionGeometry(menu->actions().constFirst()).center());
        wasShown = true;
    });

    QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5});
    QApplication::sendEvent(List(dock)->viewport(), &event);

    QVERIFY(wasShown);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("12:00:00 - one\n12:00:01 - two"));
}

QTEST_MAIN(tst_DockStatus)
#include "tst_DockStatus.moc"
