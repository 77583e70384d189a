#include "document/Document.h"
#include "document/Formulas.h"
#include "document/edits/LayerEdits.h"
#include "layers/CustomLayer.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "tests/support/Random.h"
#include "tests/support/WindowFixture.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QTreeView>

#include <functional>

namespace {

/// The small project, with the layers "red" and "blue"; "blue" is current, and both are the same
/// square.
class Editor : public WindowFixture
{
public:
    Editor()
    {
        Load(WriteProject());
        QApplication::setActiveWindow(window.get());
        View().setFocus();
        log.Take();
    }

    Document& Doc() const { return window->GetDocument(); }
    Layer& At(int row) const { return *Doc().Layers().LayerAt(row); }
    Layer& Named(const char* name) const
    {
        return *Doc().Layers().LayerByName(QLatin1String(name));
    }
    QTreeView& Tree() const { return *Child<QTreeView>("treeLayers"); }
    QStringList Names() const
    {
        QStringList names;
        const QVector<Layer*> layers = Doc().Layers().Layers();
        for (const Layer* layer : layers) {
            names.append(layer->text());
        }
        return names;
    }
    void Select(const char* name) const { Tree().setCurrentIndex(Named(name).index()); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers) const
    {
        QApplication::setActiveWindow(window.get());
        View().setFocus();
        QTest::keyClick(&View(), key, modifiers);
    }
    /// Types the metres into the dialog that opens next and presses the key.
    void AnswerRadius(int metres, Qt::Key key = Qt::Key_Return, const QString& effect = {})
    {
        answers.Add([=](QWidget& dialog) {
            auto* spin = dialog.findChild<QSpinBox*>(QStringLiteral("spnRadius"));
            QCOMPARE(dialog.focusWidget(), spin);
            QTest::keyClicks(spin, QString::number(metres));
            if (!effect.isEmpty()) {
                QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("lblRadiusEffective"))->text(),
                         effect);
            }
            QTest::keyClick(spin, key);
            QTRY_VERIFY(!dialog.isVisible());
        });
    }
    void AnswerMerge(const char* target, Qt::Key key = Qt::Key_Return)
    {
        answers.Add([=](QWidget& dialog) {
            auto* combo = dialog.findChild<QComboBox*>(QStringLiteral("cboMergeInto"));
            combo->setCurrentText(QLatin1String(target));
            QCOMPARE(combo->currentText(), QLatin1String(target));
            QTest::keyClick(&dialog, key);
        });
    }
    /// With greys too, as other programs write them.
    void Randomize(Layer& layer) const
    {
        Random random;
        QImage mask = raster::BlankMask(layer.Image().size());
        for (int y = 0; y < mask.height(); ++y) {
            for (int x = 0; x < mask.width(); ++x) {
                const int drawn = random.Below(8);
                mask.scanLine(y)[x] = uchar(drawn == 0 ? random.Below(256) : drawn < 4 ? 255 : 0);
            }
        }
        layer.SetImage(mask, layer.Color());
    }
};

using PixelRule = std::function<int(int x, int y)>;

void VerifyPixels(const QImage& mask, const PixelRule& rule)
{
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            if (mask.pixelIndex(x, y) != rule(x, y)) {
                QFAIL(qPrintable(QString("pixel %1, %2 is %3, not %4")
                                     .arg(x)
                                     .arg(y)
                                     .arg(mask.pixelIndex(x, y))
                                     .arg(rule(x, y))));
            }
        }
    }
}

} // namespace

class tst_LayerActions : public QObject
{
    Q_OBJECT

private slots:
    void HasItsMenuAndKeys();
    void FollowsTheCurrentLayer();
    void Duplicates();
    void ADuplicateIsPaintedAlone();
    void FillsClearsAndInverts();
    void GrowsAndShrinks_data();
    void GrowsAndShrinks();
    void CannotBeLeftWhileItComputes();
    void TheRadiusHasBounds();
    void AddsARingThatFollowsTheBrush();
    void MergesIntoAnotherLayer();
    void MergeIsCancelledAndNeedsAnother();
    void MovesPastTheNextRow();
    void ShowsAll();
    void NewLayersAreScrolledTo();
    void UndoTakesBackANameThatIsBeingTyped();
};

