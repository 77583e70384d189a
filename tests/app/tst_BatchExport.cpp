#include "app/BatchExport.h"

#include "app/ProjectSettings.h"
#include "tests/support/Files.h"
#include "tests/support/LogSpy.h"
#include "tests/support/ProjectFixture.h"
#include "tests/support/TargaFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTest>

#include <memory>

namespace {

/// A picture of one byte a pixel, rows from the top, without compression.
QByteArray Targa(quint16 size, const QByteArray& pixels)
{
    return TargaHeader(RawType, {size, size}) + pixels;
}

QByteArray Document(const QString& children)
{
    return ("<qm-config>" + children + "</qm-config>").toUtf8();
}

constexpr char Global[] = "<global><layer size=\"4\"/><world size=\"100\"/></global>";
constexpr char Types[] =
    "<territory-type-list><territory-type name=\"Deer\"><territory color=\"1\">"
    "<zone name=\"Rest\" x=\"50\" z=\"50\" r=\"25\"/></territory>"
    "</territory-type><territory-type name=\"Wolf\"/></territory-type-list>";

/// The content of the map of a project without flag types.
QByteArray MapWithoutFlags()
{
    return Ints({4, 4, 100, 100, 0, 0});
}

} // namespace

/// Each test runs in a temporary working directory, without a project folder.
class tst_BatchExport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void MissingConfigIsReported_data();
    void MissingConfigIsReported();
    void OutputFolderFollowsFromTheArguments_data();
    void OutputFolderFollowsFromTheArguments();
    void AbsoluteConfigDoublesItsFolder();
    void AbsoluteOutputIsTakenAsItIs();
    void MessagesShowTheRunInOrder();
    void TypesGoBelowTheWorkingDirectory();
    void NoTypesNoMessage_data();
    void NoTypesNoMessage();
    void FailedTypeShowsAsZero();
    void OutputFolderThatCannotBeCreatedEndsTheRun();
    void MapThatCannotBeWrittenIsReported();
    void FlagTypesAreNotRead();
    void KilledSavesAreCompletedFirst();
    void KnownFlagTypesFillTheMap();
    void ElementsMayStandAnywhere();
    void ListsBeforeTheSizesUseTheSettings();
    void CutDocumentsEndEarly();
    void EmptyDocumentIsAProjectWithoutSizes();

private:
    ExitCode Run(const QString& configPath, const QString& outputPath = {});
    QString Path(const QString& fileName) const { return m_project->Path(fileName); }

    QString m_startDir = QDir::currentPath();
    std::unique_ptr<ProjectFixture> m_project;
    QStringList m_messages;
};

void tst_BatchExport::init()
{
    m_project = std::make_unique<ProjectFixture>(QSize(0, 0), QSize(0, 0));
    QVERIFY(QDir::setCurrent(Path("")));
    ProjectSettings::Instance().SetDir(QDir());
    m_messages.clear();
}

void tst_BatchExport::cleanup()
{
    QVERIFY(QDir::setCurrent(m_startDir));
    m_project.reset();
}

ExitCode tst_BatchExport::Run(const QString& configPath, const QString& outputPath)
{
    const LogSpy log;
    const ExitCode exitCode = RunBatchExport(configPath, outputPath);
    m_messages = log.Messages();
    return exitCode;
}

void tst_BatchExport::MissingConfigIsReported_data()
{
    QTest::addColumn<QString>("configPath");
    QTest::newRow("none") << "";
    QTest::newRow("missing") << "p/missing %1.xml";
    QTest::newRow("folder") << ".";
}

void tst_BatchExport::MissingConfigIsReported()
{
    QFETCH(QString, configPath);
    QCOMPARE(Run(configPath, "out"), ExitNoConfig);
    QCOMPARE(m_messages,
             QStringList{"Error: Failed to open file '" + configPath + "' for reading."});
    QVERIFY(QDir().isEmpty());
}

void tst_BatchExport::OutputFolderFollowsFromTheArguments_data()
{
    QTest::addColumn<QString>("configPath");
    QTest::addColumn<QString>("outputPath");
    // The place below the working directory, as messages show it.
    QTest::addColumn<QString>("mapPath");
    QTest::newRow("no folder typed") << "a.xml"
                                     << ""
                                     << "//Output/a.map";
    QTest::newRow("folder twice") << "p/a.xml"
                                  << ""
                                  << "/p/p/Output/a.map";
    QTest::newRow("folders twice") << "p/q/a.xml"
                                   << ""
                                   << "/p/q/p/q/Output/a.map";
    QTest::newRow("dot") << "./a.xml"
                         << ""
                         << "/./Output/a.map";
    QTest::newRow("up and down") << "p/../a.xml"
                                 << ""
                                 << "/p/../Output/a.map";
    QTest::newRow("base name ends at the first dot") << "x/proj.old.xml"
                                                     << "out"
                                                     << "/x/out/proj.map";
    QTest::newRow("output is not cleaned") << "p/a.xml"
                                           << "q//r/../s"
                                           << "/p/q//r/../s/a.map";
    QTest::newRow("no extension") << "project"
                                  << "out"
                                  << "/out/project.map";
    QTest::newRow("per cent and more") << "p %1/ü%2.xml"
                                       << "%3"
                                       << "/p %1/%3/ü%2.map";
}

