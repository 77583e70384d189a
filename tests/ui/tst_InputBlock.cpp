#include "ui/InputBlock.h"

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

class tst_InputBlock : public QObject
{
    Q_OBJECT

private slots:
    void KeepsKeysAndClicksAwayWhileItLives();
    void LetsAWindowClose();
    void LetsADialogAnswer();
};

void tst_InputBlock::KeepsKeysAndClicksAwayWhileItLives()
{
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* edit = new QLineEdit;
    auto* button = new QPushButton;
    layout->addWidget(edit);
    layout->addWidget(button);
    window.show();
    const QSignalSpy clicks(button, &QPushButton::clicked);
    auto block = std::make_unique<InputBlock>();

    QTest::keyClicks(edit, "abc");
    QTest::mouseClick(button, Qt::LeftButton);

    QCOMPARE(edit->text(), QString());
    QCOMPARE(clicks.size(), 0);

    block.reset();
    QTest::keyClicks(edit, "abc");
    QTest::mouseClick(button, Qt::LeftButton);

    QCOMPARE(edit->text(), "abc");
    QCOMPARE(clicks.size(), 1);
}

void tst_InputBlock::LetsAWindowClose()
{
    QWidget window;
    window.show();
    const InputBlock block;

    QVERIFY(window.close());
    QVERIFY(!window.isVisible());
}

void tst_InputBlock::LetsADialogAnswer()
{
    QWidget window;
    window.show();
    QDialog dialog(&window);
    auto* button = new QPushButton(&dialog);
    connect(button, &QPushButton::clicked, &dialog, &QDialog::accept);
    const InputBlock block;
    dialog.setModal(true);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));

    QTest::mouseClick(button, Qt::LeftButton);

    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

QTEST_MAIN(tst_InputBlock)
#include "tst_InputBlock.moc"
