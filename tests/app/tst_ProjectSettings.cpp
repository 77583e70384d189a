#include "app/ProjectSettings.h"

#include "tests/support/ProjectFixture.h"
#include "tests/support/XmlText.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <memory>

namespace {

ProjectSettings& Settings()
{
    return ProjectSettings::Instance();
}

QString Text()
{
    return XmlText([](QXmlStreamWriter& xml) { Settings().WriteXml(xml); });
}

void Read(const QString& children)
{
    ElementReader xml("<global>" + children + "</global>");
    Settings().ReadXml(xml);
}

} // namespace

class tst_ProjectSettings : public QObject
{
    Q_OBJECT

private slots:
    void InitialValues();
    void init();
    void cleanup();
    void FactorsFollowFromTheSizes_data();
    void FactorsFollowFromTheSizes();
    void IsWrittenWithTheFlagTypesBehind();
    void InvalidColorIsWrittenAsOpaqueBlack();
    void ReadsWhatItWrites();
    void SizesDifferingPerAxisKeepTheXValues();
    void ColorIsAnUnsignedNumber_data();
    void ColorIsAnUnsignedNumber();
    void SizesHaveDefaults_data();
    void SizesHaveDefaults();
    void MissingBackgroundForgetsTheFormerOne();
    void OtherElementsAreIgnored();
    void ReadingStopsAtTheEndTag();
    void CutInputIsTakenAsFarAsItGoes();
    void ReadingClearsModified();
    void BlankImageIsAClearMask();
    void BlankImageOfNoSizeIsNull_data();
    void BlankImageOfNoSizeIsNull();
    void PathsLieBelowTheProject_data();
    void PathsLieBelowTheProject();
    void SubFoldersAreCreatedOnEachCall_data();
    void SubFoldersAreCreatedOnEachCall();
    void SubFolderThatCannotBeCreatedIsIgnored();
    void PathsWithoutAProjectAreRelative();

private:
    std::unique_ptr<ProjectFixture> m_project;
};

void tst_ProjectSettings::init()
{
    if (QByteArray(QTest::currentTestFunction()) != "InitialValues") {
        m_project = std::make_unique<ProjectFixture>(QSize(4, 4), QSize(100, 100));
    }
}

void tst_ProjectSettings::cleanup()
{
    m_project.reset();
}

void tst_ProjectSettings::InitialValues()
{
    const ProjectSettings& settings = Settings();
    QVERIFY(settings.FlagTypes().usages.isEmpty());
    QVERIFY(settings.FlagTypes().values.isEmpty());
    QVERIFY(settings.BackgroundFile().isEmpty());
    QVERIFY(settings.FileName().isEmpty());
    QVERIFY(settings.Name().isEmpty());
    QCOMPARE(settings.Dir().path(), ".");
    QVERIFY(!settings.BackgroundColor().isValid());
    for (const float factor : {settings.MetresPerPixelX(), settings.MetresPerPixelZ(),
                               settings.PixelsPerMetreX(), settings.PixelsPerMetreZ()}) {
        QCOMPARE(factor, 0.0F);
    }
    for (const int size : {settings.LayerWidth(), settings.LayerHeight(), settings.WorldWidth(),
                           settings.WorldHeight()}) {
        QCOMPARE(size, 0);
    }
    QVERIFY(!settings.IsModified());
}

void tst_ProjectSettings::FactorsFollowFromTheSizes_data()
{
    QTest::addColumn<QVector<int>>("sizes");
    QTest::addColumn<QVector<float>>("factors");
    QTest::newRow("typical") << QVector<int>{2048, 2048, 15360, 15360}
                             << QVector<float>{7.5F, 7.5F, 2048.0F / 15360.0F, 2048.0F / 15360.0F};
    QTest::newRow("per axis") << QVector<int>{1000, 500, 4000, 1000}
                              << QVector<float>{4.0F, 2.0F, 0.25F, 0.5F};
    QTest::newRow("32-bit") << QVector<int>{16777217, 3, 1, 10}
                            << QVector<float>{1.0F / 16777216.0F, 10.0F / 3.0F, 16777216.0F, 0.3F};
    const float infinity = std::numeric_limits<float>::infinity();
    QTest::newRow("no pixels") << QVector<int>{0, 0, 100, -100}
                               << QVector<float>{infinity, -infinity, 0.0F, -0.0F};
    QTest::newRow("no metres") << QVector<int>{4, -4, 0, 0}
                               << QVector<float>{0.0F, -0.0F, infinity, -infinity};
}

