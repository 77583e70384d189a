#include "document/Document.h"
#include "layers/LayerList.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"
#include "ui/widgets/NoticeBar.h"

#include <QAbstractButton>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>

namespace {

const char* const Red = "name=\"red\"/>";

/// A window whose project can be changed on disk before it is loaded.
class Editor : public WindowFixture
{
public:
    Editor()
        : path(WriteProject())
    {
    }

    void Replace(const QByteArray& old, const QByteArray& now) const
    {
        QByteArray document = ReadBytes(path);
        QVERIFY(document.contains(old));
        WriteBytes(path, document.replace(old, now));
    }
    QWidget& Bar() const { return *Child<QWidget>("barNotice"); }
    /// The texts of all notices, dismissing each.
    QStringList TakeNotices() const
    {
        QStringList texts;
        while (!Bar().isHidden()) {
            texts.append(Child<QLabel>("lblNotice")->text());
            Click("btnNoticeClose");
        }
        return texts;
    }
    QString Notice() const
    {
        return Bar().isHidden() ? QString() : Child<QLabel>("lblNotice")->text();
    }
    void Click(const char* button) const
    {
        auto* widget = Child<QAbstractButton>(button);
        QVERIFY2(widget, button);
        // A layout shows a new button later.
        QTRY_VERIFY2(widget->isVisible(), button);
        QTest::mouseClick(widget, Qt::LeftButton);
    }
    void RenameFirstLayer(const QString& name) const
    {
        LayerList& layers = window->GetDocument().Layers();
        layers.model()->setData(layers.model()->index(0, 0), name, Qt::EditRole);
    }
    QDialog* LeftOutList() const { return Child<QDialog>("DialogLeftOut"); }

    const QString path;
};

const QString OldOne =
    QStringLiteral(" The old one is kept under Project \u2192 Earlier versions.");
const QString OldOnes =
    QStringLiteral(" The old ones are kept under Project \u2192 Earlier versions.");

} // namespace

/// What the bar above the map tells about the open project.
class tst_ProjectNotices : public QObject
{
    Q_OBJECT

private slots:
    void TellsWhatALoadDidNotRead_data();
    void TellsWhatALoadDidNotRead();
    void SavesNowOnlyOverWhatWasRead_data();
    void SavesNowOnlyOverWhatWasRead();
    void ShortensLongTexts();
    void ListsTheLayersThatWereLeftOut();
    void AnotherProjectWithdrawsThem_data();
    void AnotherProjectWithdrawsThem();
    void AFileThatCannotBeOpenedKeepsThem();
    void TellsWhatASaveReplaced_data();
    void TellsWhatASaveReplaced();
    void WhatWasSavedOnceIsTheProjectsOwn();
    void ANewProjectReplacesWhatLiesInItsFolder();
    void OffersToEditWhatIsOpenForViewing_data();
    void OffersToEditWhatIsOpenForViewing();
    void AskedAboutUnsavedWorkEditMayBeRefused();
    void TellsThatNothingIsTicked_data();
    void TellsThatNothingIsTicked();
    void TellsThatThereIsNothingToSave();
};

void tst_ProjectNotices::TellsWhatALoadDidNotRead_data()
{
    QTest::addColumn<QByteArray>("old");
    QTest::addColumn<QByteArray>("now");
    QTest::addColumn<QStringList>("notices");

    QTest::newRow("nothing is missing") << QByteArray() << QByteArray() << QStringList();
    QTest::newRow("one layer") << QByteArray(Red) << QByteArray("name=\"Lake\"/>")
                               << QStringList{"1 of 2 layers was left out: Lake. Saving would "
                                              "remove it from the project."};
    QTest::newRow("two layers")
        << QByteArray(Red)
        << QByteArray("name=\"Lake\"/><layer name=\"../x\"/><layer name=\"red\"/>")
        << QStringList{"2 of 4 layers were left out: Lake, ../x. Saving would remove them from "
                       "the project."};
    QTest::newRow("behind the lists")
        << QByteArray("</territory-type-list>") << QByteArray("</territory-type-list><a></b>")
        << QStringList{"The document ends at a fault in line 24: Opening and ending tag mismatch. "
                       "What follows it was not read; saving would remove it."};
    QTest::newRow("a fault and a layer")
        << QByteArray("name=\"blue\"/>\n    </layers>") << QByteArray("name=\"Lake\"/></layers><&")
        << QStringList{"The document ends at a fault in line 16: Unexpected '&'. What follows it "
                       "was not read; saving would remove it.",
                       "1 of 2 layers was left out: Lake. Saving would remove it from the "
                       "project."};
    QTest::newRow("within the layers")
        << QByteArray("name=\"blue\"/>") << QByteArray("name=\"blue\"></a>")
        << QStringList{"'small.xml' could not be read: it has a fault in line 16: Opening and "
                       "ending tag mismatch. Saving over it would remove what it holds."};
}

