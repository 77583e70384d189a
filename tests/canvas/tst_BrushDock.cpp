#include "canvas/BrushDock.h"

#include "ui/widgets/ButtonColor.h"
#include "ui/widgets/GroupBoxColor.h"

#include <QApplication>
#include <QColorDialog>
#include <QLabel>
#include <QSignalSpy>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionGroupBox>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

#include <limits>

namespace {

template <typename Widget>
Widget* Child(const QWidget& parent, const char* name)
{
    return parent.findChild<Widget*>(QLatin1String(name));
}

QString Text(const BrushDock& dock, const char* label)
{
    return Child<QLabel>(dock, label)->text();
}

/// Clicks a colour button and picks a colour in its dialog.
void Pick(QWidget* button, const QColor& color)
{
    QTimer::singleShot(0, button, [color] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        dialog->setCurrentColor(color);
        dialog->accept();
    });
    QTest::mouseClick(button, Qt::LeftButton);
}

void ClickTheCheckBox(QGroupBox* box)
{
    QStyleOptionGroupBox option;
    option.initFrom(box);
    option.subControls = QStyle::SC_GroupBoxCheckBox | QStyle::SC_GroupBoxLabel;
    option.text = box->title();
    const QRect rect = box->style()->subControlRect(QStyle::CC_GroupBox, &option,
                                                    QStyle::SC_GroupBoxCheckBox, box);
    QTest::mouseClick(box, Qt::LeftButton, {}, rect.center());
}

void Wheel(QWidget* widget)
{
    const QPointF centre = widget->rect().center();
    QWheelEvent event(centre, widget->mapToGlobal(centre.toPoint()), {}, {0, 120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

} // namespace

class tst_BrushDock : public QObject
{
    Q_OBJECT

private slots:
    void ShowsTheInitialBrush();
    void FitsItsSize();
    void SetsTheSize_data();
    void SetsTheSize();
    void GrowsAndShrinks_data();
    void GrowsAndShrinks();
    void SizesWithTheSlider();
    void PicksTheCursorColor();
    void SlidesTheCursorAlpha();
    void PicksTheOutlineColor();
    void TakesTheOutlineColorWithItsAlpha();
    void SlidesTheOutlineWidth();
    void ClicksTheOutline();
    void SetsThePaintColor();
    void RefreshesFromTheBrush();
    void ClampsWhatTheSlidersCannotShow();
    void TakesTheWheelOnlyWithFocus();
    void TabsInTheOrderOfTheEye();
};

void tst_BrushDock::ShowsTheInitialBrush()
{
    Brush brush;
    BrushDock dock(brush);
    const auto* box = Child<GroupBoxColor>(dock, "gboBrushColor");
    QCOMPARE(Child<QSlider>(*box, "slider")->value(), 255);
    QCOMPARE(Child<QLabel>(*box, "label")->text(), QStringLiteral("<strong>100%</strong>"));
    QCOMPARE(Child<ButtonColor>(*box, "button")->Color(), QColor(Qt::white));
    QCOMPARE(Child<ButtonColor>(dock, "btnOutlineColor")->Color(), QColor(Qt::black));
    QVERIFY(dock.GetBrush()->HasOutline());
    QVERIFY(!Child<QGroupBox>(dock, "gboBrushOutline")->isChecked());
    QCOMPARE(dock.GetBrush()->Size(), 32);
}

void tst_BrushDock::FitsItsSize()
{
    Brush brush;
    BrushDock dock(brush);
    dock.SetSize(256);
    dock.show();
    const auto widgets = dock.widget()->findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        const auto* parent = widget->parentWidget();
        QVERIFY2(parent->contentsRect().contains(widget->geometry()),
                 qPrintable(widget->objectName()));
        QVERIFY2(widget->width() >= widget->minimumSizeHint().width() &&
                     widget->height() >= widget->minimumSizeHint().height(),
                 qPrintable(widget->objectName()));
    }
    QCOMPARE(Child<QWidget>(dock, "btnOutlineColor")->size(), QSize(32, 32));
    QVERIFY(dock.widget()->geometry().bottom() < 250);
    const int first = Child<QWidget>(dock, "gboBrushSize")->geometry().bottom();
    QVERIFY(first < Child<QWidget>(dock, "gboBrushColor")->y());
}

void tst_BrushDock::SetsTheSize_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("expected");
    QTest::newRow("another") << 50 << 50;
    QTest::newRow("the same") << 32 << 32;
    QTest::newRow("largest") << 256 << 256;
    QTest::newRow("too large") << 257 << 256;
    QTest::newRow("smallest") << 1 << 1;
    QTest::newRow("too small") << 0 << 1;
    QTest::newRow("negative") << -1000 << 1;
}

