#include "app/ProjectDocument.h"

#include "app/ProjectSettings.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/TerritoryTypeList.h"
#include "territories/Zone.h"
#include "tests/support/LogSpy.h"
#include "tests/support/ProjectFixture.h"

#include <QBuffer>
#include <QFile>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <memory>

namespace {

QByteArray Written(const ProjectParts& parts)
{
    QByteArray document;
    QXmlStreamWriter xml(&document);
    WriteProjectDocument(xml, parts);
    return document;
}

QByteArray WrittenText(const ProjectValues& values)
{
    QByteArray document;
    QXmlStreamWriter xml(&document);
    WriteProjectText(xml, values);
    return document;
}

void WriteBrush(QXmlStreamWriter& xml)
{
    xml.writeEmptyElement("brush");
}

} // namespace

class tst_ProjectDocument : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void PartsAreWrittenInOrder();
    void EmptyProjectHasNoLists();
    void SelectedRowIsWritten_data();
    void SelectedRowIsWritten();
    void CallerIsToldBeforeTheLayers();
    void TheTextAloneIsThatOfTheDocument();
    void TheTextAloneChangesNothing();
    void WhatIsReadIsWrittenAgain();
    void LayersWithoutBitmapsAreRead();
    void PastedControlCharactersAreLeftOut();

private:
    std::unique_ptr<ProjectFixture> m_project;
};

void tst_ProjectDocument::init()
{
    m_project.reset();
    m_project = std::make_unique<ProjectFixture>(QSize(4, 4), QSize(100, 100));
}

void tst_ProjectDocument::PartsAreWrittenInOrder()
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetBackgroundFile("world.png");
    settings.SetBackgroundColor(QColor(0, 0, 0, 0));
    settings.SetFlagTypes({{}, {"rich"}});
    LayerList layers;
    auto* coast = new Layer(1, 2, &layers, "coast");
    coast->SetImage(settings.BlankLayerImage(), Qt::white);
    QVERIFY(layers.AddLayer(coast));
    TerritoryTypeList types;
    types.AddType(new TerritoryType("Deer"));

    QCOMPARE(Written({0, WriteBrush, {}, layers, types}).constData(),
             R"(<?xml version="1.0" encoding="UTF-8"?>
<!--Tarvo Ledger tool project file-->
<qm-config>
    <!--GUI props-->
    <selected row="0"/>
    <global>
        <background file="world.png" rgba="0"/>
        <layer size="4"/>
        <world size="100"/>
    </global>
    <areas>
        <usages/>
        <values>
            <value name="rich"/>
        </values>
    </areas>
    <brush/>
    <!--Layers-->
    <layers>
        <layer usage_flags="1" value_flags="2" color="4294967295" visible="0" name="coast"/>
    </layers>
    <!--Territories-->
    <territory-type-list>
        <territory-type name="Deer"/>
    </territory-type-list>
</qm-config>
)");
    QVERIFY(QFile::exists(m_project->Path("layers/coast.tga")));
}

void tst_ProjectDocument::EmptyProjectHasNoLists()
{
    LayerList layers;
    const TerritoryTypeList types;
    QCOMPARE(Written({-1, {}, {}, layers, types}).constData(),
             R"(<?xml version="1.0" encoding="UTF-8"?>
<!--Tarvo Ledger tool project file-->
<qm-config>
    <!--GUI props-->
    <global>
        <background file="" rgba="4278190080"/>
        <layer size="4"/>
        <world size="100"/>
    </global>
    <areas>
        <usages/>
        <values/>
    </areas>
</qm-config>
)");
}

void tst_ProjectDocument::SelectedRowIsWritten_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QByteArray>("element");
    QTest::newRow("none") << -1 << QByteArray();
    QTest::newRow("first") << 0 << QByteArray("<selected row=\"0\"/>");
    QTest::newRow("another") << 12 << QByteArray("<selected row=\"12\"/>");
}