void tst_ProjectNotices::TellsWhatALoadDidNotRead()
{
    QFETCH(QByteArray, old);
    QFETCH(QByteArray, now);
    QFETCH(QStringList, notices);
    Editor editor;
    if (!old.isEmpty()) {
        editor.Replace(old, now);
    }

    editor.Load(editor.path);

    QCOMPARE(editor.TakeNotices(), notices);
}

void tst_ProjectNotices::SavesNowOnlyOverWhatWasRead_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("notice");

    const QString none = "'small.xml' holds no project data. Saving over it would remove what it "
                         "holds.";
    QTest::newRow("another program's") << QByteArray("<html><body>x</body></html>") << none;
    QTest::newRow("an empty file") << QByteArray() << none;
    QTest::newRow("no XML") << QByteArray("\x89PNG\r\n") << none;
    QTest::newRow("flag types") << QByteArray(
                                       "<areas><usages><usage name='Town'/></usages></areas>")
                                << none;
    QTest::newRow("an exported territory type")
        << QByteArray("<territory-type name='Deer'><territory/></territory-type>") << none;
    QTest::newRow("a project without its end")
        << QByteArray("<qm-config><global><layer size='64'/><world size='640'/></global>")
        << "The document ends at a fault in line 1: Premature end of document. What follows it was "
           "not read; saving would remove it.";
    QTest::newRow("a project without its lists")
        << QByteArray("<qm-config><layers><layer name='a'></layers></qm-config>")
        << "'small.xml' could not be read: it has a fault in line 1: Opening and ending tag "
           "mismatch. Saving over it would remove what it holds.";
}

void tst_ProjectNotices::SavesNowOnlyOverWhatWasRead()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, notice);
    Editor editor;
    WriteBytes(editor.path, document);

    editor.Load(editor.path);

    QCOMPARE(editor.Notice(), notice);
    QCOMPARE(editor.window->GetDocument().Path(), QString());
    editor.answers.AddCancel();
    editor.Trigger("actionQuickSave");
    QCOMPARE(editor.answers.Asked().constLast(), "Save");
    QCOMPARE(ReadBytes(editor.path), document);

    editor.SaveOver("actionSave", editor.path);

    // Now it is a project, and nothing can be lost any more.
    QCOMPARE(editor.Notice(), QString());
    QCOMPARE(editor.window->GetDocument().Path(), editor.path);
}

void tst_ProjectNotices::ShortensLongTexts()
{
    Editor editor;
    QByteArray layers;
    for (int i = 1; i <= 60; ++i) {
        layers +=
            "<layer name=\"" + QByteArray::number(i) + "&#10;%2" + QByteArray(90, 'x') + "\"/>";
    }
    editor.Replace("<layers>", "<layers>" + layers);
    editor.window->resize(editor.window->minimumSizeHint());
    // A load shows its progress, which may need room, too.
    editor.Load(editor.WriteProject("other"));
    QCoreApplication::processEvents();
    const QSize smallest = editor.window->minimumSizeHint();
    const QSize size = editor.window->size();

    editor.Load(editor.path);

    const QString x(" %2" + QString(35, 'x'));
    QCOMPARE(editor.Notice(),
             QString("60 of 62 layers were left out: 1%1…, 2%1…, 3%1…, 4%1…, 5%1… and 55 more. "
                     "Saving would remove them from the project.")
                 .arg(x));
    // A long text takes more lines, and the map gives the room.
    QCoreApplication::processEvents();
    QCOMPARE(editor.window->minimumSizeHint().boundedTo(smallest),
             editor.window->minimumSizeHint());
    QCOMPARE(editor.window->size(), size);
    QVERIFY(editor.Bar().height() >= editor.Bar().heightForWidth(editor.Bar().width()));
    QVERIFY(editor.Bar().geometry().bottom() < editor.View().geometry().top());
    QVERIFY(editor.View().geometry().bottom() <
            editor.Child<QWidget>("gboPaintMode")->geometry().top());
    editor.TakeNotices();
    QCOMPARE(editor.View().minimumSize(), QSize(512, 512));
}