void tst_BrushDock::SetsTheSize()
{
    QFETCH(int, size);
    QFETCH(int, expected);
    Brush brush;
    BrushDock dock(brush);
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    dock.SetSize(size);
    QCOMPARE(dock.GetBrush()->Size(), expected);
    QCOMPARE(dock.GetBrush()->Radius(), static_cast<float>(expected) * 0.5F);
    QCOMPARE(Child<QSlider>(dock, "sldBrushSize")->value(), expected);
    QCOMPARE(Text(dock, "lblBrushSize"), QString::number(expected));
    QCOMPARE(changed.count(), 1);
}

void tst_BrushDock::GrowsAndShrinks_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("grown");
    QTest::addColumn<int>("shrunk");
    QTest::newRow("within") << 100 << 125 << 75;
    QTest::newRow("up to the largest") << 250 << 256 << 225;
    QTest::newRow("down to the smallest") << 20 << 45 << 1;
}

void tst_BrushDock::GrowsAndShrinks()
{
    QFETCH(int, start);
    Brush brush;
    BrushDock dock(brush);
    dock.SetSize(start);
    dock.GrowBy(25);
    QTEST(dock.GetBrush()->Size(), "grown");
    dock.SetSize(start);
    dock.ShrinkBy(25);
    QTEST(dock.GetBrush()->Size(), "shrunk");
    dock.GetBrush()->SetSize(std::numeric_limits<int>::max());
    dock.GrowBy(25);
    QCOMPARE(dock.GetBrush()->Size(), 256);
    dock.GetBrush()->SetSize(std::numeric_limits<int>::min());
    dock.ShrinkBy(25);
    QCOMPARE(dock.GetBrush()->Size(), 1);
}

void tst_BrushDock::SizesWithTheSlider()
{
    Brush brush;
    BrushDock dock(brush);
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    auto* slider = Child<QSlider>(dock, "sldBrushSize");
    QTest::keyClick(slider, Qt::Key_Right);
    QCOMPARE(dock.GetBrush()->Size(), 33);
    QCOMPARE(Text(dock, "lblBrushSize"), QStringLiteral("33"));
    QTest::keyClick(slider, Qt::Key_End);
    QCOMPARE(dock.GetBrush()->Size(), 256);
    QCOMPARE(changed.count(), 2);
}

void tst_BrushDock::PicksTheCursorColor()
{
    Brush brush;
    BrushDock dock(brush);
    dock.SetAlpha(77, 0.5F);
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    Pick(Child<GroupBoxColor>(dock, "gboBrushColor")->findChild<ButtonColor*>(), QColor(9, 8, 7));
    QCOMPARE(dock.GetBrush()->Color(), QColor(9, 8, 7, 77));
    QCOMPARE(changed.count(), 1);
    dock.SetColor(QColor(1, 2, 3, 4));
    QCOMPARE(dock.GetBrush()->Color(), QColor(1, 2, 3, 77));
    QCOMPARE(changed.count(), 2);
}