void tst_ProjectDocument::SelectedRowIsWritten()
{
    QFETCH(int, row);
    QFETCH(QByteArray, element);
    LayerList layers;
    const TerritoryTypeList types;
    const QByteArray document = Written({row, {}, {}, layers, types});
    QCOMPARE(document.contains("<selected"), !element.isEmpty());
    QVERIFY(document.contains(element));
}

void tst_ProjectDocument::CallerIsToldBeforeTheLayers()
{
    LayerList layers;
    auto* coast = new Layer(0, 0, &layers, "coast");
    coast->SetImage(ProjectSettings::Instance().BlankLayerImage(), Qt::white);
    QVERIFY(layers.AddLayer(coast));
    const TerritoryTypeList types;
    QByteArray document;
    QByteArray documentThen;
    bool isBitmapThere = true;
    QXmlStreamWriter xml(&document);
    WriteProjectDocument(xml, {-1, WriteBrush,
                               [&] {
                                   documentThen = document;
                                   isBitmapThere =
                                       QFile::exists(m_project->Path("layers/coast.tga"));
                               },
                               layers, types});
    QVERIFY(documentThen.contains("</global>"));
    QVERIFY(documentThen.contains("<brush"));
    QVERIFY(!documentThen.contains("<layers>"));
    QVERIFY(!isBitmapThere);
}

void tst_ProjectDocument::TheTextAloneIsThatOfTheDocument()
{
    LayerList layers;
    for (const char* name : {"coast", "forest"}) {
        auto layer = std::make_unique<Layer>(1, 2, &layers, name);
        layer->SetImage(ProjectSettings::Instance().BlankLayerImage(), QColor(1, 2, 3, 4));
        layer->SetVisible(layers.IsEmpty());
        QVERIFY(layers.AddLayer(std::move(layer)));
    }
    TerritoryTypeList types;
    auto* type = new TerritoryType("Deer");
    QVERIFY(types.AddType(type));
    Territory* territory = type->NewTerritory();
    territory->SetRgba(0x80123456);
    for (const int usage : {Zone::Water, Zone::DynamicEvent}) {
        auto* zone = new Zone(territory, 12.25F);
        zone->SetUsage(usage);
        zone->SetEventName("Migration");
        zone->SetDynamicMax(-7);
        zone->SetDepth(99);
        zone->setPos(1.0 / 3, 2.5);
        QVERIFY(territory->AddZone(zone));
    }

    const QByteArray text = WrittenText(
        {1, ProjectSettings::Instance(), WriteBrush, layers.Records(), types.Records()});

    QVERIFY(text.contains("name=\"Migration\""));
    QCOMPARE(text, Written({1, WriteBrush, {}, layers, types}));
    QCOMPARE(WrittenText({-1, ProjectSettings::Instance(), {}, {}, {}}),
             Written({-1, {}, {}, *std::make_unique<LayerList>(), TerritoryTypeList()}));
}

void tst_ProjectDocument::TheTextAloneChangesNothing()
{
    LayerList layers;
    for (int i = 0; i < 2; ++i) {
        auto layer = std::make_unique<Layer>(0, 0, &layers, "coast");
        layer->SetImage(ProjectSettings::Instance().BlankLayerImage(), Qt::white);
        QVERIFY(layers.AddLayer(std::move(layer)));
    }
    const LogSpy log;

    const QByteArray text =
        WrittenText({-1, ProjectSettings::Instance(), WriteBrush, layers.Records(), {}});

    QCOMPARE(text.count("name=\"coast\""), 2);
    QCOMPARE(layers.LayerAt(1)->text(), "coast");
    QCOMPARE(log.Messages(), QStringList());
    QVERIFY(!QFile::exists(m_project->Path("layers")));
}