void tst_ProjectNotices::ListsTheLayersThatWereLeftOut()
{
    Editor editor;
    editor.Replace("<layers>", "<layers><layer name=\"gone\"/><layer name=\"../x\"/>"
                               "<layer name=\"colour\"/><layer name=\"small\"/>"
                               "<layer name=\"folder\"/>");
    const QString layers = editor.Path("small/layers/");
    QByteArray bitmap = ReadBytes(layers + "red.tga");
    bitmap[12] = 32;
    WriteBytes(layers + "small.tga", bitmap);
    bitmap[2] = 2;
    WriteBytes(layers + "colour.tga", bitmap);
    QVERIFY(QDir().mkpath(layers + "folder.tga"));
    editor.Load(editor.path);

    editor.Click("btnNoticeShow");
    editor.Click("btnNoticeShow");

    QVERIFY(editor.LeftOutList());
    QVERIFY(!editor.LeftOutList()->isModal());
    QCOMPARE(editor.window->findChildren<QDialog*>("DialogLeftOut").size(), 1);
    QStringList lines{"gone: There is no file '%1gone.tga'.",
                      "../x: Its bitmap lies outside the project.",
                      "colour: '%1colour.tga' is no bitmap of grey values.",
                      "small: '%1small.tga' has another size than the layers of the project.",
                      "folder: '%1folder.tga' cannot be read."};
    lines.replaceInStrings("%1", layers);
    QCOMPARE(editor.Child<QPlainTextEdit>("txtLeftOut")->toPlainText(), lines.join('\n'));
    // The notice stays until it is dismissed, and the list until it is closed.
    editor.TakeNotices();
    QVERIFY(editor.LeftOutList()->isVisible());
    QTest::keyClick(editor.LeftOutList(), Qt::Key_Escape);
    QTRY_VERIFY(!editor.LeftOutList());
}

void tst_ProjectNotices::AnotherProjectWithdrawsThem_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("file");

    QTest::newRow("a load") << "actionLoad"
                            << "other/other.xml";
    QTest::newRow("a failed import") << "actionImportMap"
                                     << "other/other.xml";
}

void tst_ProjectNotices::AnotherProjectWithdrawsThem()
{
    QFETCH(QString, action);
    QFETCH(QString, file);
    Editor editor;
    editor.WriteProject("other");
    editor.Replace("<layers>", "<layers><layer name=\"Lake\"/>");
    editor.Replace("</qm-config>", "</x>");
    editor.Load(editor.path);
    const NoticeBar& bar = *editor.Child<NoticeBar>("barNotice");
    editor.Click("btnNoticeClose");
    editor.Click("btnNoticeShow");
    QVERIFY(bar.isVisible());
    QVERIFY(editor.LeftOutList()->isVisible());
    editor.SetModified(false);

    editor.TriggerWithFile(action.toLatin1(), editor.Path(file));

    QVERIFY(bar.isHidden());
    QVERIFY(!editor.LeftOutList() || !editor.LeftOutList()->isVisible());
}

void tst_ProjectNotices::AFileThatCannotBeOpenedKeepsThem()
{
    Editor editor;
    editor.Replace("<layers>", "<layers><layer name=\"Lake\"/>");
    editor.Load(editor.path);
    const QString other = editor.WriteProject("other");
    editor.answers.Add([&](QWidget& dialog) {
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(other);
        static_cast<QDialog*>(qobject_cast<QFileDialog*>(&dialog))->accept();
        QFile::remove(other);
    });

    editor.Trigger("actionLoad");

    QVERIFY(editor.Notice().startsWith("1 of 3 layers"));
}

