#include "tests/support/WideFixture.h"

#include "canvas/ViewMoves.h"
#include "canvas/WidgetRuler.h"
#include "document/Document.h"
#include "layers/Targa.h"
#include "layers/raster/Mask.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "tests/support/Files.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTreeView>
#include <QWheelEvent>

#include <cmath>

namespace {

QByteArray ProjectText()
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<qm-config>
    <selected row="0"/>
    <global>
        <background file="" rgba="16777215"/>
        <layer size="2048"/>
        <world size="15360"/>
    </global>
    <layers>
        <layer usage_flags="0" value_flags="0" color="4294901760" visible="1" name="Forest"/>
        <layer usage_flags="0" value_flags="0" color="4294901760" visible="1" name="Bare"/>
        <layer usage_flags="0" value_flags="0" color="4294901760" visible="1" name="Marsh"/>
    </layers>
    <territory-type-list>
        <territory-type name="Deer">
            <territory name="North" visible="1" color="4278255360">
                <zone name="Rest" smin="1" smax="2" dmin="3" dmax="4" x="4200" z="9750" r="75" d="5"/>
                <zone name="Rest" smin="1" smax="2" dmin="3" dmax="4" x="6000" z="9750" r="75" d="5"/>
            </territory>
            <territory name="Void" visible="1" color="4278255360"/>
            <territory name="Marsh" visible="1" color="4278255360">
                <zone name="Rest" smin="1" smax="2" dmin="3" dmax="4" x="750" z="1500" r="75" d="5"/>
            </territory>
        </territory-type>
    </territory-type-list>
</qm-config>
)";
}

/// Writes a project of 2048 pixels and 15360 metres a side, and returns its path.
QString WriteWide(const QString& folder)
{
    const ProjectSettings before = ProjectSettings::Instance();
    ProjectSettings::Instance().SetSizes(WideFixture::Side, WideFixture::Side, 15360, 15360);
    QDir().mkpath(folder + QStringLiteral("/layers"));
    QImage mask = raster::BlankMask({WideFixture::Side, WideFixture::Side});
    SaveTarga(folder + QStringLiteral("/layers/Bare.tga"), mask, true);
    for (int y = WideFixture::ForestArea.top(); y <= WideFixture::ForestArea.bottom(); ++y) {
        memset(mask.scanLine(y) + WideFixture::ForestArea.left(), 255,
               size_t(WideFixture::ForestArea.width()));
    }
    SaveTarga(folder + QStringLiteral("/layers/Forest.tga"), mask, true);
    SaveTarga(folder + QStringLiteral("/layers/Marsh.tga"), mask, true);
    ProjectSettings::Instance() = before;
    const QString path = folder + QStringLiteral("/wide.xml");
    WriteBytes(path, ProjectText());
    return path;
}

} // namespace

WideFixture::WideFixture()
{
    Load(WriteWide(Path(QStringLiteral("wide"))));
    View().setFocus();
    View().Moves().Show({{1024, 1024}, 1});
}

void WideFixture::Key(Qt::Key key, Qt::KeyboardModifiers modifiers) const
{
    // Shortcuts are those of the active window, and no window is active after a dialog.
    QApplication::setActiveWindow(window.get());
    QTest::keyClick(&View(), key, modifiers);
}