void tst_LayerActions::HasItsMenuAndKeys()
{
    const Editor editor;
    const struct
    {
        const char* name;
        const char* text;
        const char* key;
        bool isCheckable;
    } actions[] = {
        {"actionLayerDuplicate", "Duplicate", "Ctrl+D", false},
        {"actionLayerFill", "Fill", "", false},
        {"actionLayerClear", "Clear", "", false},
        {"actionLayerInvert", "Invert", "", false},
        {"actionLayerGrow", "Grow…", "", false},
        {"actionLayerShrink", "Shrink…", "", false},
        {"actionLayerRing", "Add live ring…", "", false},
        {"actionLayerMerge", "Merge into…", "", false},
        {"actionLayerUp", "Move up", "Alt+Up", false},
        {"actionLayerDown", "Move down", "Alt+Down", false},
        {"actionLayerLock", "Lock", "Ctrl+L", true},
        {"actionLayerSolo", "Show only this layer", "Ctrl+Shift+H", true},
        {"actionLayersShowAll", "Show all layers", "", false},
        {"actionLayerFilter", "Filter layers", "", false},
    };
    for (const auto& each : actions) {
        const QAction* action = editor.Action(each.name);
        QVERIFY2(action, each.name);
        QCOMPARE(action->text(), QString::fromUtf8(each.text));
        QCOMPARE(action->shortcut().toString(), QLatin1String(each.key));
        QCOMPARE(action->isCheckable(), each.isCheckable);
        QVERIFY2(action->isEnabled(), each.name);
    }
}

void tst_LayerActions::FollowsTheCurrentLayer()
{
    Editor editor;
    const char* const ofOne[] = {"actionLayerDuplicate", "actionLayerFill", "actionLayerClear",
                                 "actionLayerInvert",    "actionLayerGrow", "actionLayerShrink",
                                 "actionLayerMerge",     "actionLayerUp",   "actionLayerDown",
                                 "actionLayerLock",      "actionLayerSolo", "actionLayerRing"};
    const auto verify = [&](bool isEnabled) {
        for (const char* name : ofOne) {
            QVERIFY2(editor.Action(name)->isEnabled() == isEnabled, name);
            if (!isEnabled) {
                // Nor does it when code asks for it.
                editor.Trigger(name);
                QVERIFY2(!editor.Action(name)->isChecked(), name);
            }
        }
    };
    verify(true);
    editor.Tree().setCurrentIndex({});
    editor.Child<QPushButton>("btnHideAll")->click();
    QVERIFY(!editor.Doc().CurrentLayer());
    verify(false);
    QVERIFY(editor.Action("actionLayersShowAll")->isEnabled());
    editor.Select("red");
    verify(true);
    // While the hand is at work nothing else happens.
    editor.Doc().SetHandBusy(true);
    verify(false);
    editor.Doc().SetHandBusy(false);
    verify(true);
    // Before a project is open there is nothing to do.
    editor.Restart();
    verify(false);
    QVERIFY(!editor.Action("actionLayersShowAll")->isEnabled());
    QVERIFY(!editor.Action("actionLayerFilter")->isEnabled());
}

void tst_LayerActions::Duplicates()
{
    Editor editor;
    editor.Select("red");
    Layer& red = editor.Named("red");
    editor.Randomize(red);
    red.SetColor(QColor(1, 2, 3));
    red.SetOpacity(77);
    red.StoreCode(QStringLiteral("!(%1)").arg(editor.At(1).Id()));
    editor.Key(Qt::Key_D, Qt::ControlModifier);

    QCOMPARE(editor.Names(), QStringList({"red", "red (2)", "blue"}));
    const Layer& copy = editor.At(1);
    QCOMPARE(copy.Image(), red.Image());
    QVERIFY(copy.Image().constBits() != red.Image().constBits());
    QCOMPARE(copy.Color(), red.Color());
    QCOMPARE(copy.Color().alpha(), 77);
    QCOMPARE(copy.UsageFlags(), red.UsageFlags());
    QCOMPARE(copy.ValueFlags(), red.ValueFlags());
    QCOMPARE(copy.IsVisible(), red.IsVisible());
    QCOMPARE(copy.Code(), red.Code());
    QCOMPARE(editor.Doc().CurrentLayer(), &copy);
    QCOMPARE(editor.Tree().currentIndex(), copy.index());
    QCOMPARE(editor.Doc().History().undoText(), "Duplicate layer red");

    editor.Select("red");
    editor.Key(Qt::Key_D, Qt::ControlModifier);
    QCOMPARE(editor.Names(), QStringList({"red", "red (3)", "red (2)", "blue"}));
    for (int i = 0; i < 2; ++i) {
        editor.Key(Qt::Key_Z, Qt::ControlModifier);
    }
    QCOMPARE(editor.Names(), QStringList({"red", "blue"}));
}