void tst_ProjectNotices::TellsWhatASaveReplaced_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QStringList>("bitmaps");
    QTest::addColumn<QString>("notice");

    QTest::newRow("its own") << "small/small.xml" << QStringList() << QString();
    QTest::newRow("its own, for another document")
        << "small/second.xml" << QStringList() << QString();
    QTest::newRow("an empty folder") << "other/other.xml" << QStringList() << QString();
    QTest::newRow("of other names") << "other/other.xml" << QStringList{"green"} << QString();
    QTest::newRow("one") << "other/other.xml" << QStringList{"green", "red"}
                         << QString("This save replaced 1 bitmap of another project: red.") +
                                OldOne;
    QTest::newRow("two") << "other/other.xml" << QStringList{"red", "blue"}
                         << QString("This save replaced 2 bitmaps of another project: blue, red.") +
                                OldOnes;
}

void tst_ProjectNotices::TellsWhatASaveReplaced()
{
    QFETCH(QString, target);
    QFETCH(QStringList, bitmaps);
    QFETCH(QString, notice);
    Editor editor;
    editor.Load(editor.path);
    QVERIFY(QDir().mkpath(editor.Path("other")));
    for (const QString& name : qAsConst(bitmaps)) {
        WriteBytes(editor.Path("other/layers/" + name + ".tga"), "another project's");
    }
    const QString path = editor.Path(target);

    if (QFileInfo::exists(path)) {
        editor.SaveOver("actionSave", path);
    } else {
        editor.TriggerWithFile("actionSave", path);
    }

    QCOMPARE(editor.Notice(), notice);
}

void tst_ProjectNotices::WhatWasSavedOnceIsTheProjectsOwn()
{
    Editor editor;
    WriteBytes(editor.Path("small/layers/green.tga"), "another project's");
    editor.Load(editor.path);
    for (const QString& name : {QString("green"), QString("red"), QString("green")}) {
        editor.RenameFirstLayer(name);
        editor.Trigger("actionQuickSave");
    }

    QCOMPARE(
        editor.TakeNotices(),
        QStringList{QString("This save replaced 1 bitmap of another project: green.") + OldOne});

    editor.Trigger("actionQuickSave");
    QCOMPARE(editor.TakeNotices(), QStringList());
    // It belongs to this project, not to the next one.
    editor.Load(editor.WriteProject("other"));
    editor.RenameFirstLayer("green");
    editor.SaveOver("actionSave", editor.path);
    QCOMPARE(editor.TakeNotices(),
             QStringList{QString("This save replaced 2 bitmaps of another project: blue, green.") +
                         OldOnes});
}

void tst_ProjectNotices::ANewProjectReplacesWhatLiesInItsFolder()
{
    Editor editor;
    editor.Load(editor.path);
    const QString path = editor.Path("small/new.xml");
    editor.answers.Add([&](QWidget& dialog) {
        dialog.findChild<QLineEdit*>("txtProjectName")->setText(path);
        dialog.findChild<QAbstractButton*>("btnOk")->click();
    });
    editor.Trigger("actionNew");
    QCOMPARE(editor.Notice(), QString());
    editor.Child<QAbstractButton>("btnAddPainted")->click();
    editor.RenameFirstLayer("red");

    editor.Trigger("actionQuickSave");

    QCOMPARE(editor.Notice(),
             QString("This save replaced 1 bitmap of another project: red.") + OldOne);
}

void tst_ProjectNotices::OffersToEditWhatIsOpenForViewing_data()
{
    QTest::addColumn<bool>("isRelative");
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<QStringList>("notices");

    QTest::newRow("whole") << false << QByteArray("</qm-config>") << QStringList();
    QTest::newRow("a relative path") << true << QByteArray("</qm-config>") << QStringList();
    QTest::newRow("with a fault")
        << false << QByteArray()
        << QStringList{"The document ends at a fault in line 26: Premature end of document. What "
                       "follows it was not read; saving would remove it."};
}

