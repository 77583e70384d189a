#include "ui/LayerMarks.h"

#include "document/Document.h"
#include "document/edits/FormulaEdits.h"
#include "document/edits/LayerEdits.h"
#include "layers/Formula.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "tests/support/Files.h"
#include "tests/support/Masks.h"
#include "tests/support/WindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

namespace {

/// The small project with the layers "red" and "blue", each a square of its own.
class Editor : public WindowFixture
{
public:
    Editor()
        : project(WriteProject())
    {
        Load(project);
        QApplication::setActiveWindow(window.get());
        View().setFocus();
        log.Take();
    }

    Document& Doc() const { return window->GetDocument(); }
    Layer& Named(const char* name) const
    {
        return *Doc().Layers().LayerByName(QLatin1String(name));
    }
    bool IsLocked(const char* name) const { return Doc().IsLocked(Named(name)); }
    QTreeView& Tree() const { return *Child<QTreeView>("treeLayers"); }
    QVariant Row(const char* name, int role) const { return Named(name).index().data(role); }
    void Select(const char* name) const { Tree().setCurrentIndex(Named(name).index()); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers) const
    {
        QApplication::setActiveWindow(window.get());
        View().setFocus();
        QTest::keyClick(&View(), key, modifiers);
    }
    void Lock() const { Key(Qt::Key_L, Qt::ControlModifier); }
    void Solo() const { Key(Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier); }
    /// Whether the map shows the layer: the colour that is on the map where only the layer is set.
    QStringList Shown() const
    {
        QStringList names;
        QImage picture(64, 64, QImage::Format_RGB32);
        const QVector<Layer*> layers = Doc().Layers().Layers();
        picture.fill(Qt::green);
        QPainter painter(&picture);
        Scene().render(&painter, picture.rect(), picture.rect());
        painter.end();
        for (int i = 0; i < layers.size(); ++i) {
            if (picture.pixelColor(20 * i + 2, 60) != QColor(Qt::green)) {
                names.append(layers[i]->text());
            }
        }
        return names;
    }
    /// Each layer is set at a place of its own.
    void Tell() const
    {
        const QVector<Layer*> layers = Doc().Layers().Layers();
        for (int i = 0; i < layers.size(); ++i) {
            QImage mask(64, 64, QImage::Format_Indexed8);
            mask.setColorTable(layers[i]->Image().colorTable());
            mask.fill(0);
            for (int y = 56; y < 64; ++y) {
                memset(mask.scanLine(y) + 20 * i, 255, 8);
            }
            layers[i]->SetImage(mask, layers[i]->Color());
        }
    }
    void Reload()
    {
        SetModified(false);
        Load(project);
        log.Take();
    }

    QString project;
};

} // namespace

/// Locks and the layer that is shown alone.
class tst_LayerMarks : public QObject
{
    Q_OBJECT

private slots:
    void LocksAndUnlocks();
    void ALockKeepsThePixels_data();
    void ALockKeepsThePixels();
    void ALockTakesNoStroke_data();
    void ALockTakesNoStroke();
    void ALockHoldsWithoutACurrentLayer();
    void ALockLeavesTheRest();
    void NothingIsMergedIntoALockedLayer();
    void MarksLockedRows();
    void ShowsOnlyOneLayer();
    void SoloFollowsTheCurrentLayer();
    void SoloEndsWithItsLayer();
    void SoloEndsWhenAllAreShownOrHidden();
    void ASaveUnderSoloWritesTheTicks();
    void RemembersLocksAndSoloPerProject();
    void AProjectForViewingShowsItsTicks();
    void RemembersLocksOfAProjectThatLoadsInPart();
    void RemembersLocksOfRenamedLayers();
    void ALockOfANewLayerIsOfNoOtherOne();
    void ALoadLeavesALockedLiveLayerAlone();
    void RemembersLocksOfAProjectThatIsSavedElsewhere();
};

