#include "territories/TerritoryTypeList.h"

#include "app/ProjectSettings.h"
#include "territories/Territory.h"
#include "territories/TerritoryType.h"
#include "territories/Zone.h"
#include "tests/support/XmlText.h"

#include <QAbstractItemModelTester>
#include <QGraphicsScene>
#include <QPointer>
#include <QStandardItemModel>
#include <QTest>

#include <memory>
#include <utility>

namespace {

constexpr char Document[] =
    "<territory-type-list>"
    "<territory-type name=\"Deer\">"
    "<territory name=\"North\" visible=\"1\" color=\"2164195328\">"
    "<zone name=\"Rest\" smin=\"1\" smax=\"2\" dmin=\"3\" dmax=\"4\" x=\"400\" z=\"500\" r=\"75\" "
    "d=\"48\"/>"
    "<zone name=\"Flood\" smin=\"0\" smax=\"0\" dmin=\"0\" dmax=\"0\" x=\"0\" z=\"0\" r=\"0\" "
    "d=\"2\"/>"
    "</territory>"
    "<territory name=\"Nobody\" visible=\"0\" color=\"0\"/>"
    "</territory-type>"
    "<territory-type name=\"Wolf &amp; Bear\">"
    "<territory name=\"South\" visible=\"0\" color=\"4278190080\">"
    "<zone name=\"Water\" smin=\"10\" smax=\"20\" dmin=\"30\" dmax=\"40\" x=\"1\" z=\"2\" r=\"3\" "
    "d=\"255\"/>"
    "</territory>"
    "</territory-type>"
    "<territory-type name=\"Empty\"/>"
    "</territory-type-list>";

QString Text(const TerritoryTypeList& list)
{
    return XmlText([&](QXmlStreamWriter& xml) { list.Write(xml); });
}

bool Read(TerritoryTypeList& list, const QString& text, QGraphicsScene* scene = nullptr)
{
    ElementReader xml(text);
    return list.Read(xml, scene);
}

QStringList Names(const TerritoryTypeList& list)
{
    QStringList names;
    const QVector<TerritoryType*> types = list.Types();
    for (const TerritoryType* type : types) {
        names.append(type->text());
    }
    return names;
}

QStringList TerritoryNames(const TerritoryType& type)
{
    QStringList names;
    const QVector<Territory*> territories = type.Territories();
    for (const Territory* territory : territories) {
        names.append(territory->text());
    }
    return names;
}

int ZoneCount(const TerritoryTypeList& list)
{
    int count = 0;
    const QVector<TerritoryType*> types = list.Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (const Territory* territory : territories) {
            count += territory->Zones().size();
        }
    }
    return count;
}

} // namespace

class tst_TerritoryTypeList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void TakesEachTypeOnce();
    void TypesOfOthersAreRefused();
    void ClearDestroysTheTypes();
    void ModelIsReleasedWithTheList();
    void OtherRowsArePassedOver();
    void VisibilityFollowsTheCheckStates();
    void EmptyListWritesNothing();
    void TypesAreWrittenBehindAComment();
    void TypesAreWrittenByAscendingId();
    void ReadsWhatItWrites();
    void ReadTerritoriesAreLocked();
    void ReadZonesTakeTheColorAndVisibility();
    void ReadingAddsToTheTypesBefore();
    void VisibleIsWhatIsPositive_data();
    void VisibleIsWhatIsPositive();
    void ColorIsAnUnsignedNumber_data();
    void ColorIsAnUnsignedNumber();
    void TypeWithoutNameIsKept();
    void NestedTypeIsIgnored();
    void TerritoryOutsideATypeIsSkipped();
    void NamesAreCaseSensitive();
    void UnknownElementsAreReadPast();
    void ReadingStopsAtTheEndTag();
    void TypeJoinsTheModelAtItsEndTag();
    void CutInputKeepsCompleteTypes();
    void DamagedInputNeverCrashes_data();
    void DamagedInputNeverCrashes();
    void TellsWhenTotalsMayHaveChanged();
    void TellsNobodyAboutOtherTypes();
};

void tst_TerritoryTypeList::initTestCase()
{
    ProjectSettings::Instance().SetSizes(1024, 1024, 1024, 1024);
}

