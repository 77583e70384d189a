#include "document/Document.h"
#include "document/Formulas.h"
#include "document/LiveLayers.h"
#include "document/edits/LayerEdits.h"
#include "document/edits/PaintMask.h"
#include "layers/Formula.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "tests/support/Files.h"
#include "tests/support/Masks.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockLayers.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QPushButton>
#include <QTest>

#include <algorithm>

/// A project with the painted layers red and blue, and ring: the dilation of red by 50 m, which are
/// 5 pixels.
class Editor : public WindowFixture
{
public:
    Editor()
        : path(WriteProject())
    {
        Load(path);
        ring = Add(QStringLiteral("ring"), {OperationDilation, {At("red")->Id()}, 50});
        Select(*ring);
        log.Take();
    }

    Document& Doc() const { return window->GetDocument(); }
    Layer* At(const char* name) const
    {
        return Doc().Layers().LayerByName(QString::fromLatin1(name));
    }
    Layer* Add(const QString& name, const Formula& formula) const
    {
        const QString code = formula.Code();
        Doc().Do(Edits::AddComputedLayer(Doc().Layers(), name, code,
                                         EvaluateAtLayerSize(Doc().Layers(), code)));
        return Doc().Layers().LayerByName(name);
    }
    void Select(Layer& layer) const { window->LayerSelected(&layer); }
    void Fill(Layer& layer, const QRect& rect, uchar value) const
    {
        QImage mask = layer.Image().copy();
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            std::fill_n(mask.scanLine(y) + rect.left(), rect.width(), value);
        }
        Doc().Do(std::make_unique<PaintMask>(QStringLiteral("Fill"), layer, mask));
    }
    static QString Tip(const Layer& layer) { return layer.data(Qt::ToolTipRole).toString(); }
    bool IsRight(const Layer& layer) const
    {
        return Indices(layer.Image()) == Indices(EvaluateAtLayerSize(Doc().Layers(), layer.Code()));
    }
    QString Sidecar() const
    {
        return QFileInfo(path).path() + QStringLiteral("/small.derived.xml");
    }

    QString path;
    Layer* ring;
};

class tst_DerivedActions : public QObject
{
    Q_OBJECT

private slots:
    void AreThereForComputedLayers();
    void RowsTellFormulaAndState();
    void UpdateComputesStaleOperandsFirst();
    void UpdateAllAsksOnceAboutHandEdits();
    void CyclesAreRefusedWithTheChain();
    void BrokenLayersTellWhy();
    void LiveFollowsTheBrush();
    void TheDialogAddsALayerThatFollows();
    void ALiveLayerMayBeShownAndHidden();
    void DuplicatesKeepTheFormulaAndFollowNothing();
    void SaveAndLoadKeepFormulasAndStates();
    void WithoutTheFileAllIsAsItWas();
    void ASaveWithoutFormulasRemovesTheFile();
    void ASaveKeepsTheFormulasOfALostDocument_data();
    void ASaveKeepsTheFormulasOfALostDocument();
    void AnotherPersonsHandEditsAreNoticed();
    void ADamagedFileIsToldOnce();
    void AnUnwritableFileStopsTheSave();
    void ASaveKeepsAFileThatCannotBeUsed();
};

void tst_DerivedActions::AreThereForComputedLayers()
{
    const Editor editor;

    QVERIFY(editor.Action("actionLayerUpdate")->isEnabled());
    QVERIFY(editor.Action("actionLayerLive")->isEnabled());
    QVERIFY(!editor.Action("actionLayerLive")->isChecked());
    QCOMPARE(editor.Action("actionLayerUpdate")->shortcut(), QKeySequence(Qt::Key_F5));
    QCOMPARE(editor.Action("actionLayersUpdateAll")->shortcut(),
             QKeySequence(Qt::SHIFT + Qt::Key_F5));
    editor.Select(*editor.At("red"));
    QVERIFY(!editor.Action("actionLayerUpdate")->isEnabled());
    QVERIFY(!editor.Action("actionLayerLive")->isEnabled());
    QVERIFY(editor.Action("actionLayersUpdateAll")->isEnabled());
}