void tst_LayerMarks::LocksAndUnlocks()
{
    const Editor editor;
    const QAction* action = editor.Action("actionLayerLock");
    QVERIFY(!action->isChecked());
    editor.Lock();
    QVERIFY(editor.IsLocked("blue"));
    QVERIFY(!editor.IsLocked("red"));
    QVERIFY(action->isChecked());
    editor.Select("red");
    QVERIFY(!action->isChecked());
    editor.Select("blue");
    QVERIFY(action->isChecked());
    editor.Lock();
    QVERIFY(!editor.IsLocked("blue"));
    QVERIFY(!action->isChecked());
    // It is no step.
    QVERIFY(!editor.Doc().CanUndo());
}

void tst_LayerMarks::ALockKeepsThePixels_data()
{
    QTest::addColumn<QByteArray>("action");

    for (const char* action :
         {"actionLayerFill", "actionLayerClear", "actionLayerInvert", "actionLayerGrow",
          "actionLayerShrink", "actionLayerMerge", "actionModify"}) {
        QTest::newRow(action) << QByteArray(action);
    }
}

void tst_LayerMarks::ALockKeepsThePixels()
{
    QFETCH(QByteArray, action);
    Editor editor;
    editor.Lock();
    const auto before = editor.SavedBytes();
    editor.log.Take();

    editor.Trigger(action);
    QCOMPARE(editor.log.Messages(),
             QStringList{"Info: Layer 'blue' is locked; Ctrl+L unlocks it."});
    QCOMPARE(editor.SavedBytes(), before);
    QVERIFY(!editor.Doc().CanUndo());
    QCOMPARE(editor.answers.Asked(), QStringList{"Load"});

    // Without the lock it does change something.
    editor.Lock();
    editor.answers.SetOtherwise([](QWidget& dialog) {
        auto* ok = dialog.findChild<QPushButton*>(QStringLiteral("btnOk"));
        if (ok->isEnabled()) {
            ok->click();
        }
    });
    editor.Trigger(action);
    QVERIFY(editor.SavedBytes() != before);
}

void tst_LayerMarks::ALockTakesNoStroke_data()
{
    QTest::addColumn<QByteArray>("tool");

    for (const char* tool : {"toolBrush", "toolLine", "toolRectangle", "toolFill"}) {
        QTest::newRow(tool) << QByteArray(tool);
    }
}

void tst_LayerMarks::ALockTakesNoStroke()
{
    QFETCH(QByteArray, tool);
    Editor editor;
    editor.Trigger("actionTogglePaintMode");
    editor.Trigger(tool);
    QWidget* viewport = editor.View().viewport();
    const auto draw = [&] {
        QTest::mousePress(viewport, Qt::LeftButton, {}, editor.View().mapFromScene(30, 30));
        QTest::mouseMove(viewport, editor.View().mapFromScene(50, 45));
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, editor.View().mapFromScene(50, 45));
    };
    const Layer& blue = editor.Named("blue");
    const QImage before = blue.Image().copy();
    editor.Lock();
    editor.log.Take();
    draw();
    QCOMPARE(editor.log.Messages(),
             QStringList{"Info: Layer 'blue' is locked; Ctrl+L unlocks it."});
    QVERIFY(blue.Image() == before);
    QVERIFY(!editor.Doc().CanUndo());
    editor.Lock();
    draw();
    QVERIFY(blue.Image() != before);
}

/// The map keeps the layer that was current before all were hidden.
void tst_LayerMarks::ALockHoldsWithoutACurrentLayer()
{
    const Editor editor;
    editor.Lock();
    const QImage before = editor.Named("blue").Image().copy();
    QTest::mouseClick(editor.Child<QPushButton>("btnHideAll"), Qt::LeftButton);
    QVERIFY(!editor.Doc().CurrentLayer());

    editor.Trigger("actionTogglePaintMode");
    editor.Trigger("toolBrush");
    QTest::mouseClick(editor.View().viewport(), Qt::LeftButton, {},
                      editor.View().mapFromScene(30, 30));
    QCOMPARE(editor.Named("blue").Image(), before);
    QCOMPARE(editor.Scene().Mode(), SceneMode::Paint);
}