void tst_LayerActions::ADuplicateIsPaintedAlone()
{
    Editor editor;
    const QImage before = editor.Named("blue").Image().copy();
    editor.Key(Qt::Key_D, Qt::ControlModifier);
    editor.Trigger("actionTogglePaintMode");
    const QPoint place = editor.View().mapFromScene(50, 50);
    QTest::mouseClick(editor.View().viewport(), Qt::LeftButton, {}, place);
    QCOMPARE(editor.Named("blue").Image(), before);
    QVERIFY(editor.Named("blue (2)").Image() != before);
}

void tst_LayerActions::FillsClearsAndInverts()
{
    Editor editor;
    Layer& blue = editor.Named("blue");
    editor.Randomize(blue);
    const QImage before = blue.Image().copy();
    const struct
    {
        const char* action;
        const char* text;
        std::function<int(int)> rule;
    } deeds[] = {
        {"actionLayerFill", "Fill blue", [](int) { return 255; }},
        {"actionLayerClear", "Clear blue", [](int) { return 0; }},
        {"actionLayerInvert", "Invert blue", [](int old) { return 255 - old; }},
    };
    for (const auto& deed : deeds) {
        editor.Trigger(deed.action);
        const auto rule = [&](int x, int y) { return deed.rule(before.pixelIndex(x, y)); };
        VerifyPixels(blue.Image(), rule);
        QCOMPARE(editor.Doc().History().undoText(), deed.text);
        // The map shows the new pixels.
        QCOMPARE(editor.Scene().CurrentLayer(), &blue);
        editor.Key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(blue.Image(), before);
        editor.Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        VerifyPixels(blue.Image(), rule);
        editor.Key(Qt::Key_Z, Qt::ControlModifier);
    }
}

void tst_LayerActions::GrowsAndShrinks_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QString>("character");
    QTest::addColumn<int>("metres");
    QTest::addColumn<QString>("effect");
    QTest::addColumn<QString>("text");

    // 10 metres a pixel.
    QTest::newRow("grow") << QByteArray("actionLayerGrow") << "d" << 37 << "37 m = 3 px = 30 m"
                          << "Grow blue by 37 m";
    QTest::newRow("shrink") << QByteArray("actionLayerShrink") << "e" << 40 << "40 m = 4 px = 40 m"
                            << "Shrink blue by 40 m";
    QTest::newRow("grow by less than a pixel")
        << QByteArray("actionLayerGrow") << "d" << 9 << "9 m = 0 px = 0 m" << QString();
}

void tst_LayerActions::GrowsAndShrinks()
{
    QFETCH(QByteArray, action);
    QFETCH(QString, character);
    QFETCH(int, metres);
    QFETCH(QString, effect);
    QFETCH(QString, text);
    Editor editor;
    Layer& blue = editor.Named("blue");
    editor.Randomize(blue);
    const QImage before = blue.Image().copy();
    const QString code = QStringLiteral("%1(%2:%3)").arg(character).arg(blue.Id()).arg(metres);
    const QImage expected = EvaluateAtLayerSize(editor.Doc().Layers(), code);
    blue.StoreCode(QStringLiteral("!(0)"));

    editor.AnswerRadius(metres, Qt::Key_Escape, effect);
    editor.Trigger(action);
    QCOMPARE(blue.Image(), before);
    QVERIFY(!editor.Doc().CanUndo());

    editor.AnswerRadius(metres, Qt::Key_Return, effect);
    editor.Trigger(action);
    QCOMPARE(blue.Image(), expected);
    // It remembers how it was computed.
    QCOMPARE(blue.Code(), "!(0)");
    QCOMPARE(editor.Doc().History().undoText(), text);
    if (!text.isEmpty()) {
        QVERIFY(expected != before);
        editor.Key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(blue.Image(), before);
        editor.Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(blue.Image(), expected);
    }
}

void tst_LayerActions::CannotBeLeftWhileItComputes()
{
    Editor editor;
    editor.answers.Add([](QWidget& dialog) {
        auto* ok = dialog.findChild<QPushButton*>(QStringLiteral("btnOk"));
        const auto* bar = dialog.findChild<QProgressBar*>(QStringLiteral("pgr"));
        QVERIFY(!bar->isVisible());
        // The result needs the event loop.
        ok->click();
        QVERIFY(bar->isVisible());
        QCOMPARE(bar->maximum(), 0);
        for (const char* name : {"btnOk", "btnCancel", "spnRadius"}) {
            QVERIFY2(!dialog.findChild<QWidget*>(QLatin1String(name))->isEnabled(), name);
        }
        static_cast<QDialog&>(dialog).reject();
        static_cast<QDialog&>(dialog).accept();
        QVERIFY(!dialog.close());
        QVERIFY(dialog.isVisible());
        QTRY_VERIFY(!dialog.isVisible());
    });
    editor.Trigger("actionLayerGrow");
    QCOMPARE(editor.Doc().History().count(), 1);
}