void tst_DerivedActions::RowsTellFormulaAndState()
{
    const Editor editor;

    QCOMPARE(editor.Tip(*editor.ring), QStringLiteral("Dilation of red, 50 m, up to date"));
    editor.Fill(*editor.At("red"), {40, 40, 5, 5}, 255);
    QCOMPARE(editor.Tip(*editor.ring), QStringLiteral("Dilation of red, 50 m, out of date"));
    QVERIFY(editor.ring->data(Qt::DecorationRole).canConvert<QIcon>());
    editor.Fill(*editor.ring, {60, 60, 2, 2}, 255);
    QCOMPARE(editor.Tip(*editor.ring), QStringLiteral("Dilation of red, 50 m, edited by hand"));
    QCOMPARE(editor.Tip(*editor.At("red")), QString());
}

void tst_DerivedActions::UpdateComputesStaleOperandsFirst()
{
    Editor editor;
    Layer* shore =
        editor.Add(QStringLiteral("shore"),
                   {OperationDifference, {editor.ring->Id(), editor.At("red")->Id()}, 0});
    editor.Fill(*editor.At("red"), {40, 40, 5, 5}, 255);
    const QByteArray before = Indices(shore->Image());
    const int steps = editor.Doc().History().count();

    editor.Select(*shore);
    editor.Trigger("actionLayerUpdate");
    QVERIFY(editor.IsRight(*editor.ring) && editor.IsRight(*shore));
    QVERIFY(editor.Tip(*shore).endsWith(QLatin1String("up to date")));
    QCOMPARE(editor.Doc().History().count(), steps + 1);
    editor.Trigger("actionUndo");
    QCOMPARE(Indices(shore->Image()), before);
    QVERIFY(editor.Tip(*editor.ring).endsWith(QLatin1String("out of date")));

    editor.Trigger("actionRedo");
    editor.Trigger("actionLayerUpdate");
    QCOMPARE(editor.Doc().History().count(), steps + 1);
}

void tst_DerivedActions::UpdateAllAsksOnceAboutHandEdits()
{
    Editor editor;
    Layer* land = editor.Add(QStringLiteral("land"), {OperationComplement, {editor.ring->Id()}, 0});
    Layer* both = editor.Add(QStringLiteral("both"),
                             {OperationUnion, {editor.ring->Id(), editor.At("blue")->Id()}, 0});
    editor.Fill(*editor.ring, {40, 40, 5, 5}, 255);
    editor.Fill(*both, {50, 50, 5, 5}, 255);
    const QByteArray edited = Indices(both->Image());
    const int asked = editor.answers.Asked().size();

    editor.answers.AddButton(QStringLiteral("No"));
    editor.Trigger("actionLayersUpdateAll");
    QCOMPARE(editor.answers.Asked().size(), asked + 1);
    QVERIFY(editor.answers.Asked().constLast().contains(QLatin1String("ring, both")));
    QCOMPARE(Indices(both->Image()), edited);
    // It was out of date, because an operand was edited.
    QVERIFY(editor.IsRight(*land));
    editor.answers.AddButton(QStringLiteral("Yes"));
    editor.Trigger("actionLayersUpdateAll");
    QCOMPARE(editor.answers.Asked().size(), asked + 2);
    QVERIFY(editor.IsRight(*editor.ring) && editor.IsRight(*both) && editor.IsRight(*land));
    QVERIFY(editor.Tip(*both).endsWith(QLatin1String("up to date")));
}

void tst_DerivedActions::CyclesAreRefusedWithTheChain()
{
    Editor editor;
    const QString code = Formula{OperationErosion, {editor.ring->Id()}, 20}.Code();
    Layer* red = editor.At("red");
    editor.Doc().Do(Edits::ModifyLayer(*red, red->text(), code,
                                       EvaluateAtLayerSize(editor.Doc().Layers(), code)));
    const QByteArray before = Indices(editor.ring->Image());
    editor.log.Take();
    const QString refused =
        QStringLiteral("Error: These layers are made of one another and cannot be updated: %1.");

    editor.Trigger("actionLayerUpdate");
    QCOMPARE(editor.log.Take(), QStringList(refused.arg("ring -> red -> ring")));
    editor.Trigger("actionLayersUpdateAll");
    QCOMPARE(editor.log.Take().size(), 1);
    editor.Trigger("actionLayerLive");
    QCOMPARE(editor.log.Take(), QStringList(refused.arg("ring -> red -> ring")));
    QVERIFY(!editor.Action("actionLayerLive")->isChecked());
    QCOMPARE(Indices(editor.ring->Image()), before);
}

