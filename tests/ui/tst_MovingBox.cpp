#include "ui/MovingBox.h"

#include "document/Document.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockTerTypes.h"

#include <QApplication>
#include <QComboBox>
#include <QMouseEvent>
#include <QSettings>
#include <QSpinBox>
#include <QTest>
#include <QTreeView>

namespace {

/// The editor with its zone selected; 10 metres a pixel.
class Editor : public WindowFixture
{
public:
    Editor() { Begin(); }

    void Begin()
    {
        Load(WriteProject());
        Territory* north = window->GetDocument().Types().Types().first()->Territories().first();
        zone = north->Zones().first();
        Child<QTreeView>("treeTerTypes")->setCurrentIndex(north->index());
        Child<DockTerTypes>("DockTerTypes")->SelectMode(true);
        QApplication::setActiveWindow(window.get());
        zone->setSelected(true);
        View().setFocus();
    }
    QComboBox& Nudge() const { return *Child<QComboBox>("cboNudge"); }
    QComboBox& Snap() const { return *Child<QComboBox>("cboSnap"); }
    QSpinBox& Grid() const { return *Child<QSpinBox>("spnSnapGrid"); }

    Zone* zone = nullptr;
};

} // namespace

class tst_MovingBox : public QObject
{
    Q_OBJECT

private slots:
    void OffersWhatItSays();
    void NudgesByWhatIsChosen();
    void SnapsToWhatIsChosen();
    void RemembersItsChoices();
    void PassesOverForeignSettings();
};

void tst_MovingBox::OffersWhatItSays()
{
    const Editor editor;
    QStringList nudges;
    for (int i = 0; i < editor.Nudge().count(); ++i) {
        nudges.append(editor.Nudge().itemText(i));
    }
    QCOMPARE(nudges, QStringList({"1 layer pixel", "1 m", "10 m", "50 m"}));
    QCOMPARE(editor.Nudge().currentIndex(), 0);
    QCOMPARE(editor.Snap().currentText(), QString("Nothing"));
    QVERIFY(!editor.Grid().isEnabled());
}

void tst_MovingBox::NudgesByWhatIsChosen()
{
    const Editor editor;
    const qreal x = editor.zone->pos().x();
    QTest::keyClick(&editor.View(), Qt::Key_Right);
    QCOMPARE(editor.zone->pos().x(), x + 1);
    editor.Nudge().setCurrentText(QStringLiteral("50 m"));
    QTest::keyClick(&editor.View(), Qt::Key_Right);
    QCOMPARE(editor.zone->pos().x(), x + 6);
    editor.Nudge().setCurrentText(QStringLiteral("1 layer pixel"));
    QTest::keyClick(&editor.View(), Qt::Key_Left);
    QCOMPARE(editor.zone->pos().x(), x + 5);
}

void tst_MovingBox::SnapsToWhatIsChosen()
{
    const Editor editor;
    editor.Snap().setCurrentText(QStringLiteral("Grid"));
    QVERIFY(editor.Grid().isEnabled());
    editor.Grid().setValue(70);
    QWidget* map = editor.View().viewport();
    const QPoint from = editor.View().mapFromScene(editor.zone->pos());
    QTest::mousePress(map, Qt::LeftButton, {}, from);
    const QPoint to = from + QPoint(13, 17);
    QMouseEvent move(QEvent::MouseMove, to, map->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(map, &move);
    QTest::mouseRelease(map, Qt::LeftButton, {}, to);
    // From X 100 m, Z 540 m to 230 m, 370 m.
    QCOMPARE(editor.zone->pos(), QPointF(21, 29));
}

void tst_MovingBox::RemembersItsChoices()
{
    Editor editor;
    editor.Nudge().setCurrentText(QStringLiteral("10 m"));
    editor.Snap().setCurrentText(QStringLiteral("Zones"));
    editor.Grid().setValue(25);
    editor.Restart();
    editor.Begin();
    QCOMPARE(editor.Nudge().currentText(), QString("10 m"));
    QCOMPARE(editor.Snap().currentText(), QString("Zones"));
    QCOMPARE(editor.Grid().value(), 25);
    const qreal x = editor.zone->pos().x();
    QTest::keyClick(&editor.View(), Qt::Key_Right);
    QCOMPARE(editor.zone->pos().x(), x + 1);
    QTest::keyClick(&editor.View(), Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(editor.zone->pos().x(), x + 6);
}

void tst_MovingBox::PassesOverForeignSettings()
{
    Editor editor;
    {
        QSettings settings("Halvern Works", "Quillmap");
        settings.setValue("nudgeMetres", "seven");
        settings.setValue("snapTo", 17);
        settings.setValue("snapGrid", -3);
    }
    editor.Restart();
    QCOMPARE(editor.Nudge().currentIndex(), 0);
    QCOMPARE(editor.Snap().currentIndex(), 0);
    QCOMPARE(editor.Grid().value(), 100);
}

QTEST_MAIN(tst_MovingBox)
#include "tst_MovingBox.moc"
