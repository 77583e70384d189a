#include "ui/widgets/GroupBoxColor.h"

#include "ui/widgets/ButtonColor.h"

#include <QApplication>
#include <QColorDialog>
#include <QLabel>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

namespace {

ButtonColor* Button(const GroupBoxColor& box)
{
    return box.findChild<ButtonColor*>(QStringLiteral("button"));
}

QSlider* Slider(const GroupBoxColor& box)
{
    return box.findChild<QSlider*>(QStringLiteral("slider"));
}

QString LabelText(const GroupBoxColor& box)
{
    return box.findChild<QLabel*>(QStringLiteral("label"))->text();
}

void Wheel(QWidget* widget)
{
    const QPointF centre = widget->rect().center();
    QWheelEvent event(centre, widget->mapToGlobal(centre.toPoint()), {}, {0, 120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

} // namespace

class tst_GroupBoxColor : public QObject
{
    Q_OBJECT

private slots:
    void FitsItsSize();
    void WritesThePercentage_data();
    void WritesThePercentage();
    void FollowsTheKeyboard();
    void SetsColorAndAlpha();
    void SetsAlphaAndRgb_data();
    void SetsAlphaAndRgb();
    void KeepsTheFormTextUntilToldOtherwise();
    void ForwardsThePickedColor();
    void TakesTheWheelOnlyWithFocus();
    void TabsInTheOrderOfTheEye();
};

void tst_GroupBoxColor::FitsItsSize()
{
    GroupBoxColor box;
    box.setTitle(QStringLiteral("Color and opacity"));
    box.SetColor(255, qRgb(0, 0, 0));
    box.show();
    const QRect contents = box.contentsRect();
    const auto children = box.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (const auto* child : children) {
        QVERIFY2(contents.contains(child->geometry()), qPrintable(child->objectName()));
        QVERIFY(child->width() >= child->minimumSizeHint().width());
        QVERIFY(child->height() >= child->minimumSizeHint().height());
    }
    QCOMPARE(Button(box)->size(), QSize(32, 32));
    QVERIFY(Button(box)->geometry().right() < Slider(box)->geometry().left());
    const int length = Slider(box)->width();
    Slider(box)->setValue(0);
    QCoreApplication::processEvents();
    QCOMPARE(Slider(box)->width(), length);
}

void tst_GroupBoxColor::WritesThePercentage_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0 << QStringLiteral("<strong>0%</strong>");
    QTest::newRow("1") << 1 << QStringLiteral("<strong>0%</strong>");
    QTest::newRow("2") << 2 << QStringLiteral("<strong>1%</strong>");
    QTest::newRow("127") << 127 << QStringLiteral("<strong>50%</strong>");
    QTest::newRow("129") << 129 << QStringLiteral("<strong>51%</strong>");
    QTest::newRow("254") << 254 << QStringLiteral("<strong>100%</strong>");
    QTest::newRow("255") << 255 << QStringLiteral("<strong>100%</strong>");
}

void tst_GroupBoxColor::WritesThePercentage()
{
    QFETCH(int, value);
    QFETCH(QString, text);
    GroupBoxColor box;
    const QSignalSpy changed(&box, &GroupBoxColor::AlphaChanged);
    Slider(box)->setValue(value);
    QCOMPARE(LabelText(box), text);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().at(0).toInt(), value);
    QCOMPARE(changed.first().at(1).toFloat(), static_cast<float>(value) / 255.0F);
}

void tst_GroupBoxColor::FollowsTheKeyboard()
{
    GroupBoxColor box;
    const QSignalSpy changed(&box, &GroupBoxColor::AlphaChanged);
    QTest::keyClick(Slider(box), Qt::Key_Home);
    QTest::keyClick(Slider(box), Qt::Key_Right);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.at(0).at(0).toInt(), 0);
    QCOMPARE(changed.at(1).at(0).toInt(), 1);
    QCOMPARE(LabelText(box), QStringLiteral("<strong>0%</strong>"));
}

