#include "app/Gui.h"

#include <QCursor>
#include <QEvent>
#include <QTest>
#include <QWidget>

namespace {

/// Counts the moves of the mouse over it.
class MoveCounter : public QWidget
{
public:
    MoveCounter() { setMouseTracking(true); }

    int count = 0;

protected:
    void mouseMoveEvent(QMouseEvent* /*event*/) override { ++count; }
};

} // namespace

class tst_Gui : public QObject
{
    Q_OBJECT

private slots:
    void RunsWhileThereIsATopLevelWidget();
    void WindowsNeedNotBeShown();
    void ReportsEveryMouseMove();
};

void tst_Gui::RunsWhileThereIsATopLevelWidget()
{
    QVERIFY(!IsGuiRunning());
    {
        const QWidget first;
        {
            const QWidget second;
            QVERIFY(IsGuiRunning());
        }
        QVERIFY(IsGuiRunning());
    }
    QVERIFY(!IsGuiRunning());
}

void tst_Gui::WindowsNeedNotBeShown()
{
    QWidget window;
    QVERIFY(IsGuiRunning());
    window.show();
    QVERIFY(IsGuiRunning());
    window.hide();
    QVERIFY(IsGuiRunning());
}

void tst_Gui::ReportsEveryMouseMove()
{
    KeepEveryMouseMove();
    MoveCounter widget;
    widget.setGeometry(100, 100, 400, 300);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    const QPoint start = widget.mapToGlobal({20, 20});
    QCursor::setPos(start);
    QTRY_COMPARE(QCursor::pos(), start);
    QTRY_VERIFY(widget.underMouse());
    widget.count = 0;
    constexpr int moves = 100;
    for (int i = 1; i <= moves; ++i) {
        QCursor::setPos(start + QPoint(i, i));
    }
    QTRY_COMPARE(widget.count, moves);
}

QTEST_MAIN(tst_Gui)
#include "tst_Gui.moc"