void tst_ProjectDocument::WhatIsReadIsWrittenAgain()
{
    ProjectSettings::Instance().SetBackgroundFile("world & sea.png");
    ProjectSettings::Instance().SetFlagTypes({{"Coast"}, {"rich", "poor"}});
    LayerRecord layer{1, 0x80000000, 0x01020304, true, "coa\"st"};
    ZoneRecord zone;
    zone.values.SetName("Migration");
    zone.values.counts = {1, -2, 3, 4000};
    zone.values.depth = 9;
    zone.values.radius = 12.25F;
    zone.radius = 0.49F;
    zone.place = {0.125, 3.5};
    const TypeRecord type{"Deer", {{"North", 0x80123456, true, {zone, zone}}, {"", 1, false, {}}}};
    const auto writeBrush = [](QXmlStreamWriter& xml) {
        xml.writeEmptyElement("brush");
        xml.writeAttribute("color", "7");
        xml.writeAttribute("size", "a < b");
    };
    for (const ProjectValues& values :
         {ProjectValues{1, ProjectSettings::Instance(), writeBrush, {layer, layer}, {type, {}}},
          ProjectValues{-1, ProjectSettings::Instance(), {}, {}, {}}}) {
        QByteArray text = WrittenText(values);
        QBuffer buffer(&text);
        QVERIFY(buffer.open(QIODevice::ReadOnly));
        ProjectSettings::Instance().SetFlagTypes({});
        ProjectSettings::Instance().SetBackgroundFile("other");

        QCOMPARE(WrittenText(ReadProjectText(buffer)), text);
    }
}

void tst_ProjectDocument::LayersWithoutBitmapsAreRead()
{
    QByteArray text = "<qm-config><global><layer size='4'/><world size='100'/></global>"
                      "<layers><layer name='coast'/></layers></qm-config>";
    QBuffer buffer(&text);
    QVERIFY(buffer.open(QIODevice::ReadOnly));
    const LogSpy log;

    const ProjectValues values = ReadProjectText(buffer);

    QCOMPARE(values.layers.size(), std::size_t(1));
    QCOMPARE(values.layers.front().name, "coast");
    QCOMPARE(values.layers.front().color, 0xFFFFFFFFU);
    QVERIFY(!values.writeBrush);
    QCOMPARE(log.Messages(), QStringList());
    QVERIFY(!QFile::exists(m_project->Path("layers")));
}

void tst_ProjectDocument::PastedControlCharactersAreLeftOut()
{
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetBackgroundFile("wor\vld.png");
    settings.SetFlagTypes({{}, {QString("rich") + QChar(0xFFFE)}});
    LayerList layers;
    auto* coast = new Layer(0, 0, &layers,
                            "co\x01"
                            "ast");
    coast->SetImage(settings.BlankLayerImage(), Qt::white);
    QVERIFY(layers.AddLayer(coast));
    TerritoryTypeList types;
    auto* type = new TerritoryType("ani\fmals");
    QVERIFY(types.AddType(type));
    Territory* territory = type->NewTerritory();
    territory->setText("\x1Bherd");
    auto* zone = new Zone(territory, 100);
    zone->SetUsage(Zone::DynamicEvent);
    zone->SetEventName("hunt\b");
    QVERIFY(territory->AddZone(zone));

    QXmlStreamReader document(Written({-1, {}, {}, layers, types}));

    QStringList texts;
    while (!document.atEnd()) {
        document.readNext();
        for (const char* name : {"file", "name"}) {
            if (document.isStartElement() && document.attributes().hasAttribute(name)) {
                texts.append(document.attributes().value(name).toString());
            }
        }
    }
    QVERIFY2(!document.hasError(), qPrintable(document.errorString()));
    QCOMPARE(texts, (QStringList{"world.png", "rich", "coast", "animals", "herd", "hunt"}));
    QVERIFY(QFile::exists(m_project->Path("layers/coast.tga")));
}

QTEST_GUILESS_MAIN(tst_ProjectDocument)
#include "tst_ProjectDocument.moc"