void tst_ProjectSettings::FactorsFollowFromTheSizes()
{
    QFETCH(QVector<int>, sizes);
    QFETCH(QVector<float>, factors);
    Settings().SetSizes(sizes[0], sizes[1], sizes[2], sizes[3]);
    QCOMPARE(Settings().LayerSize(), QSize(sizes[0], sizes[1]));
    QCOMPARE(Settings().WorldWidth(), sizes[2]);
    QCOMPARE(Settings().WorldHeight(), sizes[3]);
    // Exact: texts in files depend on the last bit.
    QVERIFY(Settings().MetresPerPixelX() == factors[0]);
    QVERIFY(Settings().MetresPerPixelZ() == factors[1]);
    QVERIFY(Settings().PixelsPerMetreX() == factors[2]);
    QVERIFY(Settings().PixelsPerMetreZ() == factors[3]);
}

void tst_ProjectSettings::IsWrittenWithTheFlagTypesBehind()
{
    Settings().SetBackgroundFile("maps/world & sea.png");
    Settings().SetBackgroundColor(QColor(1, 2, 3, 4));
    Settings().SetFlagTypes({{"forest"}, {}});
    QCOMPARE(Text(), "<global><background file=\"maps/world &amp; sea.png\" rgba=\"67174915\"/>"
                     "<layer size=\"4\"/><world size=\"100\"/></global>"
                     "<areas><usages><usage name=\"forest\"/></usages><values/></areas>");
}

void tst_ProjectSettings::InvalidColorIsWrittenAsOpaqueBlack()
{
    QVERIFY(!Settings().BackgroundColor().isValid());
    QVERIFY(Text().contains("<background file=\"\" rgba=\"4278190080\"/>"));
}

void tst_ProjectSettings::ReadsWhatItWrites()
{
    Settings().SetBackgroundFile("world.png");
    Settings().SetBackgroundColor(QColor(1, 2, 3, 4));
    const QString text = Text();
    ElementReader xml(text);
    Settings().SetBackgroundFile({});
    Settings().SetBackgroundColor(QColor());
    Settings().SetSizes(1, 1, 1, 1);
    Settings().ReadXml(xml);
    QCOMPARE(Text(), text);
    QCOMPARE(Settings().MetresPerPixelX(), 25.0F);
    QCOMPARE(Settings().PixelsPerMetreZ(), 0.04F);
}

void tst_ProjectSettings::SizesDifferingPerAxisKeepTheXValues()
{
    Settings().SetSizes(8, 16, 32, 64);
    ElementReader xml(Text());
    Settings().ReadXml(xml);
    QCOMPARE(Settings().LayerSize(), QSize(8, 8));
    QCOMPARE(Settings().WorldWidth(), 32);
    QCOMPARE(Settings().WorldHeight(), 32);
    QCOMPARE(Settings().MetresPerPixelZ(), 4.0F);
}

void tst_ProjectSettings::ColorIsAnUnsignedNumber_data()
{
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QRgb>("color");
    QTest::newRow("opaque black") << "rgba=\"4278190080\"" << 0xFF000000U;
    QTest::newRow("white") << "rgba=\"4294967295\"" << 0xFFFFFFFFU;
    QTest::newRow("missing") << "" << 2U;
    QTest::newRow("empty") << "rgba=\"\"" << 2U;
    QTest::newRow("zero") << "rgba=\"0\"" << 0U;
    QTest::newRow("too large") << "rgba=\"4294967296\"" << 0U;
    QTest::newRow("negative") << "rgba=\"-1\"" << 0U;
    QTest::newRow("hexadecimal") << "rgba=\"FF000000\"" << 0U;
}

void tst_ProjectSettings::ColorIsAnUnsignedNumber()
{
    QFETCH(QString, attribute);
    QFETCH(QRgb, color);
    Read(QString("<background %1/>").arg(attribute));
    QVERIFY(Settings().BackgroundColor().isValid());
    QCOMPARE(Settings().BackgroundColor().rgba(), color);
}