void WideFixture::MouseTo(QPoint pixel) const
{
    QMouseEvent event(QEvent::MouseMove, pixel, View().viewport()->mapToGlobal(pixel), Qt::NoButton,
                      Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(View().viewport(), &event);
}

void WideFixture::MouseAway() const
{
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(View().viewport(), &leave);
}

void WideFixture::TurnWheel(QPoint pixel) const
{
    QWheelEvent wheel(pixel, View().viewport()->mapToGlobal(pixel), {}, {0, 120}, Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(View().viewport(), &wheel);
}

Territory* WideFixture::TerritoryNamed(const QString& name) const
{
    const QVector<Territory*> all = window->GetDocument().Types().Types().first()->Territories();
    for (Territory* territory : all) {
        if (territory->text() == name) {
            return territory;
        }
    }
    return nullptr;
}

void WideFixture::SelectNorth() const
{
    Child<QTreeView>("treeTerTypes")
        ->setCurrentIndex(TerritoryNamed(QStringLiteral("North"))->index());
    Key(Qt::Key_S, Qt::ShiftModifier);
    QCOMPARE(Scene().Mode(), SceneMode::Select);
    Key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(Scene().SelectedZones().size(), 2);
}

QPointF WideFixture::LabelPlace() const
{
    const auto number = [this](const char* label) {
        return Child<QLabel>(label)->text().section(QLatin1Char(' '), -1).toDouble();
    };
    return {number("lblWorldPosX"), number("lblWorldPosZ")};
}

void WideFixture::GoTo(const QString& x, const QString& z, const QString& name, const QString& zoom)
{
    answers.Add([=](QWidget& dialog) {
        QCOMPARE(dialog.objectName(), QStringLiteral("DialogGoTo"));
        QTest::keyClicks(dialog.findChild<QLineEdit*>(QLatin1String("txtGoX")), x);
        QTest::keyClicks(dialog.findChild<QLineEdit*>(QLatin1String("txtGoZ")), z);
        auto* nameEdit = dialog.findChild<QLineEdit*>(QLatin1String("txtGoName"));
        QTest::keyClicks(nameEdit, name);
        auto* box = dialog.findChild<QComboBox*>(QLatin1String("cboGoZoom"));
        if (!zoom.isEmpty()) {
            QTest::keyClicks(box, zoom);
        }
        QTest::keyClick(name.isEmpty() ? static_cast<QWidget*>(box) : nameEdit, Qt::Key_Return);
        QVERIFY(dialog.isHidden());
    });
    Key(Qt::Key_G, Qt::ControlModifier);
}

void WideFixture::AddBookmark(const QString& name)
{
    answers.Add([name](QWidget& dialog) {
        auto* asking = qobject_cast<QInputDialog*>(&dialog);
        QVERIFY(asking);
        asking->setTextValue(name);
        asking->accept();
    });
    Trigger("actionBookmarkAdd");
}

QStringList WideFixture::Bookmarks(const char* menu) const
{
    emit Child<QMenu>("menuGo")->aboutToShow();
    QStringList texts;
    const QList<QAction*> actions = Child<QMenu>(menu)->actions();
    for (const QAction* action : actions) {
        if (action->objectName().isEmpty() && !action->isSeparator() && !action->menu()) {
            texts.append(action->text());
        }
    }
    return texts;
}

void WideFixture::TriggerBookmark(const char* menu, const QString& text) const
{
    const QList<QAction*> actions = Child<QMenu>(menu)->actions();
    for (QAction* action : actions) {
        if (action->text() == text) {
            action->trigger();
            return;
        }
    }
    QFAIL(qPrintable(text));
}

void WideFixture::VerifyShown(QPointF scene, float zoom) const
{
    QCOMPARE(View().Zoom(), zoom);
    const QPointF middle = View().Moves().Place().center;
    const QPointF offset = (middle - scene) * static_cast<qreal>(zoom);
    QVERIFY2(std::hypot(offset.x(), offset.y()) <= 1,
             qPrintable(QString(QStringLiteral("%1 %2")).arg(middle.x()).arg(middle.y())));
    const QList<WidgetRuler*> rulers = View().findChildren<WidgetRuler*>();
    for (const WidgetRuler* ruler : rulers) {
        QCOMPARE(ruler->Zoom(), zoom);
    }
    MouseTo(View().viewport()->rect().center());
    const double pixel = 2 * MetresPerPixel / static_cast<double>(zoom);
    const QPointF label = LabelPlace();
    QVERIFY(std::abs(label.x() - scene.x() * MetresPerPixel) <= pixel);
    QVERIFY(std::abs(label.y() - (Side - scene.y()) * MetresPerPixel) <= pixel);
}
