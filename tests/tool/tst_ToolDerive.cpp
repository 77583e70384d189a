#include "tests/support/Files.h"
#include "tests/tool/SampleProject.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

/// "Ring" is Shore, grown by 100 m, which are 1 pixel, and "Land" all that is not Ring. Their
/// fingerprints are those of no mask.
constexpr char Formulas[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<qm-derived>
  <formula layer="Land" operation="complement" fingerprint="0000000000000001" live="0">
    <operand name="Ring" fingerprint="0000000000000001"/>
  </formula>
  <formula layer="Ring" operation="dilation" metres="100" fingerprint="0000000000000001" live="1">
    <operand name="Shore" fingerprint="0000000000000001"/>
  </formula>
</qm-derived>
)";

QStringList Blank()
{
    return QVector<QString>(8, "........").toList();
}

} // namespace

/// quillmap-tool derive.
class tst_ToolDerive : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void ComputesInTheOrderOfTheFormulas();
    void ComputesOnlyWhatIsAskedFor();
    void HandEditsAreReplaced();
    void CheckTellsWhatIsOutOfDate();
    void WithoutFormulasNothingIsDone();
    void BrokenProjectsStayAsTheyAre_data();
    void BrokenProjectsStayAsTheyAre();
    void UnknownLayersAreWrongArguments();
    void AllFilesAreWrittenOrNone();

private:
    QByteArray Bitmap(const char* layer) const
    {
        return ReadBytes(m_sample->Path(QStringLiteral("layers/%1.tga").arg(layer)));
    }
    QMap<QString, QByteArray> All() const { return FilesBelow(m_sample->Path(QString())); }
    void WriteFormulas(const QByteArray& text)
    {
        WriteBytes(m_sample->Path("sample.derived.xml"), text);
    }

    std::unique_ptr<SampleProject> m_sample;
};

void tst_ToolDerive::init()
{
    m_sample = std::make_unique<SampleProject>();
    m_sample->Replace("<layer usage_flags=\"6\"",
                      "<layer name=\"Ring\"/><layer name=\"Land\"/><layer usage_flags=\"6\"");
    m_sample->Paint("Ring", Blank());
    m_sample->Paint("Land", Blank());
    WriteFormulas(Formulas);
}

void tst_ToolDerive::ComputesInTheOrderOfTheFormulas()
{
    const ProgramRun run = m_sample->Run({"derive", "sample.xml"});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.log, QStringList());
    QCOMPARE(run.output.split('\n', Qt::SkipEmptyParts).size(), 3);
    QVERIFY(run.output.contains("sample.derived.xml"));

    const QByteArray ring = Bitmap("Ring");
    const QByteArray land = Bitmap("Land");
    m_sample->Paint("Ring", {"........", "........", "........", "####....", "#####...", "####....",
                             "#.......", "##......"});
    m_sample->Paint("Land", {"########", "########", "########", "....####", ".....###", "....####",
                             ".#######", "..######"});
    // The same pixels may be other bytes of a file.
    QCOMPARE(m_sample->Run({"derive", "--check", "sample.xml"}).exitCode, 0);
    QCOMPARE(m_sample->Run({"derive", "sample.xml"}).output, QString());
    QVERIFY(!ring.isEmpty() && !land.isEmpty());
}

void tst_ToolDerive::ComputesOnlyWhatIsAskedFor()
{
    const QByteArray land = Bitmap("Land");

    QCOMPARE(m_sample->Run({"derive", "sample.xml", "Ring"}).exitCode, 0);
    QCOMPARE(Bitmap("Land"), land);
    QCOMPARE(m_sample->Run({"derive", "--check", "sample.xml", "Ring"}).exitCode, 0);
    const ProgramRun run = m_sample->Run({"derive", "--check", "sample.xml", "Land"});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.output, QString("Land: edited by hand\n"));
    QCOMPARE(m_sample->Run({"derive", "sample.xml", "Land"}).exitCode, 0);
    QCOMPARE(m_sample->Run({"derive", "--check", "sample.xml"}).exitCode, 0);
}