void tst_ProjectSettings::SizesHaveDefaults_data()
{
    QTest::addColumn<QString>("children");
    QTest::addColumn<int>("layerSize");
    QTest::addColumn<int>("worldSize");
    QTest::newRow("given") << "<layer size=\"8\"/><world size=\"100\"/>" << 8 << 100;
    QTest::newRow("no elements") << "" << 2048 << 15360;
    QTest::newRow("no attributes") << "<layer/><world/>" << 2048 << 15360;
    QTest::newRow("empty attributes") << "<layer size=\"\"/><world size=\"\"/>" << 2048 << 15360;
    QTest::newRow("bad numbers") << "<layer size=\"8px\"/><world size=\"far\"/>" << 0 << 0;
    QTest::newRow("negative") << "<layer size=\"-8\"/><world size=\"-1\"/>" << -8 << -1;
    QTest::newRow("too large") << "<layer size=\"2147483648\"/><world size=\"2147483647\"/>" << 0
                               << 2147483647;
    QTest::newRow("the last one counts") << "<layer size=\"8\"/><layer size=\"9\"/>" << 9 << 15360;
    QTest::newRow("attribute of another case") << "<layer Size=\"8\"/>" << 2048 << 15360;
}

void tst_ProjectSettings::SizesHaveDefaults()
{
    QFETCH(QString, children);
    QFETCH(int, layerSize);
    QFETCH(int, worldSize);
    Read(children);
    QCOMPARE(Settings().LayerSize(), QSize(layerSize, layerSize));
    QCOMPARE(Settings().WorldWidth(), worldSize);
    QCOMPARE(Settings().WorldHeight(), worldSize);
}

void tst_ProjectSettings::MissingBackgroundForgetsTheFormerOne()
{
    Settings().SetBackgroundFile("former.png");
    Settings().SetBackgroundColor(Qt::red);
    Read("");
    QVERIFY(Settings().BackgroundFile().isEmpty());
    QCOMPARE(Settings().BackgroundColor().rgba(), 2U);
    Settings().SetBackgroundFile("former.png");
    Read("<background rgba=\"1\"/>");
    QVERIFY(Settings().BackgroundFile().isEmpty());
}

void tst_ProjectSettings::OtherElementsAreIgnored()
{
    Read("<Layer size=\"1\"/>text<group><world size=\"100\"/></group><!-- note -->");
    QCOMPARE(Settings().LayerWidth(), 2048);
    QCOMPARE(Settings().WorldWidth(), 100);
}

void tst_ProjectSettings::ReadingStopsAtTheEndTag()
{
    ElementReader xml("<root><global><layer size=\"8\"/></global><layer size=\"9\"/></root>");
    QVERIFY(xml.readNextStartElement());
    Settings().ReadXml(xml);
    QCOMPARE(Settings().LayerWidth(), 8);
    QCOMPARE(xml.name(), QString("global"));
    QVERIFY(xml.isEndElement());
}

void tst_ProjectSettings::CutInputIsTakenAsFarAsItGoes()
{
    const QString text = "<global><background file=\"a\" rgba=\"7\"/><layer size=\"8\"/>"
                         "<world size=\"9\"/></global>";
    for (int length = 0; length < text.size(); ++length) {
        const QString cut = text.left(length);
        ElementReader xml(cut);
        Settings().ReadXml(xml);
        // An empty element is known as soon as its slash is.
        QCOMPARE(Settings().BackgroundFile(), cut.contains("\"7\"/>") ? "a" : "");
        QCOMPARE(Settings().LayerWidth(), cut.contains("\"8\"/>") ? 8 : 2048);
        QCOMPARE(Settings().WorldWidth(), cut.contains("\"9\"/>") ? 9 : 15360);
    }
}

void tst_ProjectSettings::ReadingClearsModified()
{
    Settings().SetModified(true);
    Read("");
    QVERIFY(!Settings().IsModified());
}

void tst_ProjectSettings::BlankImageIsAClearMask()
{
    Settings().SetSizes(5, 3, 100, 100);
    const QImage image = Settings().BlankLayerImage();
    QCOMPARE(image.format(), QImage::Format_Indexed8);
    QCOMPARE(image.size(), QSize(5, 3));
    QCOMPARE(image.colorCount(), 256);
    for (int index = 0; index < 256; ++index) {
        QCOMPARE(image.color(index), qRgb(index, index, index));
    }
    for (int y = 0; y < 3; ++y) {
        QCOMPARE(QByteArray(reinterpret_cast<const char*>(image.constScanLine(y)), 5),
                 QByteArray(5, '\0'));
    }
}