void tst_BrushDock::SlidesTheCursorAlpha()
{
    Brush brush;
    BrushDock dock(brush);
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    QTest::keyClick(Child<QSlider>(*Child<GroupBoxColor>(dock, "gboBrushColor"), "slider"),
                    Qt::Key_Left);
    QCOMPARE(dock.GetBrush()->Color(), QColor(255, 255, 255, 254));
    QCOMPARE(changed.count(), 1);
    dock.SetAlpha(10, 0.9F);
    QCOMPARE(dock.GetBrush()->Color().alpha(), 10);
    QCOMPARE(changed.count(), 2);
}

void tst_BrushDock::PicksTheOutlineColor()
{
    Brush brush;
    BrushDock dock(brush);
    dock.GetBrush()->SetOutlineColor(QColor(0, 0, 0, 5));
    auto* box = Child<QGroupBox>(dock, "gboBrushOutline");
    ClickTheCheckBox(box); // Its contents are disabled while it is unchecked.
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    Pick(Child<ButtonColor>(dock, "btnOutlineColor"), QColor(9, 8, 7));
    QCOMPARE(dock.GetBrush()->OutlineColor(), QColor(9, 8, 7, 255));
    QCOMPARE(changed.count(), 1);
}

void tst_BrushDock::TakesTheOutlineColorWithItsAlpha()
{
    Brush brush;
    BrushDock dock(brush);
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    dock.SetOutlineColor(QColor(1, 2, 3, 4));
    QCOMPARE(dock.GetBrush()->OutlineColor(), QColor(1, 2, 3, 4));
    QCOMPARE(changed.count(), 1);
}

void tst_BrushDock::SlidesTheOutlineWidth()
{
    Brush brush;
    BrushDock dock(brush);
    ClickTheCheckBox(Child<QGroupBox>(dock, "gboBrushOutline"));
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    QTest::keyClick(Child<QSlider>(dock, "sldBrushOutlineWidth"), Qt::Key_PageUp);
    QCOMPARE(dock.GetBrush()->OutlineWidth(), 3);
    QCOMPARE(Text(dock, "lblBrushOutlineWidth"), QStringLiteral("3"));
    QCOMPARE(changed.count(), 1);
}

void tst_BrushDock::ClicksTheOutline()
{
    Brush brush;
    BrushDock dock(brush);
    dock.show();
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    auto* box = Child<QGroupBox>(dock, "gboBrushOutline");
    auto* button = Child<ButtonColor>(dock, "btnOutlineColor");
    QVERIFY(!button->isEnabled());
    ClickTheCheckBox(box); // From now on the box matches the brush.
    QVERIFY(dock.GetBrush()->HasOutline());
    QVERIFY(button->isEnabled());
    ClickTheCheckBox(box);
    QVERIFY(!dock.GetBrush()->HasOutline());
    QVERIFY(!button->isEnabled());
    QCOMPARE(changed.count(), 2);
    box->setChecked(true); // Not by the user.
    QVERIFY(!dock.GetBrush()->HasOutline());
    QCOMPARE(changed.count(), 2);
}

void tst_BrushDock::SetsThePaintColor()
{
    Brush brush;
    BrushDock dock(brush);
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    dock.SetPaintColor(qRgba(1, 2, 3, 4));
    QCOMPARE(dock.GetBrush()->PaintColor(), QColor(1, 2, 3, 255));
    QCOMPARE(dock.GetBrush()->Color(), QColor(Qt::white));
    QCOMPARE(changed.count(), 1);
}

