#include "tests/support/Files.h"
#include "tests/support/Program.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// A project with so many objects of each kind that a hash table would not keep their order by
/// chance.
QByteArray ManyOfEverything(const QString& folder)
{
    QString layers;
    QString types;
    for (int number = 0; number < 20; ++number) {
        const QString name = QString("layer %1").arg(number);
        layers +=
            QString("<layer usage_flags=\"%1\" value_flags=\"4294967295\" color=\"%2\" "
                    "visible=\"%3\" name=\"%4\"/>")
                .arg(QString::number(1U << number), QString::number(0x80000000U + 77 * number),
                     QString::number(number % 2), name);
        // Grey, 2 x 2 pixels, rows from the top, raw.
        WriteBytes(folder + "/layers/" + name + ".tga",
                   QByteArray::fromHex("000003000000000000000000020002000820") +
                       QByteArray(2, char(number % 2 ? 255 : 0)) + QByteArray(2, char(255)));
        types += QString("<territory-type name=\"type %1\">").arg(number);
        for (int row = 0; row < 5; ++row) {
            types +=
                QString("<territory name=\"%1\" visible=\"1\" color=\"%2\"><zone name=\"Rest\" "
                        "smin=\"%2\" x=\"1.5\" z=\"7.25\" r=\"3\" d=\"9\"/><zone/></territory>")
                    .arg(QString::number(row), QString::number(number));
        }
        types += "</territory-type>";
    }
    return ("<qm-config><global><background file=\"a.png\" rgba=\"7\"/><layer size=\"2\"/>"
            "<world size=\"16\"/></global><areas><usages><usage name=\"b\"/><usage name=\"a\"/>"
            "</usages></areas><layers>" +
            layers + "</layers><territory-type-list>" + types +
            "</territory-type-list></qm-config>")
        .toUtf8();
}

} // namespace

class tst_StableOutput : public QObject
{
    Q_OBJECT

private slots:
    void SavedFilesDoNotDependOnTheRun_data();
    void SavedFilesDoNotDependOnTheRun();

private:
    static QMap<QString, QByteArray> Resaved(const QString& document, const QString& folder,
                                             const QString& hashSeed);
};

QMap<QString, QByteArray> tst_StableOutput::Resaved(const QString& document, const QString& folder,
                                                    const QString& hashSeed)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_HASH_SEED", hashSeed);
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    QDir().mkpath(folder);
    const ProgramRun run = RunProgram(RESAVE_PROGRAM, {document, folder}, folder, environment);
    return run.exitCode == 0 ? FilesBelow(folder) : QMap<QString, QByteArray>();
}

void tst_StableOutput::SavedFilesDoNotDependOnTheRun_data()
{
    QTest::addColumn<QString>("document");
    QTest::newRow("made for this test") << "";
    const QString example = QUILLMAP_EXAMPLES "/highlands/highlands.xml";
    if (QFile::exists(example)) {
        QTest::newRow("highlands") << example;
    }
}

void tst_StableOutput::SavedFilesDoNotDependOnTheRun()
{
    QFETCH(QString, document);
    const QTemporaryDir folder;
    if (document.isEmpty()) {
        document = folder.filePath("project.xml");
        WriteBytes(document, ManyOfEverything(folder.path()));
    }
    const auto first = Resaved(document, folder.filePath("1"), "1");
    QVERIFY(first.value("project.xml").contains("<layer "));
    QVERIFY(first.size() > 12);
    const auto second = Resaved(document, folder.filePath("2"), "4711");
    QCOMPARE(second.keys(), first.keys());
    QVERIFY(second == first);
    const auto third = Resaved(folder.filePath("2/project.xml"), folder.filePath("3"), "99");
    QVERIFY(third == first);
}

QTEST_GUILESS_MAIN(tst_StableOutput)
#include "tst_StableOutput.moc"