void tst_ProjectSettings::BlankImageOfNoSizeIsNull_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("zero") << QSize(0, 0);
    QTest::newRow("one axis") << QSize(4, 0);
    QTest::newRow("negative") << QSize(-4, -4);
    QTest::newRow("huge") << QSize(2147483647, 2147483647);
}

void tst_ProjectSettings::BlankImageOfNoSizeIsNull()
{
    QFETCH(QSize, size);
    Settings().SetSizes(size.width(), size.height(), 100, 100);
    QVERIFY(Settings().BlankLayerImage().isNull());
}

namespace {

/// The paths that the settings build, by name.
QString PathOf(const QString& helper)
{
    if (helper == "background") {
        return Settings().BackgroundPath();
    }
    if (helper == "project") {
        return Settings().ProjectFilePath();
    }
    if (helper == "map") {
        return Settings().MapPath();
    }
    return helper == "layer" ? Settings().LayerPath("a %1 b") : Settings().TerritoryTypePath("ü");
}

} // namespace

void tst_ProjectSettings::PathsLieBelowTheProject_data()
{
    QTest::addColumn<QString>("helper");
    QTest::addColumn<QString>("path");
    QTest::newRow("background") << "background"
                                << "maps/world.png";
    QTest::newRow("project") << "project"
                             << "proj.old.xml";
    QTest::newRow("map") << "map"
                         << "map/proj.map";
    QTest::newRow("layer") << "layer"
                           << "layers/a %1 b.tga";
    QTest::newRow("territory type") << "territory type"
                                    << "territoryTypes/ü.xml";
}

void tst_ProjectSettings::PathsLieBelowTheProject()
{
    QFETCH(QString, helper);
    QFETCH(QString, path);
    Settings().SetBackgroundFile("maps/world.png");
    Settings().SetFileName("proj.old.xml");
    Settings().SetName("proj");
    QCOMPARE(PathOf(helper), Settings().Dir().path() + "/" + path);
    const QString folder = path.section('/', 0, -2);
    // The background's folder belongs to the user and is not created.
    QCOMPARE(QDir(m_project->Path(folder)).exists(), helper != "background");
}

void tst_ProjectSettings::SubFoldersAreCreatedOnEachCall_data()
{
    QTest::addColumn<QString>("helper");
    QTest::addColumn<QString>("folder");
    QTest::newRow("map") << "map"
                         << "map";
    QTest::newRow("layer") << "layer"
                           << "layers";
    QTest::newRow("territory type") << "territory type"
                                    << "territoryTypes";
}

void tst_ProjectSettings::SubFoldersAreCreatedOnEachCall()
{
    QFETCH(QString, helper);
    QFETCH(QString, folder);
    const QDir dir(m_project->Path(folder));
    for (int call = 0; call < 2; ++call) {
        QVERIFY(!dir.exists());
        PathOf(helper);
        PathOf(helper);
        QVERIFY(dir.exists());
        QVERIFY(Settings().Dir().rmdir(folder));
    }
}

void tst_ProjectSettings::SubFolderThatCannotBeCreatedIsIgnored()
{
    // One level only.
    Settings().SetDir(QDir(m_project->Path("missing")));
    QCOMPARE(Settings().LayerPath("a"), m_project->Path("missing/layers/a.tga"));
    QVERIFY(!QDir(m_project->Path("missing")).exists());
}

void tst_ProjectSettings::PathsWithoutAProjectAreRelative()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_project->Path("")));
    Settings().SetDir(QDir());
    const QString layerPath = Settings().LayerPath("a");
    const QString typePath = Settings().TerritoryTypePath("b");
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(layerPath, "./layers/a.tga");
    QCOMPARE(typePath, "./territoryTypes/b.xml");
    QVERIFY(QDir(m_project->Path("layers")).exists());
    QVERIFY(QDir(m_project->Path("territoryTypes")).exists());
}

QTEST_GUILESS_MAIN(tst_ProjectSettings)
#include "tst_ProjectSettings.moc"
