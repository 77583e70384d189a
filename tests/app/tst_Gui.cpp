#include "app/Gui.h"

#include <QTest>
#include <QWidget>

class tst_Gui : public QObject
{
    Q_OBJECT

private slots:
    void RunsWhileThereIsATopLevelWidget();
    void WindowsNeedNotBeShown();
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

QTEST_MAIN(tst_Gui)
#include "tst_Gui.moc"