void tst_DerivedActions::BrokenLayersTellWhy()
{
    Editor editor;
    editor.Doc().Do(Edits::RemoveLayer(*editor.At("red")));
    editor.log.Take();

    editor.Trigger("actionLayerUpdate");
    QCOMPARE(editor.log.Take(), QStringList("Error: Cannot be updated: 'ring' (red is missing)."));
    editor.Trigger("actionUndo");
    QVERIFY(editor.Tip(*editor.ring).endsWith(QLatin1String("up to date")));
}

void tst_DerivedActions::LiveFollowsTheBrush()
{
    Editor editor;
    editor.ring->setCheckState(Qt::Checked);
    editor.Fill(*editor.At("red"), {40, 40, 5, 5}, 255);
    editor.Trigger("actionLayerLive");
    QVERIFY(editor.Action("actionLayerLive")->isChecked());
    QVERIFY(editor.IsRight(*editor.ring));
    const QByteArray before = Indices(editor.ring->Image());
    const int steps = editor.Doc().History().count();

    editor.Select(*editor.At("red"));
    editor.Trigger("actionTogglePaintMode");
    QWidget* viewport = editor.View().viewport();
    const auto at = [&editor](int x, int y) { return editor.View().mapFromScene(x, y); };
    QTest::mousePress(viewport, Qt::LeftButton, {}, at(50, 10));
    QVERIFY(editor.IsRight(*editor.ring));
    QVERIFY(Indices(editor.ring->Image()) != before);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, at(50, 10));
    QCOMPARE(editor.Doc().History().count(), steps + 1);
    QVERIFY(editor.IsRight(*editor.ring));
    editor.Trigger("actionUndo");
    QCOMPARE(Indices(editor.ring->Image()), before);

    editor.Select(*editor.ring);
    QVERIFY(!editor.Doc().WhyPixelsStay(*editor.ring).isEmpty());
    editor.Trigger("actionLayerLive");
    QVERIFY(!editor.Action("actionLayerLive")->isChecked());
    QVERIFY(editor.Doc().WhyPixelsStay(*editor.ring).isEmpty());
    editor.Fill(*editor.At("red"), {0, 0, 5, 5}, 255);
    QCOMPARE(Indices(editor.ring->Image()), before);
}

void tst_DerivedActions::TheDialogAddsALayerThatFollows()
{
    Editor editor;
    const int steps = editor.Doc().History().count();
    editor.answers.Add([](QWidget& dialog) {
        auto* ok = dialog.findChild<QPushButton*>(QStringLiteral("btnOk"));
        QTRY_VERIFY(ok->isEnabled());
        auto* live = dialog.findChild<QCheckBox*>(QStringLiteral("chkLive"));
        QVERIFY(!live->isChecked());
        live->click();
        ok->click();
        QTRY_VERIFY(!dialog.isVisible());
    });
    editor.Child<QPushButton>("btnAddCustom")->click();
    const Layer* added = editor.At("unnamed");
    QVERIFY(added && editor.Doc().LayerFormulas().IsLive(*added));
    QCOMPARE(editor.Doc().History().count(), steps + 1);
    // It is the complement of the first layer.
    editor.Fill(*editor.At("red"), {40, 40, 5, 5}, 255);
    QVERIFY(editor.IsRight(*added));
    editor.Trigger("actionUndo");
    editor.Trigger("actionUndo");
    QVERIFY(!editor.At("unnamed"));
    editor.Trigger("actionRedo");
    QCOMPARE(editor.At("unnamed"), added);
    QVERIFY(editor.Doc().LayerFormulas().IsLive(*added));
    QCOMPARE(editor.Doc().CurrentLayer(), added);

    // Modify leaves a layer as live as it is.
    editor.Child<DockLayers>("DockLayers")->SelectItem(editor.ring);
    editor.answers.Add([](QWidget& dialog) {
        QVERIFY(!dialog.findChild<QCheckBox*>(QStringLiteral("chkLive"))->isVisible());
        auto* cancel = dialog.findChild<QPushButton*>(QStringLiteral("btnCancel"));
        QTRY_VERIFY(cancel->isEnabled());
        cancel->click();
    });
    editor.Child<DockLayers>("DockLayers")->Modify();
}