void tst_TerritoryTypeList::TakesEachTypeOnce()
{
    TerritoryTypeList list;
    const QAbstractItemModelTester tester(list.model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    QVERIFY(!list.AddType(nullptr));
    QVERIFY(list.IsEmpty());
    auto* type = new TerritoryType("Deer");
    QVERIFY(list.AddType(type));
    QVERIFY(list.AddType(type));
    QCOMPARE(list.model()->rowCount(), 1);
    QCOMPARE(list.model()->item(0), type);
    QVERIFY(!list.IsEmpty());
}

void tst_TerritoryTypeList::ClearDestroysTheTypes()
{
    TerritoryTypeList list;
    QGraphicsScene scene;
    QVERIFY(Read(list, Document, &scene));
    const QAbstractItemModelTester tester(list.model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    list.Clear();
    QVERIFY(list.IsEmpty());
    QCOMPARE(list.model()->rowCount(), 0);
    QCOMPARE(list.model()->columnCount(), 0);
    QVERIFY(scene.items().isEmpty());
    list.Clear();
    QVERIFY(Read(list, Document, &scene));
    QCOMPARE(list.Types().size(), 3);
}

void tst_TerritoryTypeList::ModelIsReleasedWithTheList()
{
    QGraphicsScene scene;
    auto list = std::make_unique<TerritoryTypeList>();
    const QPointer<QStandardItemModel> model = list->model();
    QVERIFY(Read(*list, Document, &scene));
    list.reset();
    QVERIFY(scene.items().isEmpty());
    QVERIFY(model);
    QCOMPARE(model->rowCount(), 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!model);
}

void tst_TerritoryTypeList::OtherRowsArePassedOver()
{
    TerritoryTypeList list;
    list.model()->appendRow(new QStandardItem("no type"));
    list.model()->setRowCount(2);
    QVERIFY(list.IsEmpty());
    QVERIFY(Text(list).isEmpty());
    QVERIFY(list.ExportAll());
    list.AddType(new TerritoryType("Deer"));
    list.UpdateVisibility();
    QCOMPARE(Names(list), QStringList{"Deer"});
}

void tst_TerritoryTypeList::VisibilityFollowsTheCheckStates()
{
    TerritoryTypeList list;
    QVERIFY(Read(list, Document));
    const QVector<TerritoryType*> types = list.Types();
    for (const TerritoryType* type : types) {
        const QVector<Territory*> territories = type->Territories();
        for (Territory* territory : territories) {
            const bool wasChecked = territory->checkState() == Qt::Checked;
            territory->setCheckState(wasChecked ? Qt::Unchecked : Qt::Checked);
        }
    }
    list.UpdateVisibility();
    QCOMPARE(Text(list).count("visible=\"1\""), 2);
    QVERIFY(Text(list).contains("name=\"North\" visible=\"0\""));
}

void tst_TerritoryTypeList::EmptyListWritesNothing()
{
    QVERIFY(Text(TerritoryTypeList()).isEmpty());
}

void tst_TerritoryTypeList::TypesAreWrittenBehindAComment()
{
    TerritoryTypeList list;
    list.AddType(new TerritoryType("Deer"));
    QCOMPARE(Text(list), "<!--Territories--><territory-type-list><territory-type name=\"Deer\"/>"
                         "</territory-type-list>");
}

void tst_TerritoryTypeList::TypesAreWrittenByAscendingId()
{
    TerritoryTypeList list;
    auto* first = new TerritoryType("first");
    auto* second = new TerritoryType("second");
    list.AddType(second);
    list.AddType(first);
    QCOMPARE(Names(list), (QStringList{"first", "second"}));
    QVERIFY(Text(list).indexOf("first") < Text(list).indexOf("second"));
    QCOMPARE(list.model()->item(0), second);
}

void tst_TerritoryTypeList::ReadsWhatItWrites()
{
    TerritoryTypeList list;
    QVERIFY(Read(list, Document));
    QCOMPARE(Text(list), QString("<!--Territories-->") + Document);
    QCOMPARE(list.Types().constFirst()->Totals().dynamicMax, 4);
    QCOMPARE(list.Types().at(1)->Totals().dynamicMax, 40);
}

void tst_TerritoryTypeList::ReadTerritoriesAreLocked()
{
    TerritoryTypeList list;
    QGraphicsScene scene;
    QVERIFY(Read(list, Document, &scene));
    QCOMPARE(scene.items().size(), 3);
    const QList<QGraphicsItem*> items = scene.items();
    for (const QGraphicsItem* item : items) {
        QCOMPARE(item->flags(), QGraphicsItem::ItemSendsGeometryChanges);
    }
}

void tst_TerritoryTypeList::ReadZonesTakeTheColorAndVisibility()
{
    TerritoryTypeList list;
    QVERIFY(Read(list, Document));
    const Territory* north = list.Types().constFirst()->Territories().constFirst();
    const Territory* south = list.Types().at(1)->Territories().constFirst();
    QCOMPARE(north->Color().rgba(), 0x80FF0000U);
    QCOMPARE(north->Zones().first()->Color().rgba(), 0x80FF0000U);
    QVERIFY(north->Zones().first()->isVisible());
    QCOMPARE(north->checkState(), Qt::Checked);
    QVERIFY(!south->Zones().first()->isVisible());
    QCOMPARE(south->checkState(), Qt::Unchecked);
}

void tst_TerritoryTypeList::ReadingAddsToTheTypesBefore()
{
    TerritoryTypeList list;
    list.AddType(new TerritoryType("Deer"));
    QVERIFY(Read(list, Document));
    QCOMPARE(Names(list), (QStringList{"Deer", "Deer", "Wolf & Bear", "Empty"}));
}

namespace {

/// Reads a territory with these attributes.
std::unique_ptr<TerritoryTypeList> ListWithTerritory(const QString& attributes)
{
    auto list = std::make_unique<TerritoryTypeList>();
    Read(*list, QString("<territory-type-list><territory-type name=\"Deer\"><territory %1>"
                        "<zone/></territory></territory-type></territory-type-list>")
                    .arg(attributes));
    return list;
}

} // namespace

void tst_TerritoryTypeList::VisibleIsWhatIsPositive_data()
{
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<bool>("isVisible");
    QTest::newRow("missing") << "" << false;
    QTest::newRow("empty") << "visible=\"\"" << false;
    QTest::newRow("zero") << "visible=\"0\"" << false;
    QTest::newRow("one") << "visible=\"1\"" << true;
    QTest::newRow("more") << "visible=\"7\"" << true;
    QTest::newRow("negative") << "visible=\"-1\"" << false;
    QTest::newRow("word") << "visible=\"true\"" << false;
}

void tst_TerritoryTypeList::VisibleIsWhatIsPositive()
{
    QFETCH(QString, attribute);
    QFETCH(bool, isVisible);
    const auto list = ListWithTerritory(attribute);
    const Territory* territory = list->Types().constFirst()->Territories().constFirst();
    QCOMPARE(territory->IsVisible(), isVisible);
    QCOMPARE(territory->Zones().first()->isVisible(), isVisible);
    QCOMPARE(territory->checkState(), isVisible ? Qt::Checked : Qt::Unchecked);
}

void tst_TerritoryTypeList::ColorIsAnUnsignedNumber_data()
{
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QRgb>("color");
    QTest::newRow("missing") << "" << 0U;
    QTest::newRow("empty") << "color=\"\"" << 0U;
    QTest::newRow("opaque black") << "color=\"4278190080\"" << 0xFF000000U;
    QTest::newRow("opaque white") << "color=\"4294967295\"" << 0xFFFFFFFFU;
    QTest::newRow("too large") << "color=\"4294967296\"" << 0U;
    QTest::newRow("negative") << "color=\"-1\"" << 0U;
    QTest::newRow("hexadecimal") << "color=\"0xFF\"" << 0U;
    QTest::newRow("name") << "color=\"red\"" << 0U;
}

void tst_TerritoryTypeList::ColorIsAnUnsignedNumber()
{
    QFETCH(QString, attribute);
    QFETCH(QRgb, color);
    const auto list = ListWithTerritory(attribute);
    const Territory* territory = list->Types().constFirst()->Territories().constFirst();
    QCOMPARE(territory->Color().rgba(), color);
    QCOMPARE(territory->Zones().first()->Color().rgba(), color);
    QVERIFY(territory->text().isEmpty());
}

void tst_TerritoryTypeList::TypeWithoutNameIsKept()
{
    TerritoryTypeList list;
    QVERIFY(Read(list, "<territory-type-list><territory-type/></territory-type-list>"));
    QCOMPARE(Names(list), QStringList{QString()});
}

void tst_TerritoryTypeList::NestedTypeIsIgnored()
{
    TerritoryTypeList list;
    QVERIFY(Read(list, "<territory-type-list>"
                       "<territory-type name=\"outer\"><territory name=\"a\"/>"
                       "<territory-type name=\"inner\"><territory name=\"b\"/></territory-type>"
                       "<territory name=\"lost\"><zone/></territory></territory-type>"
                       "<territory-type name=\"next\"><territory name=\"c\"/></territory-type>"
                       "</territory-type-list>"));
    QCOMPARE(Names(list), (QStringList{"outer", "next"}));
    QCOMPARE(TerritoryNames(*list.Types().constFirst()), (QStringList{"a", "b"}));
    QCOMPARE(TerritoryNames(*list.Types().constLast()), QStringList{"c"});
}

void tst_TerritoryTypeList::TerritoryOutsideATypeIsSkipped()
{
    TerritoryTypeList list;
    QGraphicsScene scene;
    QVERIFY(Read(list,
                 "<territory-type-list><territory name=\"lost\"><zone/>"
                 "<territory-type name=\"lost too\"/></territory>"
                 "<territory-type name=\"Deer\"><territory name=\"a\"/></territory-type>"
                 "<territory/></territory-type-list>",
                 &scene));
    QCOMPARE(Names(list), QStringList{"Deer"});
    QCOMPARE(TerritoryNames(*list.Types().constFirst()), QStringList{"a"});
    QVERIFY(scene.items().isEmpty());
}

void tst_TerritoryTypeList::NamesAreCaseSensitive()
{
    TerritoryTypeList list;
    QVERIFY(Read(list, "<territory-type-list><Territory-type name=\"no\"/>"
                       "<territory-type name=\"Deer\"><Territory name=\"no\"/>"
                       "<territory name=\"a\"><Zone/></territory></territory-type>"
                       "</territory-type-list>"));
    QCOMPARE(Names(list), QStringList{"Deer"});
    QCOMPARE(TerritoryNames(*list.Types().constFirst()), QStringList{"a"});
    QCOMPARE(ZoneCount(list), 0);
}

void tst_TerritoryTypeList::UnknownElementsAreReadPast()
{
    TerritoryTypeList list;
    QVERIFY(Read(list, "<territory-type-list>text<group><territory-type name=\"Deer\">"
                       "<!-- note --><group><territory name=\"a\"/></group></territory-type>"
                       "</group></territory-type-list>"));
    QCOMPARE(Names(list), QStringList{"Deer"});
    QCOMPARE(TerritoryNames(*list.Types().constFirst()), QStringList{"a"});
}

void tst_TerritoryTypeList::ReadingStopsAtTheEndTag()
{
    ElementReader xml(QString("<root>") + Document +
                      "<territory-type name=\"no\"></territory-type></root>");
    QVERIFY(xml.readNextStartElement());
    TerritoryTypeList list;
    QVERIFY(list.Read(xml, nullptr));
    QCOMPARE(list.Types().size(), 3);
    QCOMPARE(xml.name(), QString("territory-type-list"));
}

void tst_TerritoryTypeList::TypeJoinsTheModelAtItsEndTag()
{
    TerritoryTypeList list;
    QVector<int> territoryCounts;
    connect(list.model(), &QStandardItemModel::rowsInserted, this,
            [&](const QModelIndex& parent, int row) {
                QVERIFY(!parent.isValid());
                territoryCounts.append(list.model()->item(row)->rowCount());
            });
    QVERIFY(Read(list, Document));
    QCOMPARE(territoryCounts, (QVector<int>{2, 1, 0}));
}

void tst_TerritoryTypeList::CutInputKeepsCompleteTypes()
{
    const QString document = Document;
    for (int length = 0; length <= document.size(); ++length) {
        const QString cut = document.left(length);
        TerritoryTypeList list;
        QGraphicsScene scene;
        QCOMPARE(Read(list, cut, &scene), length == document.size());
        // The last type has no territories, so its single tag completes it.
        const int complete =
            cut.count("</territory-type>") + cut.count("<territory-type name=\"Empty\"/>");
        QCOMPARE(list.Types().size(), complete);
        QCOMPARE(scene.items().size(), ZoneCount(list));
    }
}

void tst_TerritoryTypeList::DamagedInputNeverCrashes_data()
{
    QTest::addColumn<QChar>("damage");
    QTest::newRow("a tag opens") << QChar('<');
    QTest::newRow("a tag ends") << QChar('>');
    QTest::newRow("an entity starts") << QChar('&');
    QTest::newRow("a text ends") << QChar('"');
    QTest::newRow("NUL") << QChar(0);
}

void tst_TerritoryTypeList::DamagedInputNeverCrashes()
{
    QFETCH(QChar, damage);
    const QString document = Document;
    for (int place = 0; place < document.size(); ++place) {
        QString damaged = document;
        damaged[place] = damage;
        ElementReader xml(damaged);
        TerritoryTypeList list;
        QGraphicsScene scene;
        const bool isRead = list.Read(xml, &scene);
        QCOMPARE(isRead, !xml.hasError());
        QCOMPARE(scene.items().size(), ZoneCount(list));
    }
}

void tst_TerritoryTypeList::TypesOfOthersAreRefused()
{
    TerritoryTypeList list;
    TerritoryTypeList others;
    auto* deer = new TerritoryType("Deer");
    QVERIFY(others.AddType(deer));
    QVERIFY(!list.AddType(deer));
    QCOMPARE(others.Types(), QVector<TerritoryType*>{deer});
    QCOMPARE(deer->model(), others.model());
    QStandardItem parent;
    auto* child = new TerritoryType("Wolf");
    parent.appendRow(child);
    QVERIFY(!list.AddType(child));
    QCOMPARE(child->parent(), &parent);
    QVERIFY(list.IsEmpty());
}

void tst_TerritoryTypeList::TellsWhenTotalsMayHaveChanged()
{
    TerritoryTypeList list;
    auto* type = new TerritoryType(QStringLiteral("Deer"));
    Territory* territory = type->NewTerritory();
    int calls = 0;
    list.SetTotalsCallback([&calls] { ++calls; });
    const auto told = [&calls] { return std::exchange(calls, 0) > 0; };

    list.AddType(type);
    QVERIFY(told());
    auto* zone = new Zone(territory, 100.0F);
    zone->SetStaticMin(1);
    QVERIFY(!told());
    territory->AddZone(zone);
    QVERIFY(told());
    QVERIFY(!territory->AddZone(zone));
    QVERIFY(!told());
    void (Zone::*const setters[])(int) = {&Zone::SetStaticMin, &Zone::SetStaticMax,
                                          &Zone::SetDynamicMin, &Zone::SetDynamicMax};
    for (const auto setter : setters) {
        (zone->*setter)(7);
        QVERIFY(told());
    }
    territory->RemoveZone(zone->Id());
    QVERIFY(told());
    territory->RemoveZone(zone->Id());
    QVERIFY(!told());
    territory->AddZone(zone);
    told();
    delete zone;
    QVERIFY(told());

    type->RemoveTerritory(territory->Id());
    QVERIFY(told());
    list.Clear();
    QVERIFY(told());
}

void tst_TerritoryTypeList::TellsNobodyAboutOtherTypes()
{
    auto list = std::make_unique<TerritoryTypeList>();
    int calls = 0;
    list->SetTotalsCallback([&calls] { ++calls; });
    auto* type = new TerritoryType(QStringLiteral("Deer"));
    list->AddType(type);
    // A type that was taken out does not belong to the list any more.
    const std::unique_ptr<QStandardItem> owner(list->model()->takeItem(0));
    list->model()->removeRow(0);
    calls = 0;
    type->NewTerritory()->AddZone(new Zone(nullptr, 100.0F));
    QCOMPARE(calls, 0);

    list->AddType(new TerritoryType(QStringLiteral("Wolf")));
    calls = 0;
    list.reset();
    type->NewTerritory()->AddZone(new Zone(nullptr, 100.0F));

    // The callback is not called while the list is destroyed, because the object that shows totals
    // may be destroyed too.
    QCOMPARE(calls, 0);
}

QTEST_MAIN(tst_TerritoryTypeList)
#include "tst_TerritoryTypeList.moc"
