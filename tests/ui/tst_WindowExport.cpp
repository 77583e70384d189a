#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockTerTypes.h"

#include <QAbstractButton>
#include <QTest>

namespace {

/// A window with the small project and a second territory type, "Wolf", beside its "Deer".
class Editor : public WindowFixture
{
public:
    Editor()
    {
        const QString path = WriteProject();
        QByteArray document = ReadBytes(path);
        WriteBytes(path, document.replace("</territory-type-list>",
                                          "<territory-type name=\"Wolf\"></territory-type>"
                                          "</territory-type-list>"));
        Load(path);
        log.Take();
    }

    void Check(const QStringList& names) const
    {
        const QVector<TerritoryType*> types = Child<DockTerTypes>("DockTerTypes")->List()->Types();
        for (TerritoryType* type : types) {
            type->setCheckState(names.contains(type->text()) ? Qt::Checked : Qt::Unchecked);
        }
    }
    void Click(const QString& button) const
    {
        QTest::mouseClick(Child<QAbstractButton>(button.toLatin1()), Qt::LeftButton);
    }
    QStringList Exported() const
    {
        return QDir(Path("small/territoryTypes"))
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
};

const char* const AllExported = "Success: Territory types succesfully exported.";
const char* const CheckedExported = "Success: Selected territory types succesfully exported.";

} // namespace

class tst_WindowExport : public QObject
{
    Q_OBJECT

private slots:
    void ExportsTerritoryTypes_data();
    void ExportsTerritoryTypes();
    void ReportsTypesThatCannotBeWritten_data();
    void ReportsTypesThatCannotBeWritten();
    void CancelledSaveExportsNothing();
};

void tst_WindowExport::ExportsTerritoryTypes_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QStringList>("checked");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("message");

    QTest::newRow("all, one checked") << "btnExportAll" << QStringList{"Wolf"}
                                      << QStringList{"Deer.xml", "Wolf.xml"} << AllExported;
    QTest::newRow("checked: one") << "btnExportSelected" << QStringList{"Wolf"}
                                  << QStringList{"Wolf.xml"} << CheckedExported;
    QTest::newRow("checked: both") << "btnExportSelected" << QStringList{"Deer", "Wolf"}
                                   << QStringList{"Deer.xml", "Wolf.xml"} << CheckedExported;
    QTest::newRow("checked: none")
        << "btnExportSelected" << QStringList() << QStringList() << CheckedExported;
}

void tst_WindowExport::ExportsTerritoryTypes()
{
    QFETCH(QString, button);
    QFETCH(QStringList, checked);
    QFETCH(QStringList, files);
    QFETCH(QString, message);
    const Editor editor;
    editor.Check(checked);
    editor.SetModified(false);

    editor.Click(button);

    QCOMPARE(editor.log.Messages(), QStringList{message});
    QCOMPARE(editor.Exported(), files);
    for (const QString& file : qAsConst(files)) {
        const bool hasZone = file == "Deer.xml";
        QCOMPARE(ReadBytes(editor.Path("small/territoryTypes/" + file)).contains("\"Rest\""),
                 hasZone);
    }
    QVERIFY(!editor.IsModified());
}

void tst_WindowExport::ReportsTypesThatCannotBeWritten_data()
{
    QTest::addColumn<QString>("button");

    QTest::newRow("all") << "btnExportAll";
    QTest::newRow("checked") << "btnExportSelected";
}

void tst_WindowExport::ReportsTypesThatCannotBeWritten()
{
    QFETCH(QString, button);
    const Editor editor;
    editor.Check({"Deer"});
    // There is a file with the name of the folder.
    WriteBytes(editor.Path("small/territoryTypes"), "x");

    editor.Click(button);

    QCOMPARE(editor.log.Messages(), QStringList{"Error: Failed to export territory types."});
    QCOMPARE(ReadBytes(editor.Path("small/territoryTypes")), QByteArray("x"));
}

void tst_WindowExport::CancelledSaveExportsNothing()
{
    Editor editor;
    const QByteArray before = ReadBytes(editor.Path("small/small.xml"));
    editor.SetModified(true);
    editor.answers.AddCancel();

    editor.Trigger("actionSaveAll");

    QCOMPARE(editor.answers.Asked(), (QStringList{"Load", "Save"}));
    QCOMPARE(editor.log.Messages(), QStringList());
    QCOMPARE(ReadBytes(editor.Path("small/small.xml")), before);
    QCOMPARE(editor.Exported(), QStringList());
    QVERIFY(!QFile::exists(editor.Path("small/map")));
    QVERIFY(editor.IsModified());
}

QTEST_MAIN(tst_WindowExport)
#include "tst_WindowExport.moc"