void tst_DerivedActions::ALiveLayerMayBeShownAndHidden()
{
    Editor editor;
    editor.Trigger("actionLayerLive");
    editor.Select(*editor.At("blue"));
    const auto shown = [&editor] {
        QImage picture(64, 64, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        editor.Scene().render(&painter, QRectF(), QRectF(0, 0, 64, 64));
        painter.end();
        return picture;
    };
    editor.ring->setCheckState(Qt::Checked);
    shown();
    editor.Fill(*editor.At("red"), {40, 40, 5, 5}, 255);
    const QImage followed = shown();
    QVERIFY(followed.pixel(36, 41) != 0);
    editor.window->FinalizeConfigurationLoad(true, editor.At("blue")->row());
    QCOMPARE(shown(), followed);
}

void tst_DerivedActions::DuplicatesKeepTheFormulaAndFollowNothing()
{
    Editor editor;
    editor.Trigger("actionLayerLive");
    editor.Trigger("actionLayerDuplicate");
    Layer* copy = editor.Doc().Layers().LayerAt(editor.ring->row() + 1);

    QCOMPARE(copy->Code(), editor.ring->Code());
    QVERIFY(!editor.Doc().LayerFormulas().IsLive(*copy));
    QVERIFY(editor.Tip(*copy).endsWith(QLatin1String("up to date")));
    editor.Fill(*editor.At("red"), {40, 40, 5, 5}, 255);
    QVERIFY(editor.Tip(*copy).endsWith(QLatin1String("out of date")));
    // What is known of a layer goes along.
    editor.Select(*copy);
    editor.Trigger("actionLayerDuplicate");
    const Layer* second = editor.Doc().Layers().LayerAt(copy->row() + 1);
    QVERIFY(editor.Tip(*second).endsWith(QLatin1String("out of date")));
    editor.Trigger("actionUndo");
    QVERIFY(editor.IsRight(*editor.ring));
}

void tst_DerivedActions::SaveAndLoadKeepFormulasAndStates()
{
    Editor editor;
    editor.Add(QStringLiteral("land"), {OperationComplement, {editor.At("red")->Id()}, 0});
    editor.Trigger("actionLayerLive");
    editor.Fill(*editor.At("red"), {40, 40, 5, 5}, 255);
    editor.Doc().Do(Edits::Rename(*editor.At("red"), QStringLiteral("lake")));
    editor.Trigger("actionQuickSave");
    QVERIFY(!editor.IsModified());
    const QByteArray text = ReadBytes(editor.Sidecar());
    QVERIFY(text.contains("\"dilation\"") && text.contains("\"lake\""));
    QVERIFY(editor.Doc().Files().Knows(editor.Sidecar()));

    editor.Load(editor.path);
    QVERIFY(!editor.IsModified());
    QCOMPARE(editor.Tip(*editor.At("ring")), QStringLiteral("Dilation of lake, 50 m, up to date"));
    QCOMPARE(editor.Tip(*editor.At("land")), QStringLiteral("Complement of lake, out of date"));
    editor.Fill(*editor.At("lake"), {0, 0, 5, 5}, 255);
    QVERIFY(editor.IsRight(*editor.At("ring")));
    editor.Trigger("actionUndo");
    QVERIFY(!editor.IsModified());
    editor.Trigger("actionQuickSave");
    QCOMPARE(ReadBytes(editor.Sidecar()), text);
}

void tst_DerivedActions::WithoutTheFileAllIsAsItWas()
{
    Editor editor;
    editor.Trigger("actionQuickSave");
    const QMap<QString, QByteArray> saved = FilesBelow(QFileInfo(editor.path).path());
    QVERIFY(QFile::remove(editor.Sidecar()));

    editor.Load(editor.path);
    QCOMPARE(editor.Tip(*editor.At("ring")), QString());
    QCOMPARE(editor.At("ring")->Code(), QString());
    QVERIFY(!editor.Action("actionLayersUpdateAll")->isEnabled());
    editor.Trigger("actionQuickSave");
    QMap<QString, QByteArray> without = saved;
    QCOMPARE(without.remove(QStringLiteral("small.derived.xml")), 1);
    QCOMPARE(FilesBelow(QFileInfo(editor.path).path()), without);
}

void tst_DerivedActions::ASaveWithoutFormulasRemovesTheFile()
{
    Editor editor;
    editor.Trigger("actionQuickSave");
    QVERIFY(QFileInfo::exists(editor.Sidecar()));
    editor.Doc().Do(Edits::RemoveLayer(*editor.ring));
    editor.Trigger("actionQuickSave");
    QVERIFY(!QFileInfo::exists(editor.Sidecar()));
}

void tst_DerivedActions::ASaveKeepsTheFormulasOfALostDocument_data()
{
    QTest::addColumn<bool>("hasFormulas");
    QTest::newRow("replaced") << true;
    QTest::newRow("removed") << false;
}

void tst_DerivedActions::ASaveKeepsTheFormulasOfALostDocument()
{
    QFETCH(bool, hasFormulas);
    Editor editor;
    editor.Trigger("actionQuickSave");
    const QByteArray formulas = ReadBytes(editor.Sidecar());
    QVERIFY(QFile::remove(editor.path));
    if (hasFormulas) {
        editor.Doc().Do(Edits::Rename(*editor.ring, QStringLiteral("shore")));
    } else {
        editor.Doc().Do(Edits::RemoveLayer(*editor.ring));
    }
    editor.TriggerWithFile("actionSave", editor.path);

    QVERIFY(QFileInfo::exists(editor.path));
    QCOMPARE(ReadBytes(editor.Sidecar() + "~"), formulas);
    QCOMPARE(QFileInfo::exists(editor.Sidecar()), hasFormulas);
    QVERIFY(!hasFormulas || ReadBytes(editor.Sidecar()).contains("shore"));
}

void tst_DerivedActions::AnotherPersonsHandEditsAreNoticed()
{
    Editor editor;
    editor.Trigger("actionLayerLive");
    editor.Trigger("actionQuickSave");
    const QString bitmap = QFileInfo(editor.path).path() + QStringLiteral("/layers/%1.tga");
    WriteBytes(bitmap.arg("ring"), ReadBytes(bitmap.arg("blue")));

    editor.Load(editor.path);
    QVERIFY(editor.Tip(*editor.At("ring")).endsWith(QLatin1String("edited by hand")));
    // It follows only when the user has decided about the edits.
    const QByteArray before = Indices(editor.At("ring")->Image());
    editor.Fill(*editor.At("red"), {40, 40, 5, 5}, 255);
    QCOMPARE(Indices(editor.At("ring")->Image()), before);
    editor.Select(*editor.At("ring"));
    editor.answers.AddButton(QStringLiteral("Yes"));
    editor.Trigger("actionLayerUpdate");
    QVERIFY(editor.IsRight(*editor.At("ring")));
    editor.Fill(*editor.At("red"), {50, 50, 5, 5}, 255);
    QVERIFY(editor.IsRight(*editor.At("ring")));
}

void tst_DerivedActions::ADamagedFileIsToldOnce()
{
    Editor editor;
    editor.Trigger("actionQuickSave");
    WriteBytes(editor.Sidecar(), "<qm-derived><formula operation='boil'/></qm-derived>");
    editor.log.Take();

    editor.Load(editor.path);
    const QStringList errors = editor.log.Take().filter(QStringLiteral("Error"));
    QCOMPARE(errors.size(), 1);
    QVERIFY(errors.first().contains(QLatin1String("small.derived.xml")));
    QCOMPARE(editor.Doc().Layers().Layers().size(), 3);
    QCOMPARE(editor.Tip(*editor.At("ring")), QString());
}

void tst_DerivedActions::AnUnwritableFileStopsTheSave()
{
    Editor editor;
    WriteBytes(editor.Sidecar() + QStringLiteral("/in the way"), "x");
    const QByteArray before = ReadBytes(editor.path);
    editor.Trigger("actionQuickSave");

    QVERIFY(editor.IsModified());
    QCOMPARE(ReadBytes(editor.path), before);
    QVERIFY(!QFileInfo::exists(QFileInfo(editor.path).path() + QStringLiteral("/layers/ring.tga")));
}

void tst_DerivedActions::ASaveKeepsAFileThatCannotBeUsed()
{
    Editor editor;
    editor.Trigger("actionQuickSave");
    const QByteArray strange = "<qm-derived><formula operation='boil'/></qm-derived>";
    WriteBytes(editor.Sidecar(), strange);
    editor.Load(editor.path);

    editor.Trigger("actionQuickSave");
    QCOMPARE(ReadBytes(editor.Sidecar()), strange);
    editor.Add(QStringLiteral("land"), {OperationComplement, {editor.At("red")->Id()}, 0});
    const QString kept = editor.Sidecar() + QLatin1Char('~');
    WriteBytes(kept, "older");
    for (int save = 0; save < 2; ++save) {
        editor.Trigger("actionQuickSave");
        QVERIFY(!editor.IsModified());
        QVERIFY(ReadBytes(editor.Sidecar()).contains("\"complement\""));
        QCOMPARE(ReadBytes(kept), strange);
    }
}

QTEST_MAIN(tst_DerivedActions)
#include "tst_DerivedActions.moc"