void tst_GroupBoxColor::SetsColorAndAlpha()
{
    GroupBoxColor box;
    const QSignalSpy alphaChanged(&box, &GroupBoxColor::AlphaChanged);
    const QSignalSpy colorChanged(&box, &GroupBoxColor::ColorChanged);
    box.SetColor(QColor(10, 20, 30, 51));
    QCOMPARE(Slider(box)->value(), 51);
    QCOMPARE(LabelText(box), QStringLiteral("<strong>20%</strong>"));
    QCOMPARE(Button(box)->Color(), QColor(10, 20, 30));
    QCOMPARE(alphaChanged.count(), 1);
    QCOMPARE(alphaChanged.first().at(0).toInt(), 51);
    QCOMPARE(alphaChanged.first().at(1).toFloat(), 51.0F / 255.0F);
    box.SetColor(QColor(40, 20, 30, 51));
    QCOMPARE(alphaChanged.count(), 1);
    QCOMPARE(colorChanged.count(), 0);
    QCOMPARE(Button(box)->Color(), QColor(40, 20, 30));
}

void tst_GroupBoxColor::SetsAlphaAndRgb_data()
{
    QTest::addColumn<int>("alpha");
    QTest::addColumn<int>("shown");
    QTest::newRow("within") << 7 << 7;
    QTest::newRow("below") << -1 << 0;
    QTest::newRow("above") << 256 << 255;
}

void tst_GroupBoxColor::SetsAlphaAndRgb()
{
    QFETCH(int, alpha);
    QFETCH(int, shown);
    GroupBoxColor box;
    const QSignalSpy alphaChanged(&box, &GroupBoxColor::AlphaChanged);
    box.SetColor(alpha, qRgba(1, 2, 3, 99));
    QCOMPARE(Slider(box)->value(), shown);
    QCOMPARE(Button(box)->Color(), QColor(1, 2, 3, 255));
    QCOMPARE(alphaChanged.count(), 1);
    QCOMPARE(alphaChanged.first().at(0).toInt(), shown);
}

void tst_GroupBoxColor::KeepsTheFormTextUntilToldOtherwise()
{
    GroupBoxColor box;
    const QSignalSpy alphaChanged(&box, &GroupBoxColor::AlphaChanged);
    Slider(box)->setValue(128);
    QCOMPARE(LabelText(box), QStringLiteral("<b>50%</b>"));
    box.SetColor(128, qRgb(0, 0, 0));
    QCOMPARE(LabelText(box), QStringLiteral("<strong>50%</strong>"));
    QCOMPARE(alphaChanged.count(), 0);
}

void tst_GroupBoxColor::ForwardsThePickedColor()
{
    GroupBoxColor box;
    const QSignalSpy colorChanged(&box, &GroupBoxColor::ColorChanged);
    QTimer::singleShot(0, &box, [] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        dialog->setCurrentColor(QColor(3, 4, 5));
        dialog->accept();
    });
    QTest::mouseClick(Button(box), Qt::LeftButton);
    QCOMPARE(colorChanged.count(), 1);
    QCOMPARE(colorChanged.first().first().value<QColor>(), QColor(3, 4, 5));
}

void tst_GroupBoxColor::TakesTheWheelOnlyWithFocus()
{
    GroupBoxColor box;
    box.show();
    QApplication::setActiveWindow(&box);
    QVERIFY(QTest::qWaitForWindowActive(&box));
    Button(box)->setFocus();
    Wheel(Slider(box));
    QCOMPARE(Slider(box)->value(), 128);
    QVERIFY(!Slider(box)->hasFocus());
    Slider(box)->setFocus();
    Wheel(Slider(box));
    QVERIFY(Slider(box)->value() != 128);
}

void tst_GroupBoxColor::TabsInTheOrderOfTheEye()
{
    GroupBoxColor box;
    box.show();
    QApplication::setActiveWindow(&box);
    QVERIFY(QTest::qWaitForWindowActive(&box));
    Button(box)->setFocus();
    QTest::keyClick(Button(box), Qt::Key_Tab);
    QVERIFY(Slider(box)->hasFocus());
}

QTEST_MAIN(tst_GroupBoxColor)
#include "tst_GroupBoxColor.moc"