void tst_BrushDock::RefreshesFromTheBrush()
{
    Brush brush;
    BrushDock dock(brush);
    brush.SetColor(QColor(1, 2, 3, 51));
    brush.SetOutlineColor(QColor(4, 5, 6, 7));
    brush.SetOutlineWidth(4);
    brush.SetSize(99);
    const QSignalSpy changed(&dock, &BrushDock::Changed);
    dock.Refresh();
    QVERIFY(changed.count() > 0);
    const auto* box = Child<GroupBoxColor>(dock, "gboBrushColor");
    QCOMPARE(Child<ButtonColor>(*box, "button")->Color(), QColor(1, 2, 3));
    QCOMPARE(Child<QSlider>(*box, "slider")->value(), 51);
    QCOMPARE(Child<ButtonColor>(dock, "btnOutlineColor")->Color(), QColor(4, 5, 6));
    QCOMPARE(Child<QSlider>(dock, "sldBrushSize")->value(), 99);
    QCOMPARE(Text(dock, "lblBrushSize"), QStringLiteral("99"));
    QVERIFY(Child<QGroupBox>(dock, "gboBrushOutline")->isChecked());
    QCOMPARE(Child<QSlider>(dock, "sldBrushOutlineWidth")->value(), 4);
    QCOMPARE(Text(dock, "lblBrushOutlineWidth"), QStringLiteral("4"));
    QCOMPARE(brush.Color(), QColor(1, 2, 3, 51));
    QCOMPARE(brush.OutlineColor(), QColor(4, 5, 6, 7));
    QCOMPARE(brush.Size(), 99);
    brush.SetOutline(false);
    dock.Refresh();
    QVERIFY(!Child<QGroupBox>(dock, "gboBrushOutline")->isChecked());
}

void tst_BrushDock::ClampsWhatTheSlidersCannotShow()
{
    Brush brush;
    BrushDock dock(brush);
    dock.GetBrush()->SetSize(300);
    dock.GetBrush()->SetOutlineWidth(50);
    QCOMPARE(dock.GetBrush()->Size(), 300);
    dock.Refresh();
    QCOMPARE(dock.GetBrush()->Size(), 256);
    QCOMPARE(Text(dock, "lblBrushSize"), QStringLiteral("256"));
    QCOMPARE(dock.GetBrush()->OutlineWidth(), 10);
    QCOMPARE(Text(dock, "lblBrushOutlineWidth"), QStringLiteral("10"));
    // Only moving the slider sets the brush's width.
    dock.GetBrush()->SetOutlineWidth(60);
    dock.Refresh();
    QCOMPARE(dock.GetBrush()->OutlineWidth(), 60);
    QCOMPARE(Text(dock, "lblBrushOutlineWidth"), QStringLiteral("60"));
}

void tst_BrushDock::TakesTheWheelOnlyWithFocus()
{
    Brush brush;
    BrushDock dock(brush);
    dock.show();
    ClickTheCheckBox(Child<QGroupBox>(dock, "gboBrushOutline"));
    QApplication::setActiveWindow(&dock);
    QVERIFY(QTest::qWaitForWindowActive(&dock));
    Child<ButtonColor>(dock, "btnOutlineColor")->setFocus();
    for (const char* name : {"sldBrushSize", "sldBrushOutlineWidth"}) {
        auto* slider = Child<QSlider>(dock, name);
        const int value = slider->value();
        Wheel(slider);
        QCOMPARE(slider->value(), value);
        slider->setFocus();
        Wheel(slider);
        QVERIFY(slider->value() != value);
    }
}

void tst_BrushDock::TabsInTheOrderOfTheEye()
{
    Brush brush;
    BrushDock dock(brush);
    dock.show();
    ClickTheCheckBox(Child<QGroupBox>(dock, "gboBrushOutline"));
    QApplication::setActiveWindow(&dock);
    QVERIFY(QTest::qWaitForWindowActive(&dock));
    Child<QSlider>(dock, "sldBrushSize")->setFocus();
    QStringList order;
    for (int i = 0; i < 6; ++i) {
        QVERIFY(dock.focusWidget());
        order << dock.focusWidget()->objectName();
        QTest::keyClick(dock.focusWidget(), Qt::Key_Tab);
    }
    const QStringList expected = {
        QStringLiteral("sldBrushSize"),    QStringLiteral("button"),
        QStringLiteral("slider"),          QStringLiteral("gboBrushOutline"),
        QStringLiteral("btnOutlineColor"), QStringLiteral("sldBrushOutlineWidth")};
    QCOMPARE(order, expected);
}

QTEST_MAIN(tst_BrushDock)
#include "tst_BrushDock.moc"