void tst_BatchExport::OutputFolderFollowsFromTheArguments()
{
    QFETCH(QString, configPath);
    QFETCH(QString, outputPath);
    QFETCH(QString, mapPath);
    WriteBytes(configPath, Document(Global));
    QVERIFY(QDir().mkpath("p"));
    QCOMPARE(Run(configPath, outputPath), ExitDone);
    const QString path = QDir::currentPath() + mapPath;
    QCOMPARE(m_messages.last(), "Success: Zone binary map saved to file '" + path + "'.");
    QCOMPARE(ReadBytes(path), MapWithoutFlags());
}

void tst_BatchExport::AbsoluteConfigDoublesItsFolder()
{
    WriteBytes(Path("p/a.xml"), Document(Global));
    QCOMPARE(Run(Path("p/a.xml")), ExitDone);
    const QString folder = Path("p") + "/" + Path("p") + "/Output";
    QVERIFY(folder.contains("/p//"));
    QCOMPARE(m_messages.last(), "Success: Zone binary map saved to file '" + folder + "/a.map'.");
    QVERIFY(QFile::exists(folder + "/a.map"));
}

void tst_BatchExport::AbsoluteOutputIsTakenAsItIs()
{
    WriteBytes("p/a.xml", Document(Global));
    QCOMPARE(Run("p/a.xml", Path("deep/out")), ExitDone);
    QCOMPARE(ReadBytes(Path("deep/out/a.map")), MapWithoutFlags());
}

void tst_BatchExport::MessagesShowTheRunInOrder()
{
    WriteBytes("layers/coast.tga", Targa(4, QByteArray(16, '\xff')));
    WriteBytes("a.xml",
               Document(QString(Global) +
                        "<layers><layer name=\"coast\" usage_flags=\"1\"/></layers>" + Types));
    QCOMPARE(Run("a.xml", "out"), ExitDone);
    QCOMPARE(m_messages,
             (QStringList{"Info: Loading layer \"coast\"...",
                          "Success: 1 territory types exported.", "Info: Processing binary map ...",
                          "Success: Zone binary map saved to file '" + Path("out/a.map") + "'."}));
}

void tst_BatchExport::TypesGoBelowTheWorkingDirectory()
{
    WriteBytes("p/a.xml", Document(QString(Global) + Types));
    QCOMPARE(Run("p/a.xml", "out"), ExitDone);
    QCOMPARE(QDir("territoryTypes").entryList(QDir::Files), (QStringList{"Deer.xml", "Wolf.xml"}));
    QVERIFY(ReadBytes("territoryTypes/Deer.xml")
                .contains("<zone name=\"Rest\" smin=\"0\" smax=\"0\" dmin=\"0\" dmax=\"0\" "
                          "x=\"50\" z=\"50\" r=\"25\"/>"));
    QVERIFY(!QDir("p/territoryTypes").exists());
}

void tst_BatchExport::NoTypesNoMessage_data()
{
    QTest::addColumn<QString>("list");
    QTest::newRow("no list") << "";
    QTest::newRow("empty list") << "<territory-type-list/>";
    QTest::newRow("unfinished type") << "<territory-type-list><territory-type name=\"Deer\">";
}

void tst_BatchExport::NoTypesNoMessage()
{
    QFETCH(QString, list);
    WriteBytes("a.xml", Document(QString(Global) + list));
    QCOMPARE(Run("a.xml", "out"), ExitDone);
    QCOMPARE(m_messages.size(), 2);
    QVERIFY(!QDir("territoryTypes").exists());
}

void tst_BatchExport::FailedTypeShowsAsZero()
{
    WriteBytes("territoryTypes/Deer.xml/in the way", "");
    WriteBytes("a.xml", Document(QString(Global) + Types));
    QCOMPARE(Run("a.xml", "out"), ExitDone);
    QCOMPARE(m_messages.first(), "Success: 0 territory types exported.");
    QVERIFY(!QFile::exists("territoryTypes/Wolf.xml"));
    QVERIFY(QFile::exists("out/a.map"));
}

void tst_BatchExport::OutputFolderThatCannotBeCreatedEndsTheRun()
{
    WriteBytes("p/a.xml", Document(QString(Global) + Types));
    QCOMPARE(Run("p/a.xml", "a.xml/%1"), ExitNoOutputFolder);
    QCOMPARE(m_messages, QStringList{"Error: Failed to create path 'a.xml/%1'."});
    QVERIFY(!QDir("territoryTypes").exists());
}

void tst_BatchExport::MapThatCannotBeWrittenIsReported()
{
    WriteBytes("out/a.map/in the way", "");
    WriteBytes("a.xml", Document(Global));
    QCOMPARE(Run("a.xml", "out"), ExitDone);
    const QString path = Path("out/a.map");
    QCOMPARE(m_messages, (QStringList{"Error: Failed to open file '" + path + "' for writing.",
                                      "Error: Failed to export area map to file '" + path + "'."}));
}