void tst_LayerMarks::ALockLeavesTheRest()
{
    Editor editor;
    Layer& blue = editor.Named("blue");
    editor.Lock();
    editor.Tree().model()->setData(blue.index(), "sea");
    QCOMPARE(blue.text(), "sea");
    editor.Key(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(blue.row(), 0);
    editor.Key(Qt::Key_D, Qt::ControlModifier);
    // The copy is not locked, and undo of older strokes goes on.
    QCOMPARE(editor.Doc().CurrentLayer()->text(), "sea (2)");
    QVERIFY(!editor.IsLocked("sea (2)"));
    QVERIFY(editor.IsLocked("sea"));
    editor.Trigger("actionLayerClear");
    editor.Lock();
    editor.Key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(editor.Named("sea (2)").Image() == blue.Image());
    // A layer that comes back is still locked.
    editor.Select("sea");
    editor.Tree().setFocus();
    QTest::keyClick(&editor.Tree(), Qt::Key_Delete);
    QVERIFY(!editor.Doc().Layers().LayerByName("sea"));
    editor.Key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(editor.IsLocked("sea"));
}

void tst_LayerMarks::NothingIsMergedIntoALockedLayer()
{
    Editor editor;
    editor.Select("red");
    editor.Lock();
    editor.Select("blue");
    const auto before = editor.SavedBytes();
    editor.answers.Add([](QWidget& dialog) {
        QCOMPARE(dialog.findChild<QComboBox*>(QStringLiteral("cboMergeInto"))->currentText(),
                 "red");
        QVERIFY(!dialog.findChild<QPushButton*>(QStringLiteral("btnOk"))->isEnabled());
        QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("lblMergeProblem"))->text(),
                 "Layer 'red' is locked; Ctrl+L unlocks it.");
        QTest::keyClick(&dialog, Qt::Key_Return);
        QVERIFY(dialog.isVisible());
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    editor.Trigger("actionLayerMerge");
    QCOMPARE(editor.SavedBytes(), before);
}

void tst_LayerMarks::MarksLockedRows()
{
    const Editor editor;
    const QColor color = editor.Named("blue").Color();
    QCOMPARE(editor.Row("blue", Qt::DecorationRole).value<QColor>(), color);
    QVERIFY(!editor.Row("blue", Qt::ToolTipRole).isValid());
    editor.Lock();
    QCOMPARE(editor.Row("blue", Qt::DecorationRole).type(), QVariant::Icon);
    const QImage icon =
        editor.Row("blue", Qt::DecorationRole).value<QIcon>().pixmap(16, 16).toImage();
    QCOMPARE(icon.pixelColor(0, 0).rgb(), color.rgb());
    QCOMPARE(icon.pixelColor(8, 11), QColor(Qt::black));
    QCOMPARE(editor.Row("blue", Qt::ToolTipRole).toString(), "Locked: its pixels stay as they are");
    QVERIFY(!editor.Row("red", Qt::ToolTipRole).isValid());
    QCOMPARE(editor.Row("red", Qt::DecorationRole).type(), QVariant::Color);
    editor.Lock();
    QCOMPARE(editor.Row("blue", Qt::DecorationRole).value<QColor>(), color);
    QVERIFY(!editor.Row("blue", Qt::ToolTipRole).isValid());
}

void tst_LayerMarks::ShowsOnlyOneLayer()
{
    Editor editor;
    editor.Tell();
    editor.Select("red");
    QCOMPARE(editor.Shown(), QStringList({"red", "blue"}));
    const auto before = editor.SavedBytes();
    editor.Solo();
    QVERIFY(editor.Action("actionLayerSolo")->isChecked());
    QCOMPARE(editor.Shown(), QStringList{"red"});
    QCOMPARE(editor.SavedBytes(), before);
    QCOMPARE(editor.Row("red", Qt::ToolTipRole).toString(), "Only this layer is shown");
    QVERIFY(editor.Row("blue", Qt::ToolTipRole).toString().startsWith("Not shown"));
    editor.Solo();
    QVERIFY(!editor.Action("actionLayerSolo")->isChecked());
    QCOMPARE(editor.Shown(), QStringList({"red", "blue"}));
    QVERIFY(!editor.Row("blue", Qt::ToolTipRole).isValid());
    QVERIFY(!editor.Doc().CanUndo());
}

void tst_LayerMarks::SoloFollowsTheCurrentLayer()
{
    Editor editor;
    editor.Tell();
    editor.Solo();
    QCOMPARE(editor.Shown(), QStringList{"blue"});
    editor.Select("red");
    QCOMPARE(editor.Shown(), QStringList{"red"});
    QVERIFY(editor.Action("actionLayerSolo")->isChecked());
    // Moving a row is no choice of a layer.
    editor.Key(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(editor.Doc().SoloLayer(), &editor.Named("red"));
    editor.Key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(editor.Doc().SoloLayer(), &editor.Named("red"));
    editor.Solo();
    QCOMPARE(editor.Shown(), QStringList({"red", "blue"}));
}

void tst_LayerMarks::SoloEndsWithItsLayer()
{
    Editor editor;
    editor.Tell();
    editor.Solo();
    editor.Tree().setFocus();
    QTest::keyClick(&editor.Tree(), Qt::Key_Delete);
    QVERIFY(!editor.Doc().SoloLayer());
    QVERIFY(!editor.Action("actionLayerSolo")->isChecked());
    QCOMPARE(editor.Shown(), QStringList{"red"});
    editor.Key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(editor.Shown(), QStringList({"red", "blue"}));
    editor.Solo();
    editor.Load(editor.WriteProject("other"));
    QVERIFY(!editor.Doc().SoloLayer());
    QVERIFY(!editor.Action("actionLayerSolo")->isChecked());
}

void tst_LayerMarks::SoloEndsWhenAllAreShownOrHidden()
{
    Editor editor;
    editor.Tell();
    editor.Solo();
    editor.Trigger("actionLayersShowAll");
    QVERIFY(!editor.Action("actionLayerSolo")->isChecked());
    QCOMPARE(editor.Shown(), QStringList({"red", "blue"}));
    editor.Solo();
    editor.Child<QPushButton>("btnHideAll")->click();
    QVERIFY(!editor.Doc().SoloLayer());
    QCOMPARE(editor.Shown(), QStringList());
}

void tst_LayerMarks::ASaveUnderSoloWritesTheTicks()
{
    Editor editor;
    editor.Named("red").SetVisible(false);
    editor.Key(Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    const QByteArray plain = ReadBytes(editor.project);
    QCOMPARE(plain.count("visible=\"0\""), 1);
    editor.Select("red");
    editor.Solo();
    editor.Lock();
    editor.Select("blue");
    const auto files = FilesBelow(editor.Path("small")).keys();
    editor.Key(Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    QCOMPARE(ReadBytes(editor.project), plain);
    QCOMPARE(FilesBelow(editor.Path("small")).keys(), files);
}

void tst_LayerMarks::ALockOfANewLayerIsOfNoOtherOne()
{
    Editor editor;
    editor.Doc().Do(Edits::AddPaintedLayer(editor.Doc().Layers(), raster::BlankMask({64, 64})));
    Layer* added = editor.Doc().Layers().LayerAt(2);
    editor.Doc().Do(Edits::Rename(*added, "red"));
    editor.Doc().SetLocked(*added, true);
    editor.SetModified(false);
    editor.Load(editor.project);
    QVERIFY(!editor.IsLocked("red"));
}

void tst_LayerMarks::ALoadLeavesALockedLiveLayerAlone()
{
    Editor editor;
    const auto fill = [&editor](Layer& layer, int value) {
        QImage mask = raster::BlankMask({64, 64});
        mask.fill(value);
        editor.Doc().Do(Edits::ChangePixels("Fill", layer, mask));
    };
    const Formula formula{OperationComplement, {editor.Named("red").Id()}, 0};
    editor.Doc().Do(
        Edits::AddComputedLayer(editor.Doc().Layers(), "land", formula.Code(),
                                EvaluateAtLayerSize(editor.Doc().Layers(), formula.Code())));
    editor.Doc().Do(Edits::MakeLayerLive(editor.Named("land"), {}));
    editor.Doc().SetLocked(editor.Named("land"), true);
    const QByteArray before = Indices(editor.Named("land").Image());
    fill(editor.Named("red"), 255);
    editor.Trigger("actionQuickSave");
    QCOMPARE(Indices(editor.Named("land").Image()), before);

    editor.Load(editor.project);
    QTest::qWait(400);
    QCOMPARE(Indices(editor.Named("land").Image()), before);
    editor.Doc().SetLocked(editor.Named("land"), false);
    QTRY_VERIFY(Indices(editor.Named("land").Image()) != before);
}

void tst_LayerMarks::RemembersLocksAndSoloPerProject()
{
    Editor editor;
    editor.Tell();
    editor.Lock();
    editor.Solo();
    const QString other = editor.WriteProject("other");
    editor.Load(other);
    QVERIFY(!editor.IsLocked("blue"));
    QVERIFY(!editor.Action("actionLayerLock")->isChecked());
    editor.Restart();
    editor.Load(editor.project);
    QVERIFY(editor.IsLocked("blue"));
    QVERIFY(!editor.IsLocked("red"));
    QVERIFY(editor.Action("actionLayerLock")->isChecked());
    QCOMPARE(editor.Doc().SoloLayer(), &editor.Named("blue"));
    QVERIFY(editor.Action("actionLayerSolo")->isChecked());
    QVERIFY(!Editor::IsModified());
    editor.Tell();
    editor.Select("red");
    QCOMPARE(editor.Shown(), QStringList{"red"});
    editor.Solo();
    editor.Select("blue");
    editor.Lock();
    editor.Reload();
    QVERIFY(!editor.IsLocked("blue"));
    QVERIFY(!editor.Doc().SoloLayer());
}

void tst_LayerMarks::AProjectForViewingShowsItsTicks()
{
    Editor editor;
    editor.Lock();
    editor.Solo();
    editor.Restart(editor.project);
    editor.Tell();
    QVERIFY(!editor.Doc().SoloLayer());
    QVERIFY(!editor.Action("actionLayerSolo")->isChecked());
    QVERIFY(!editor.View().isEnabled());
    QCOMPARE(editor.Doc().Layers().Layers().size(), 2);
    editor.Load(editor.project);
    QVERIFY(editor.Doc().SoloLayer());
    QVERIFY(editor.IsLocked("blue"));
}

void tst_LayerMarks::RemembersLocksOfAProjectThatLoadsInPart()
{
    Editor editor;
    editor.Lock();
    editor.Solo();
    QByteArray text = ReadBytes(editor.project);
    WriteBytes(editor.project, text.replace("</qm-config>", "<a></b></qm-config>"));
    editor.Reload();
    QVERIFY(editor.Doc().Path().isEmpty());
    QVERIFY(editor.IsLocked("blue"));
    QCOMPARE(editor.Doc().SoloLayer(), &editor.Named("blue"));
    // The save takes over what is open.
    editor.Lock();
    editor.Solo();
    editor.SaveOver("actionSave", editor.project);
    QVERIFY(!editor.IsLocked("blue"));
    QVERIFY(!editor.Doc().SoloLayer());
    editor.Reload();
    QVERIFY(!editor.IsLocked("blue"));
    QVERIFY(!editor.Doc().SoloLayer());
}

void tst_LayerMarks::RemembersLocksOfRenamedLayers()
{
    Editor editor;
    editor.Lock();
    editor.Tree().model()->setData(editor.Named("blue").index(), "sea");
    editor.Select("red");
    editor.Lock();
    // The file still has the old name.
    editor.Reload();
    QVERIFY(editor.IsLocked("blue") && editor.IsLocked("red"));
    editor.Tree().model()->setData(editor.Named("blue").index(), "sea");
    editor.Key(Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);
    editor.Reload();
    QVERIFY(editor.IsLocked("sea") && editor.IsLocked("red"));
}

void tst_LayerMarks::RemembersLocksOfAProjectThatIsSavedElsewhere()
{
    Editor editor;
    editor.Lock();
    editor.TriggerWithFile("actionSave", editor.Path("copy.xml"));
    editor.Load(editor.WriteProject("other"));
    editor.Load(editor.Path("copy.xml"));
    QVERIFY(editor.IsLocked("blue"));
    // The first one has its own.
    editor.Lock();
    editor.Load(editor.project);
    QVERIFY(editor.IsLocked("blue"));
}

QTEST_MAIN(tst_LayerMarks)
#include "tst_LayerMarks.moc"