void tst_ToolDerive::HandEditsAreReplaced()
{
    m_sample->Run({"derive", "sample.xml"});
    const QByteArray ring = Bitmap("Ring");
    m_sample->Paint("Ring", Blank());

    const ProgramRun check = m_sample->Run({"derive", "--check", "sample.xml"});
    QCOMPARE(check.exitCode, 1);
    QCOMPARE(check.output, QString("Ring: edited by hand\nLand: out of date\n"));
    QVERIFY(Bitmap("Ring") != ring);
    QCOMPARE(m_sample->Run({"derive", "sample.xml"}).exitCode, 0);
    QCOMPARE(Bitmap("Ring"), ring);
}

void tst_ToolDerive::CheckTellsWhatIsOutOfDate()
{
    m_sample->Run({"derive", "sample.xml"});
    m_sample->Paint("Shore", Blank());
    const auto before = All();

    const ProgramRun run = m_sample->Run({"derive", "--check", "sample.xml"});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.output, QString("Ring: out of date\nLand: out of date\n"));
    QCOMPARE(m_sample->Run({"derive", "--check", "--quiet", "sample.xml"}).output, QString());
    QCOMPARE(All(), before);
}

void tst_ToolDerive::WithoutFormulasNothingIsDone()
{
    QFile::remove(m_sample->Path("sample.derived.xml"));
    const auto before = All();

    for (const QStringList& options : {QStringList{"--check"}, QStringList()}) {
        const ProgramRun run =
            m_sample->Run(QStringList{"derive"} + options + QStringList{"sample.xml"});
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.output, QString());
        QCOMPARE(run.log, QStringList());
    }
    QCOMPARE(All(), before);
}

void tst_ToolDerive::BrokenProjectsStayAsTheyAre_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing operand")
        << QByteArray("name=\"Shore\"") << QByteArray("name=\"Sea\"")
        << "sample.xml: layer 'Ring' is broken: its operand 'Sea' is missing.";
    QTest::newRow("cycle") << QByteArray("name=\"Shore\"") << QByteArray("name=\"Land\"")
                           << "sample.derived.xml: layers are made of one another: Land -> Ring -> "
                              "Land.";
    QTest::newRow("no operation")
        << QByteArray("dilation") << QByteArray("boiling")
        << "sample.derived.xml: line 6: there is no operation \"boiling\".";
}

void tst_ToolDerive::BrokenProjectsStayAsTheyAre()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QString, error);
    WriteFormulas(QByteArray(Formulas).replace(before, after));
    const auto files = All();

    for (const QStringList& options : {QStringList{"--check"}, QStringList()}) {
        const ProgramRun run =
            m_sample->Run(QStringList{"derive"} + options + QStringList{"sample.xml"});
        QCOMPARE(run.exitCode, 3);
        QVERIFY2(run.log.join(QLatin1Char('\n')).contains(error),
                 qPrintable(run.log.join(QLatin1Char('\n'))));
        QCOMPARE(run.output, QString());
    }
    QCOMPARE(All(), files);
}

void tst_ToolDerive::UnknownLayersAreWrongArguments()
{
    ProgramRun run = m_sample->Run({"derive", "sample.xml", "Fen"});
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.log.first().contains("there is no layer 'Fen'."));
    run = m_sample->Run({"derive", "sample.xml", "Shore"});
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.log.first().contains("layer 'Shore' has no formula."));
}

void tst_ToolDerive::AllFilesAreWrittenOrNone()
{
    QFile::remove(m_sample->Path("layers/Village.tga"));
    // A folder takes the place of no file.
    QFile::remove(m_sample->Path("layers/Land.tga"));
    WriteBytes(m_sample->Path("layers/Land.tga/x"), "x");
    const auto before = All();
    const ProgramRun run = m_sample->Run({"derive", "sample.xml"});
    QVERIFY(run.exitCode == 3 || run.exitCode == 4);
    QCOMPARE(All(), before);
    // Layers that no formula needs need no bitmap.
    QCOMPARE(m_sample->Run({"derive", "sample.xml", "Ring"}).exitCode, 0);
}

QTEST_GUILESS_MAIN(tst_ToolDerive)
#include "tst_ToolDerive.moc"