void tst_LayerActions::TheRadiusHasBounds()
{
    Editor editor;
    for (const char* action : {"actionLayerGrow", "actionLayerShrink"}) {
        editor.answers.Add([](QWidget& dialog) {
            auto* spin = dialog.findChild<QSpinBox*>(QStringLiteral("spnRadius"));
            QCOMPARE(spin->minimum(), 1);
            QCOMPARE(spin->maximum(), 2000);
            QCOMPARE(spin->value(), 25);
            QTest::keyClicks(spin, QStringLiteral("0"));
            QTest::keyClick(spin, Qt::Key_Tab);
            QVERIFY(spin->value() >= 1);
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        editor.Trigger(action);
    }
    QCOMPARE(editor.answers.Asked().mid(1), QStringList({"Grow blue", "Shrink blue"}));
}

void tst_LayerActions::AddsARingThatFollowsTheBrush()
{
    Editor editor;
    Layer& red = editor.Named("red");
    editor.Select("red");
    const auto before = editor.SavedBytes();
    editor.AnswerRadius(40, Qt::Key_Escape, "40 m = 4 px = 40 m");
    editor.Trigger("actionLayerRing");
    QCOMPARE(editor.Names(), QStringList({"red", "blue"}));
    QVERIFY(!editor.Doc().CanUndo());

    // A lock is no obstacle: the pixels of the layer stay.
    editor.Doc().SetLocked(red, true);
    editor.AnswerRadius(40);
    editor.Trigger("actionLayerRing");
    editor.Doc().SetLocked(red, false);
    const QStringList names{"red", "Around red", "red + 40 m", "blue"};
    QCOMPARE(editor.answers.Asked().constLast(), "Live ring around red");
    QCOMPARE(editor.Names(), names);
    QCOMPARE(editor.Doc().History().undoText(), "Add live ring around red");
    const Layer& ring = editor.At(1);
    const Layer& wide = editor.At(2);
    QCOMPARE(wide.Code(), QStringLiteral("d(%1:40)").arg(red.Id()));
    QCOMPARE(ring.Code(), QStringLiteral("-(%1)(%2)").arg(wide.Id()).arg(red.Id()));
    QVERIFY(ring.IsVisible() && !wide.IsVisible());
    // The user goes on with the layer.
    QCOMPARE(editor.Doc().CurrentLayer(), &red);
    const auto follow = [&] {
        for (const Layer* layer : {&ring, &wide}) {
            QVERIFY(editor.Doc().LayerFormulas().IsLive(*layer));
            QCOMPARE(layer->Image(), EvaluateAtLayerSize(editor.Doc().Layers(), layer->Code()));
        }
    };
    follow();

    const QImage first = ring.Image().copy();
    editor.Trigger("actionTogglePaintMode");
    QTest::mouseClick(editor.View().viewport(), Qt::LeftButton, {},
                      editor.View().mapFromScene(50, 50));
    QVERIFY(ring.Image() != first);
    follow();
    editor.Trigger("actionUndo");
    QCOMPARE(ring.Image(), first);
    editor.Trigger("actionUndo");
    QCOMPARE(editor.SavedBytes(), before);
    editor.Trigger("actionRedo");
    QCOMPARE(editor.Names(), names);
    QCOMPARE(ring.Image(), first);
    editor.Trigger("actionRedo");
    follow();

    // Each ring has names of its own.
    editor.AnswerRadius(40);
    editor.Trigger("actionLayerRing");
    QCOMPARE(editor.Names(), QStringList({"red", "Around red (2)", "red + 40 m (2)", "Around red",
                                          "red + 40 m", "blue"}));
}

void tst_LayerActions::MergesIntoAnotherLayer()
{
    Editor editor;
    editor.Trigger("actionLayerClear");
    editor.Randomize(editor.Named("red"));
    editor.Randomize(editor.Named("blue"));
    const QImage red = editor.Named("red").Image().copy();
    const QImage blue = editor.Named("blue").Image().copy();
    Layer& target = editor.Named("red");
    const quint32 flags = target.UsageFlags();
    const auto before = editor.SavedBytes();

    editor.AnswerMerge("red");
    editor.Trigger("actionLayerMerge");
    QCOMPARE(editor.Names(), QStringList{"red"});
    VerifyPixels(target.Image(),
                 [&](int x, int y) { return red.pixelIndex(x, y) | blue.pixelIndex(x, y); });
    QCOMPARE(target.UsageFlags(), flags);
    QCOMPARE(editor.Doc().CurrentLayer(), &target);
    QCOMPARE(editor.Doc().History().undoText(), "Merge layer blue into red");
    QVERIFY(!editor.Action("actionLayerMerge")->isEnabled());
    const auto after = editor.SavedBytes();

    editor.Key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(editor.SavedBytes(), before);
    QCOMPARE(editor.Names(), QStringList({"red", "blue"}));
    editor.Key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(editor.SavedBytes(), after);
}

void tst_LayerActions::MergeIsCancelledAndNeedsAnother()
{
    Editor editor;
    editor.AnswerMerge("red", Qt::Key_Escape);
    editor.Trigger("actionLayerMerge");
    QCOMPARE(editor.Names(), QStringList({"red", "blue"}));
    QVERIFY(!editor.Doc().CanUndo());
    QCOMPARE(editor.answers.Asked().mid(1), QStringList{"Merge blue"});
}

void tst_LayerActions::MovesPastTheNextRow()
{
    Editor editor;
    editor.Key(Qt::Key_D, Qt::ControlModifier);
    QCOMPARE(editor.Names(), QStringList({"red", "blue", "blue (2)"}));
    editor.Key(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(editor.Names(), QStringList({"red", "blue (2)", "blue"}));
    QCOMPARE(editor.Doc().CurrentLayer()->text(), "blue (2)");
    QCOMPARE(editor.Doc().History().undoText(), "Move layer blue (2)");
    editor.Key(Qt::Key_Up, Qt::AltModifier);
    editor.Key(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(editor.Names(), QStringList({"blue (2)", "red", "blue"}));
    editor.Key(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(editor.Names(), QStringList({"red", "blue (2)", "blue"}));
    for (int i = 0; i < 3; ++i) {
        editor.Key(Qt::Key_Z, Qt::ControlModifier);
    }
    QCOMPARE(editor.Names(), QStringList({"red", "blue", "blue (2)"}));
}

void tst_LayerActions::ShowsAll()
{
    Editor editor;
    editor.Child<QPushButton>("btnHideAll")->click();
    editor.Trigger("actionLayersShowAll");
    QVERIFY(editor.Named("red").IsVisible() && editor.Named("blue").IsVisible());
    QCOMPARE(editor.Named("red").checkState(), Qt::Checked);
    QCOMPARE(editor.Doc().History().undoText(), "Show all layers");
    editor.Key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(!editor.Named("red").IsVisible() && !editor.Named("blue").IsVisible());
}

void tst_LayerActions::NewLayersAreScrolledTo()
{
    Editor editor;
    QTreeView& tree = editor.Tree();
    const auto isInView = [&](int row) {
        return tree.viewport()->rect().contains(tree.visualRect(editor.At(row).index()));
    };
    Layer* current = editor.Doc().CurrentLayer();
    for (int i = 0; i < 40; ++i) {
        editor.Child<QPushButton>("btnAddPainted")->click();
    }
    QVERIFY(isInView(41));
    QCOMPARE(editor.Doc().CurrentLayer(), current);
    tree.setCurrentIndex(editor.At(41).index());
    tree.scrollToTop();
    QVERIFY(!isInView(41));
    editor.Key(Qt::Key_D, Qt::ControlModifier);
    QCOMPARE(tree.currentIndex(), editor.At(42).index());
    QVERIFY(isInView(42));
    // Each is one step.
    for (int i = 0; i < 41; ++i) {
        editor.Key(Qt::Key_Z, Qt::ControlModifier);
    }
    QCOMPARE(editor.Names(), QStringList({"red", "blue"}));
}

void tst_LayerActions::UndoTakesBackANameThatIsBeingTyped()
{
    const Editor editor;
    editor.Doc().Do(Edits::Rename(editor.At(1), "sea"));
    editor.Select("red");
    editor.Tree().setFocus();
    QTest::keyClick(&editor.Tree(), Qt::Key_F2);
    QTest::keyClicks(editor.Tree().viewport()->findChild<QLineEdit*>(), "hill");

    editor.Trigger("actionUndo");
    QCOMPARE(editor.Names(), QStringList({"red", "sea"}));
    editor.Trigger("actionRedo");
    QCOMPARE(editor.Names(), QStringList({"hill", "sea"}));

    // Nothing was typed yet.
    QTest::keyClick(&editor.Tree(), Qt::Key_F2);
    editor.Trigger("actionUndo");
    QCOMPARE(editor.Names(), QStringList({"red", "sea"}));
}

QTEST_MAIN(tst_LayerActions)
#include "tst_LayerActions.moc"
