#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/Files.h"
#include "tests/support/Models.h"
#include "tests/support/WindowFixture.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QTest>

/// "Save now" and the file that it writes.
class tst_QuickSave : public QObject
{
    Q_OBJECT

private slots:
    void WritesTheProjectsOwnFileWithoutADialog();
    void FollowsASaveElsewhere();
    void EndsTheStrokeUnderWay();
    void UndoesTheNamesThatASaveGives();
    void AsksWhereNoFileHoldsTheProject_data();
    void AsksWhereNoFileHoldsTheProject();
    void IsDisabledWithoutAProject();

private:
    static void RenameFirstLayer(const WindowFixture& fixture, const QString& name)
    {
        LayerList& layers = fixture.window->GetDocument().Layers();
        layers.model()->setData(layers.model()->index(0, 0), name, Qt::EditRole);
    }
};

void tst_QuickSave::WritesTheProjectsOwnFileWithoutADialog()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    const int asked = fixture.answers.Asked().size();
    // Dialogs begin in this folder; it says nothing about where the project is.
    fixture.window->GetDocument().SetPlace(QDir(fixture.Path("")), "small.xml");
    RenameFirstLayer(fixture, "green");
    QVERIFY(fixture.IsModified());

    fixture.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
    QTest::keyClick(fixture.window.get(), Qt::Key_S, Qt::ControlModifier | Qt::AltModifier);

    QCOMPARE(fixture.answers.Asked().size(), asked);
    QVERIFY(!fixture.IsModified());
    QVERIFY(ReadBytes(path).contains("green"));
    QVERIFY(QFileInfo::exists(fixture.Path("small/layers/green.tga")));
    QVERIFY(!QFileInfo::exists(fixture.Path("small.xml")));
}

void tst_QuickSave::FollowsASaveElsewhere()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    const QByteArray before = ReadBytes(path);
    fixture.TriggerWithFile("actionSave", fixture.Path("other.xml"));
    RenameFirstLayer(fixture, "green");

    fixture.Trigger("actionQuickSave");

    QVERIFY(ReadBytes(fixture.Path("other.xml")).contains("green"));
    QCOMPARE(ReadBytes(path), before);
}

void tst_QuickSave::EndsTheStrokeUnderWay()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.Trigger("actionTogglePaintMode");
    const Document& document = fixture.window->GetDocument();
    QWidget* map = fixture.View().viewport();
    const QPoint place = fixture.View().mapFromScene(40, 40);
    QTest::mouseMove(map, place);
    QTest::mousePress(map, Qt::LeftButton, {}, place);
    QVERIFY(document.IsHandBusy());

    fixture.Trigger("actionQuickSave");
    QTest::mouseRelease(map, Qt::LeftButton, {}, place);

    QVERIFY(!document.IsHandBusy());
    QVERIFY(!fixture.IsModified());
    const WindowFixture::SavedFiles saved = fixture.SavedBytes();
    QCOMPARE(ReadBytes(fixture.Path("small/layers/blue.tga")), saved["layers/blue.tga"]);
    fixture.Trigger("actionUndo");
    QVERIFY(fixture.IsModified());
    QVERIFY(fixture.SavedBytes().value("layers/blue.tga") != saved["layers/blue.tga"]);
    fixture.Trigger("actionRedo");
    QVERIFY(!fixture.IsModified());
}

void tst_QuickSave::UndoesTheNamesThatASaveGives()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    const LayerList& layers = fixture.window->GetDocument().Layers();
    RenameFirstLayer(fixture, "blue");
    QCOMPARE(RowTexts(*layers.model()), (QStringList{"blue", "blue"}));

    fixture.Trigger("actionQuickSave");
    QCOMPARE(RowTexts(*layers.model()), (QStringList{"blue", "blue (2)"}));
    QVERIFY(!fixture.IsModified());

    fixture.Trigger("actionUndo");
    fixture.Trigger("actionUndo");
    QCOMPARE(RowTexts(*layers.model()), (QStringList{"red", "blue"}));
    QVERIFY(fixture.IsModified());
}

void tst_QuickSave::AsksWhereNoFileHoldsTheProject_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("offered");

    // 64 x 64 pixels without flag types.
    const QByteArray map = [] {
        QByteArray bytes;
        const qint32 header[] = {64, 64, 640, 640, 0, 0};
        bytes.append(reinterpret_cast<const char*>(header), sizeof header);
        return bytes;
    }();
    QTest::newRow("an imported map") << map << "actionImportMap"
                                     << "";
    QTest::newRow("no map at all") << QByteArray("x") << "actionImportMap"
                                   << "";
    QTest::newRow("a project that could not be read")
        << QByteArray("<qm-config><layers><layer name='a'></layers></qm-config>") << "actionLoad"
        << "other";
}

void tst_QuickSave::AsksWhereNoFileHoldsTheProject()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, action);
    QFETCH(QString, offered);
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    const QByteArray before = ReadBytes(path);
    WriteBytes(fixture.Path("other"), file);
    fixture.SetModified(false);
    fixture.TriggerWithFile(qPrintable(action), fixture.Path("other"));
    QString preselected = "none";
    fixture.answers.Add([&preselected](QWidget& dialog) {
        preselected = dialog.findChild<QLineEdit*>("fileNameEdit")->text();
        qobject_cast<QDialog*>(&dialog)->reject();
    });

    fixture.Trigger("actionQuickSave");

    QCOMPARE(preselected, offered);
    QCOMPARE(ReadBytes(path), before);
    QCOMPARE(ReadBytes(fixture.Path("other")), file);
}

void tst_QuickSave::IsDisabledWithoutAProject()
{
    const WindowFixture fixture;
    QVERIFY(!fixture.Action("actionQuickSave")->isEnabled());
}

QTEST_MAIN(tst_QuickSave)
#include "tst_QuickSave.moc"
