#include "canvas/ZonePreview.h"
#include "document/LiveLayers.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "layers/Formula.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"
#include "tests/support/ZoneEditor.h"

#include <QDialog>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

QVector<ZonePreview*> Previews(const ZoneEditor& editor)
{
    QVector<ZonePreview*> previews;
    const QList<QGraphicsItem*> items = editor.Scene().items();
    for (QGraphicsItem* item : items) {
        if (auto* preview = dynamic_cast<ZonePreview*>(item)) {
            previews.append(preview);
        }
    }
    return previews;
}

} // namespace

/// Many zones placed at random with the dialog "Scatter".
class tst_ScatterZones : public QObject
{
    Q_OBJECT

private slots:
    void PlacesZonesAsAsked();
    void StaysInsideLiveLayersThatWaited();
    void SaysWhenFewerFit();
    void IsAcceptedBeforeItIsDone();
    void LeavesNothingWhenCancelled();
};

/// Both layers are the square from (8, 8) to (24, 24).
void tst_ScatterZones::PlacesZonesAsAsked()
{
    ZoneEditor editor;
    editor.Trigger("actionLayerFill");
    editor.Doc().BeginHistory(true);
    editor.before = editor.SavedBytes();
    const QVector<Zone*> old = ZoneEditor::ZonesOf(editor.north);
    editor.answers.Add([&editor](QWidget& dialog) {
        QCOMPARE(dialog.objectName(), "DialogScatter");
        QCOMPARE(dialog.focusWidget()->objectName(), "spnScatterCount");
        ZoneEditor::Type(dialog, "spnScatterCount", "12");
        ZoneEditor::Type(dialog, "spnScatterDistance", "25");
        ZoneEditor::Type(dialog, "spnScatterExisting", "30");
        ZoneEditor::Type(dialog, "spnScatterSeed", "7");
        ZoneEditor::Row(dialog, "lstScatterInside", "blue")->setCheckState(Qt::Checked);
        ZoneEditor::Row(dialog, "lstScatterMinus", "red")->setCheckState(Qt::Checked);
        QTRY_COMPARE(ZoneEditor::Label(dialog, "lblScatterResult"), "All 12 zones fit.");
        // The map shows them before.
        QCOMPARE(Previews(editor).size(), 1);
        QCOMPARE(Previews(editor).constFirst()->Places().size(), std::size_t(12));
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesScatter");
    QVERIFY(Previews(editor).isEmpty());
    const QVector<Zone*> zones = ZoneEditor::ZonesOf(editor.north).mid(old.size());
    QCOMPARE(zones.size(), 12);
    QCOMPARE(editor.Scene().SelectedZones(), zones);
    const QRectF square(8, 8, 16, 16);
    ZoneValues expected = editor.Doc().ZoneTemplate();
    expected.depth = Zone::MinDepth;
    for (const Zone* zone : zones) {
        QVERIFY(zone->Values() == expected);
        QVERIFY(!square.contains(zone->pos()));
        const WorldCircle metres = ZoneEditor::Metres(zone);
        QVERIFY(metres.x >= 0 && metres.x <= 640 && metres.z >= 0 && metres.z <= 640);
        const auto distance = [&metres](const Zone* other) {
            const WorldCircle place = ZoneEditor::Metres(other);
            return std::hypot(place.x - metres.x, place.z - metres.z);
        };
        for (const Zone* other : old) {
            QVERIFY(distance(other) >= 30);
        }
        QVERIFY(distance(ZoneEditor::ZonesOf(editor.south).constFirst()) >= 30);
        for (const Zone* other : zones) {
            QVERIFY(other == zone || distance(other) >= 25);
        }
    }
    editor.VerifyOneStep("Add 12 zones to North");
}

void tst_ScatterZones::StaysInsideLiveLayersThatWaited()
{
    ZoneEditor editor;
    Layer* red = editor.Doc().Layers().LayerByName("red");
    const QString code = Formula{OperationComplement, {red->Id()}, 0}.Code();
    editor.Doc().Do(Edits::AddComputedLayer(editor.Doc().Layers(), "land", code,
                                            EvaluateAtLayerSize(editor.Doc().Layers(), code),
                                            true));
    editor.Doc().Live().SetFrameCost(0);
    Layer* land = editor.Doc().Layers().LayerByName("land");
    QImage half = red->Image();
    half.fill(raster::MaskClear);
    for (int y = 0; y < half.height() / 2; ++y) {
        std::fill_n(half.scanLine(y), half.width(), raster::MaskSet);
    }
    editor.Doc().Do(std::make_unique<PaintMask>(QString(), *red, half));
    QVERIFY(editor.Doc().Live().IsPending(*land));
    const int old = editor.north->Zones().size();
    editor.answers.Add([](QWidget& dialog) {
        ZoneEditor::Type(dialog, "spnScatterCount", "20");
        ZoneEditor::Type(dialog, "spnScatterDistance", "5");
        ZoneEditor::Row(dialog, "lstScatterInside", "land")->setCheckState(Qt::Checked);
        QTRY_COMPARE(ZoneEditor::Label(dialog, "lblScatterResult"), "All 20 zones fit.");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    editor.Trigger("actionZonesScatter");

    const QVector<Zone*> zones = ZoneEditor::ZonesOf(editor.north).mid(old);
    QCOMPARE(zones.size(), 20);
    for (const Zone* zone : zones) {
        QVERIFY(zone->pos().y() >= half.height() / 2);
    }
}

void tst_ScatterZones::SaysWhenFewerFit()
{
    ZoneEditor editor;
    editor.answers.Add([](QWidget& dialog) {
        ZoneEditor::Type(dialog, "spnScatterCount", "100");
        ZoneEditor::Type(dialog, "spnScatterExisting", "0");
        ZoneEditor::Type(dialog, "spnScatterDistance", "900");
        // In a world of 640 metres.
        QTRY_COMPARE(ZoneEditor::Label(dialog, "lblScatterResult"), "Only 1 of 100 zones fit.");
        QVERIFY(ZoneEditor::IsOkEnabled(dialog));
        ZoneEditor::Type(dialog, "spnScatterExisting", "2000");
        QTRY_COMPARE(ZoneEditor::Label(dialog, "lblScatterResult"), "Only 0 of 100 zones fit.");
        QVERIFY(!ZoneEditor::IsOkEnabled(dialog));
        static_cast<QDialog&>(dialog).accept();
        QVERIFY(dialog.isVisible());
        // Each change looks again.
        ZoneEditor::Type(dialog, "spnScatterExisting", "0");
        QVERIFY(ZoneEditor::IsOkEnabled(dialog));
        QTRY_COMPARE(ZoneEditor::Label(dialog, "lblScatterResult"), "Only 1 of 100 zones fit.");
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    editor.Trigger("actionZonesScatter");
    QCOMPARE(editor.UndoText(), "Add zone to North");
    QCOMPARE(editor.north->Zones().size(), 5);
}

void tst_ScatterZones::IsAcceptedBeforeItIsDone()
{
    ZoneEditor editor;
    editor.answers.Add([](QWidget& dialog) {
        ZoneEditor::Type(dialog, "spnScatterDistance", "3");
        ZoneEditor::Type(dialog, "spnScatterExisting", "3");
        ZoneEditor::Type(dialog, "spnScatterCount", "3000");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
        QVERIFY(dialog.isVisible());
        QTRY_VERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionZonesScatter");
    QCOMPARE(editor.north->Zones().size(), 3004);
    QCOMPARE(editor.Doc().History().count(), 1);
}

void tst_ScatterZones::LeavesNothingWhenCancelled()
{
    ZoneEditor editor;
    editor.answers.Add([&editor](QWidget& dialog) {
        QTRY_VERIFY(!Previews(editor).constFirst()->Places().empty());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    editor.Trigger("actionZonesScatter");
    QVERIFY(Previews(editor).isEmpty());
    QCOMPARE(editor.Doc().History().count(), 0);
    QCOMPARE(editor.SavedBytes(), editor.before);
}

QTEST_MAIN(tst_ScatterZones)
#include "tst_ScatterZones.moc"