void tst_BatchExport::FlagTypesAreNotRead()
{
    WriteBytes("a.xml",
               Document(QString(Global) + "<areas><usages><usage name=\"forest\"/></usages></areas>"
                                          "<brush size=\"3\"/>"));
    QCOMPARE(Run("a.xml", "out"), ExitDone);
    QVERIFY(ProjectSettings::Instance().FlagTypes().usages.isEmpty());
    QCOMPARE(ReadBytes("out/a.map"), MapWithoutFlags());
}

void tst_BatchExport::KilledSavesAreCompletedFirst()
{
    WriteBytes("p/a.xml", "<qm-config/>");
    LeaveKilledSave("p", "a.xml",
                    Document(QString(Global) + "<layers><layer name=\"left\"/></layers>"));
    LeaveKilledSave("layers", "left.tga", Targa(4, QByteArray(16, '\0')));
    QCOMPARE(Run("p/a.xml", Path("out")), ExitDone);
    QCOMPARE(ReadBytes("out/a.map"), MapWithoutFlags());
    QCOMPARE(FilesBelow(Path("layers")).keys(), QStringList{"left.tga"});
}

void tst_BatchExport::KnownFlagTypesFillTheMap()
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetFlagTypes({QVector<QString>(3), QVector<QString>(2)});
    WriteBytes("layers/left.tga", Targa(16, QByteArray("\xff\xff\xff\xff\xff\xff\xff\xff"
                                                       "\0\0\0\0\0\0\0\0",
                                                       16)
                                                .repeated(16)));
    WriteBytes("layers/top.tga", Targa(16, QByteArray(16 * 8, '\1') + QByteArray(16 * 8, '\0')));
    WriteBytes("a.xml", Document("<global><layer size=\"16\"/></global><layers>"
                                 "<layer name=\"left\" usage_flags=\"5\" value_flags=\"1\"/>"
                                 "<layer name=\"top\" usage_flags=\"2\" value_flags=\"2\"/>"
                                 "</layers>"));
    QCOMPARE(Run("a.xml", "out"), ExitDone);

    QVector<qint64> numbers = {16, 16, 15360, 15360};
    const auto appendSection = [&numbers](int bits, quint32 left, quint32 top) {
        numbers.append(bits);
        const int pixelsPerWord = 32 / bits;
        // The last row of the picture comes first.
        for (int row = 15; row >= 0; --row) {
            quint32 word = 0;
            for (int column = 0; column < 16; ++column) {
                const quint32 flags = (column < 8 ? left : 0) | (row < 8 ? top : 0);
                const int place = column % pixelsPerWord;
                // The leftmost pixel of a word takes its highest bits.
                word |= flags << (bits * (pixelsPerWord - 1 - place));
                if (place == pixelsPerWord - 1) {
                    numbers.append(word);
                    word = 0;
                }
            }
        }
    };
    appendSection(4, 5, 2);
    appendSection(2, 1, 2);
    QCOMPARE(ReadBytes("out/a.map").toHex(), Ints(numbers).toHex());
}

void tst_BatchExport::ElementsMayStandAnywhere()
{
    WriteBytes("a.xml", ("<other><group>" + QString(Global) + "</group><group>" + QString(Types) +
                         "</group><Global/></other>")
                            .toUtf8());
    QCOMPARE(Run("a.xml", "out"), ExitDone);
    QCOMPARE(m_messages.first(), "Success: 1 territory types exported.");
    QCOMPARE(ReadBytes("out/a.map"), MapWithoutFlags());
}

void tst_BatchExport::ListsBeforeTheSizesUseTheSettings()
{
    ProjectSettings::Instance().SetSizes(4, 4, 200, 200);
    WriteBytes("a.xml", Document(QString(Types) + Global));
    QCOMPARE(Run("a.xml", "out"), ExitDone);
    QVERIFY(ReadBytes("territoryTypes/Deer.xml").contains("x=\"25\" z=\"25\" r=\"12.5\""));
}

void tst_BatchExport::CutDocumentsEndEarly()
{
    const QByteArray document = Document(QString(Global) + Types);
    for (int length = 0; length < document.size(); length += 7) {
        WriteBytes("a.xml", document.left(length));
        QCOMPARE(Run("a.xml", "out"), ExitDone);
        const bool hasType = document.left(length).contains("</territory-type>");
        QCOMPARE(m_messages.contains("Success: 1 territory types exported."), hasType);
        QVERIFY(m_messages.last().startsWith("Success: Zone binary map saved"));
    }
}

void tst_BatchExport::EmptyDocumentIsAProjectWithoutSizes()
{
    WriteBytes("a.xml", "");
    QCOMPARE(Run("a.xml", "out"), ExitDone);
    QCOMPARE(ReadBytes("out/a.map"), Ints({0, 0, 0, 0, 0, 0}));
}

QTEST_GUILESS_MAIN(tst_BatchExport)
#include "tst_BatchExport.moc"