void tst_ProjectNotices::OffersToEditWhatIsOpenForViewing()
{
    QFETCH(bool, isRelative);
    QFETCH(QByteArray, end);
    QFETCH(QStringList, notices);
    Editor editor;
    editor.Replace("</qm-config>", end);
    editor.Restart(isRelative ? QDir::current().relativeFilePath(editor.path) : editor.path);
    QCOMPARE(editor.TakeNotices(), QStringList{"'small' is open for viewing."} + notices);
    editor.Restart(editor.path);
    const QStringList asked = editor.answers.Asked();
    editor.log.Take();

    editor.Click("btnNoticeEdit");

    QCOMPARE(editor.answers.Asked(), asked);
    QCOMPARE(editor.log.Take(),
             (QStringList{"Info: Loading layer \"red\"...", "Info: Loading layer \"blue\"..."}));
    QVERIFY(editor.Action("actionSave")->isEnabled());
    QVERIFY(editor.View().isEnabled());
    QCOMPARE(editor.window->GetDocument().Path(), notices.isEmpty() ? editor.path : QString());
    QCOMPARE(editor.TakeNotices(), notices);
    // From now on Ctrl+O asks for a file.
    editor.Load(editor.WriteProject("other"));
    QCOMPARE(editor.answers.Asked(), asked + QStringList{"Load"});
    QCOMPARE(editor.Notice(), QString());
}

void tst_ProjectNotices::AskedAboutUnsavedWorkEditMayBeRefused()
{
    Editor editor;
    editor.Restart(editor.path);
    editor.SetModified(true);
    editor.answers.AddButton("No");

    editor.Click("btnNoticeEdit");

    QVERIFY(!editor.Action("actionSave")->isEnabled());
    QCOMPARE(editor.Notice(), "'small' is open for viewing.");
    editor.SetModified(false);
    editor.Load(editor.WriteProject("other"));
    QCOMPARE(editor.window->windowTitle(), "other - Tarvo Ledger Tool");
    QCOMPARE(editor.Notice(), QString());
}

void tst_ProjectNotices::TellsThatNothingIsTicked_data()
{
    QTest::addColumn<bool>("hasTypes");
    QTest::addColumn<int>("ticked");
    QTest::addColumn<QString>("notice");

    QTest::newRow("none") << true << 0 << "0 of 2 types are ticked, nothing was written.";
    QTest::newRow("one") << true << 1 << QString();
    QTest::newRow("no types") << false << 0 << "There are no territory types, nothing was written.";
}

void tst_ProjectNotices::TellsThatNothingIsTicked()
{
    QFETCH(bool, hasTypes);
    QFETCH(int, ticked);
    QFETCH(QString, notice);
    Editor editor;
    editor.Replace("</territory-type-list>",
                   "<territory-type name=\"Wolf\"></territory-type></territory-type-list>");
    if (!hasTypes) {
        editor.Replace("territory-type-list", "no-list");
    }
    editor.Load(editor.path);
    const QVector<TerritoryType*> all = editor.window->GetDocument().Types().Types();
    for (int i = 0; i < all.size(); ++i) {
        all[i]->setCheckState(i < ticked ? Qt::Checked : Qt::Unchecked);
    }
    editor.Trigger("actionViewTerritoryTypes");

    editor.Click("btnExportSelected");
    QCOMPARE(editor.Notice(), notice);

    // It is about the last export.
    editor.Click("btnExportAll");
    QCOMPARE(editor.Notice(), QString());
}

void tst_ProjectNotices::TellsThatThereIsNothingToSave()
{
    Editor editor;
    QByteArray document = ReadBytes(editor.path);
    document.remove(document.indexOf("<layers>"),
                    document.indexOf("</layers>") - document.indexOf("<layers>") + 9);
    WriteBytes(editor.path, document);
    editor.Load(editor.path);

    editor.Trigger("actionSaveAll");
    QCOMPARE(editor.Notice(), "There are no layers, nothing was saved or exported.");

    editor.Child<QAbstractButton>("btnAddPainted")->click();
    editor.answers.AddCancel();
    editor.Trigger("actionSaveAll");
    QCOMPARE(editor.Notice(), QString());
}

QTEST_MAIN(tst_ProjectNotices)
#include "tst_ProjectNotices.moc"
