#include "ui/widgets/ButtonColor.h"

#include <QApplication>
#include <QColorDialog>
#include <QPainter>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace {

QImage IconImage(const ButtonColor& button, int size)
{
    return button.icon().pixmap(size, size).toImage().convertToFormat(QImage::Format_ARGB32);
}

QImage Plain(int size, const QColor& color)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

/// Clicks the button and calls a function with the dialog that opens.
void WithDialog(ButtonColor& button, const std::function<void(QColorDialog&)>& act)
{
    bool hasActed = false;
    QTimer::singleShot(0, &button, [&] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        hasActed = true;
        act(*dialog);
    });
    QTest::mouseClick(&button, Qt::LeftButton);
    QVERIFY(hasActed);
}

} // namespace

class tst_ButtonColor : public QObject
{
    Q_OBJECT

private slots:
    void StartsWhiteWithItsIcon();
    void FillsTheIconAtEveryDensity_data();
    void FillsTheIconAtEveryDensity();
    void SetsItsColor_data();
    void SetsItsColor();
    void PicksAColor();
    void OpensWithTheKeyboard();
    void IsSilentWithoutANewColor_data();
    void IsSilentWithoutANewColor();
    void SurvivesItsEndWhileTheDialogIsOpen();
};

void tst_ButtonColor::StartsWhiteWithItsIcon()
{
    const ButtonColor button;
    QCOMPARE(button.Color(), QColor(Qt::white));
    QCOMPARE(button.text(), QString());
    QCOMPARE(button.minimumSize(), QSize(32, 32));
    QCOMPARE(button.maximumSize(), QSize(32, 32));
    QVERIFY(!button.isCheckable());
    QCOMPARE(button.icon().availableSizes().first(), QSize(16, 16));
    QCOMPARE(button.iconSize(), QSize(16, 16));
    QCOMPARE(IconImage(button, 16), Plain(16, Qt::white));
    QVERIFY(!button.accessibleName().isEmpty());
    QCOMPARE(button.accessibleDescription(), QStringLiteral("#ffffff"));
}

void tst_ButtonColor::FillsTheIconAtEveryDensity_data()
{
    QTest::addColumn<int>("pixels");
    QTest::newRow("1") << 16;
    QTest::newRow("1.25") << 20;
    QTest::newRow("1.5") << 24;
    QTest::newRow("2") << 32;
    QTest::newRow("4") << 64;
}

void tst_ButtonColor::FillsTheIconAtEveryDensity()
{
    QFETCH(int, pixels);
    ButtonColor button;
    button.SetColor(qRgb(200, 100, 50), false);
    QCOMPARE(IconImage(button, pixels), Plain(pixels, QColor(200, 100, 50)));
}

void tst_ButtonColor::SetsItsColor_data()
{
    QTest::addColumn<QRgb>("rgb");
    QTest::addColumn<bool>("announce");
    QTest::addColumn<int>("announcements");
    QTest::newRow("announced") << qRgb(1, 2, 3) << true << 1;
    QTest::newRow("not announced") << qRgb(1, 2, 3) << false << 0;
    QTest::newRow("the same") << qRgb(255, 255, 255) << true << 0;
    QTest::newRow("the same with another alpha") << qRgba(255, 255, 255, 7) << true << 0;
    QTest::newRow("alpha is ignored") << qRgba(1, 2, 3, 0) << true << 1;
}

void tst_ButtonColor::SetsItsColor()
{
    QFETCH(QRgb, rgb);
    QFETCH(bool, announce);
    QFETCH(int, announcements);
    ButtonColor button;
    const QSignalSpy changed(&button, &ButtonColor::ColorChanged);
    button.SetColor(rgb, announce);
    const QColor expected(qRed(rgb), qGreen(rgb), qBlue(rgb), 255);
    QCOMPARE(button.Color(), expected);
    QCOMPARE(IconImage(button, 16), Plain(16, expected));
    QCOMPARE(button.accessibleDescription(), expected.name());
    QCOMPARE(changed.count(), announcements);
    if (announcements > 0) {
        QCOMPARE(changed.first().first().value<QColor>(), expected);
    }
}

void tst_ButtonColor::PicksAColor()
{
    ButtonColor button;
    button.SetColor(qRgb(10, 20, 30), false);
    const QSignalSpy changed(&button, &ButtonColor::ColorChanged);
    WithDialog(button, [&](QColorDialog& dialog) {
        QVERIFY(dialog.isModal());
        QVERIFY(dialog.testOption(QColorDialog::DontUseNativeDialog));
        QCOMPARE(dialog.parentWidget(), &button);
        QCOMPARE(dialog.currentColor(), QColor(10, 20, 30));
        dialog.setCurrentColor(QColor(40, 50, 60));
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    QCOMPARE(button.Color(), QColor(40, 50, 60));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().value<QColor>(), QColor(40, 50, 60));
}

void tst_ButtonColor::OpensWithTheKeyboard()
{
    ButtonColor button;
    bool isOpen = false;
    QTimer::singleShot(0, &button, [&] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        isOpen = true;
        dialog->reject();
    });
    QTest::keyClick(&button, Qt::Key_Space);
    QVERIFY(isOpen);
}

void tst_ButtonColor::IsSilentWithoutANewColor_data()
{
    QTest::addColumn<QColor>("picked");
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("the shown one accepted") << QColor(Qt::white) << Qt::Key_Return;
    QTest::newRow("another one rejected") << QColor(Qt::red) << Qt::Key_Escape;
}

void tst_ButtonColor::IsSilentWithoutANewColor()
{
    QFETCH(QColor, picked);
    QFETCH(Qt::Key, key);
    ButtonColor button;
    const QSignalSpy changed(&button, &ButtonColor::ColorChanged);
    WithDialog(button, [&](QColorDialog& dialog) {
        dialog.setCurrentColor(picked);
        QTest::keyClick(&dialog, key);
    });
    QCOMPARE(changed.count(), 0);
    QCOMPARE(button.Color(), QColor(Qt::white));
}

void tst_ButtonColor::SurvivesItsEndWhileTheDialogIsOpen()
{
    auto button = std::make_unique<ButtonColor>();
    QPointer<QColorDialog> dialog;
    QTimer::singleShot(0, qApp, [&] {
        dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        button.reset();
    });
    button->click();
    QVERIFY(!button);
    QVERIFY(!dialog);
}

QTEST_MAIN(tst_ButtonColor)
#include "tst_ButtonColor.moc"
