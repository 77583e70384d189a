#include "document/Formulas.h"

#include "document/edits/FormulaEdits.h"
#include "document/edits/LayerEdits.h"
#include "layers/Formula.h"
#include "layers/Layer.h"
#include "layers/raster/Mask.h"

#include "tests/support/DocumentFixture.h"
#include "tests/support/LogSpy.h"
#include "tests/support/Masks.h"

#include <QtTest>

class tst_Formulas : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void DescribesFormulaAndState_data();
    void DescribesFormulaAndState();
    void PaintedLayersHaveNoFormula();
    void AChangedOperandMakesOutOfDate();
    void OutOfDateGoesThroughChains();
    void HandEditsAreNoticed();
    void ARemovedOperandBreaks();
    void NamesFollowRenames();
    void UpdatingBringsUpToDateInOneStep();
    void ModifyingIsUpToDate();
    void CyclesAreOutOfDate();
    void RecordsAreReadBack();
    void StatesSurviveFiles();
    void LayersOfOneNameKeepTheirFormulas();
    void MissingOperandsAreBroken();
    void FaultsAreLoggedOnceAndUnknownLayersAreNot();
    void ReadsOnlyTilesThatChanged();

private:
    Layer* Add(const QString& name, const Formula& formula);
    QString Words(const Layer& layer) const
    {
        return m_fixture->document.LayerFormulas().Describe(layer);
    }
    FormulaState State(const Layer& layer) const
    {
        return m_fixture->document.LayerFormulas().StateOf(layer);
    }

    std::unique_ptr<DocumentFixture> m_fixture;
    Layer* m_lake = nullptr;
};

void tst_Formulas::init()
{
    m_fixture.reset();
    m_fixture = std::make_unique<DocumentFixture>();
    m_lake = m_fixture->AddLayer();
    m_fixture->document.Do(Edits::Rename(*m_lake, QStringLiteral("Lake")));
    m_fixture->Fill(*m_lake, {50, 50, 40, 40}, 255);
}

Layer* tst_Formulas::Add(const QString& name, const Formula& formula)
{
    Document& document = m_fixture->document;
    const QString code = formula.Code();
    document.Do(Edits::AddComputedLayer(document.Layers(), name, code,
                                        EvaluateAtLayerSize(document.Layers(), code)));
    return document.Layers().LayerByName(name);
}

void tst_Formulas::DescribesFormulaAndState_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QString>("words");
    QTest::newRow("dilation") << int(OperationDilation) << "Dilation of Lake, 25 m, up to date";
    QTest::newRow("complement") << int(OperationComplement) << "Complement of Lake, up to date";
    QTest::newRow("difference") << int(OperationDifference)
                                << "Difference of Lake and Lake, up to date";
}

void tst_Formulas::DescribesFormulaAndState()
{
    QFETCH(int, operation);
    Formula formula{static_cast<CustomOperation>(operation), {m_lake->Id()}, 0};
    if (IsBinaryOperation(operation)) {
        formula.operands.append(m_lake->Id());
    }
    formula.metres = IsMorphologicalOperation(operation) ? 25 : 0;
    QTEST(Words(*Add(QStringLiteral("Shore"), formula)), "words");
}

void tst_Formulas::PaintedLayersHaveNoFormula()
{
    QCOMPARE(Words(*m_lake), QString());
    QCOMPARE(State(*m_lake), FormulaState::None);
    QVERIFY(!m_fixture->document.LayerFormulas().HasAny());
    QVERIFY(m_fixture->document.LayerFormulas().Records().empty());
}

void tst_Formulas::AChangedOperandMakesOutOfDate()
{
    const Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});

    m_fixture->Fill(*m_lake, {0, 0, 5, 5}, 255);
    QCOMPARE(Words(*shore), QStringLiteral("Dilation of Lake, 25 m, out of date"));
    m_fixture->document.Undo();
    QCOMPARE(State(*shore), FormulaState::UpToDate);
    // By other steps to the same pixels.
    m_fixture->Fill(*m_lake, {0, 0, 5, 5}, 255);
    m_fixture->Fill(*m_lake, {0, 0, 5, 5}, 0);
    QCOMPARE(State(*shore), FormulaState::UpToDate);
}

void tst_Formulas::OutOfDateGoesThroughChains()
{
    const Layer* wide = Add(QStringLiteral("Wide"), {OperationDilation, {m_lake->Id()}, 5});
    const Layer* inverse = Add(QStringLiteral("Land"), {OperationComplement, {wide->Id()}, 0});

    m_fixture->Fill(*m_lake, {0, 0, 5, 5}, 255);
    QCOMPARE(State(*wide), FormulaState::OutOfDate);
    QCOMPARE(State(*inverse), FormulaState::OutOfDate);
}

void tst_Formulas::HandEditsAreNoticed()
{
    Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});

    m_fixture->Fill(*shore, {0, 0, 5, 5}, 255);
    QCOMPARE(Words(*shore), QStringLiteral("Dilation of Lake, 25 m, edited by hand"));
    m_fixture->Fill(*m_lake, {0, 0, 5, 5}, 255);
    QCOMPARE(State(*shore), FormulaState::Edited);
    QVERIFY(m_fixture->document.LayerFormulas().IsStale(*shore));
    m_fixture->document.Undo();
    QVERIFY(!m_fixture->document.LayerFormulas().IsStale(*shore));
    m_fixture->document.Undo();
    QCOMPARE(State(*shore), FormulaState::UpToDate);
}

void tst_Formulas::ARemovedOperandBreaks()
{
    Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});
    m_fixture->Fill(*shore, {0, 0, 5, 5}, 255);

    m_fixture->document.Do(Edits::RemoveLayer(*m_lake));
    QCOMPARE(Words(*shore), QStringLiteral("Dilation of Lake, 25 m, Lake is missing, broken"));
    m_fixture->document.Undo();
    QCOMPARE(State(*shore), FormulaState::Edited);
    m_fixture->document.Undo();
    QCOMPARE(State(*shore), FormulaState::UpToDate);
}

void tst_Formulas::NamesFollowRenames()
{
    const Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});

    m_fixture->document.Do(Edits::Rename(*m_lake, QStringLiteral("Sea")));
    QCOMPARE(Words(*shore), QStringLiteral("Dilation of Sea, 25 m, up to date"));
    QCOMPARE(m_fixture->document.LayerFormulas().Records().front().operands.first().name,
             QStringLiteral("Sea"));
}

void tst_Formulas::UpdatingBringsUpToDateInOneStep()
{
    Document& document = m_fixture->document;
    Layer* wide = Add(QStringLiteral("Wide"), {OperationDilation, {m_lake->Id()}, 5});
    Layer* land = Add(QStringLiteral("Land"), {OperationComplement, {wide->Id()}, 0});
    m_fixture->Fill(*m_lake, {0, 0, 5, 5}, 255);
    m_fixture->Fill(*wide, {100, 100, 5, 5}, 255);
    const QByteArray before = Indices(land->Image());
    const int steps = document.History().count();

    document.Do(Edits::UpdateLayers({wide, land}));
    QCOMPARE(document.History().count(), steps + 1);
    QCOMPARE(State(*wide), FormulaState::UpToDate);
    QCOMPARE(State(*land), FormulaState::UpToDate);
    QCOMPARE(Indices(land->Image()), Indices(EvaluateAtLayerSize(document.Layers(), land->Code())));
    document.Undo();
    QCOMPARE(State(*wide), FormulaState::Edited);
    QCOMPARE(State(*land), FormulaState::OutOfDate);
    QCOMPARE(Indices(land->Image()), before);
    document.Redo();
    QCOMPARE(State(*land), FormulaState::UpToDate);
}

void tst_Formulas::ModifyingIsUpToDate()
{
    Document& document = m_fixture->document;
    Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});
    m_fixture->Fill(*m_lake, {0, 0, 5, 5}, 255);
    const QString code = Formula{OperationErosion, {m_lake->Id()}, 2}.Code();

    document.Do(Edits::ModifyLayer(*shore, shore->text(), code,
                                   EvaluateAtLayerSize(document.Layers(), code)));
    QCOMPARE(Words(*shore), QStringLiteral("Erosion of Lake, 2 m, up to date"));
    document.Undo();
    QCOMPARE(Words(*shore), QStringLiteral("Dilation of Lake, 25 m, out of date"));
}

void tst_Formulas::CyclesAreOutOfDate()
{
    Document& document = m_fixture->document;
    const Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});
    const QString code = Formula{OperationErosion, {shore->Id()}, 2}.Code();
    document.Do(Edits::ModifyLayer(*m_lake, m_lake->text(), code,
                                   EvaluateAtLayerSize(document.Layers(), code)));

    QCOMPARE(State(*shore), FormulaState::OutOfDate);
    QCOMPARE(Words(*m_lake), QStringLiteral("Erosion of Shore, 2 m, out of date"));
}

void tst_Formulas::RecordsAreReadBack()
{
    Document& document = m_fixture->document;
    Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});
    Add(QStringLiteral("Both"), {OperationUnion, {m_lake->Id(), shore->Id()}, 0});
    document.Do(Edits::MakeLayerLive(*shore, {}));
    m_fixture->Fill(*m_lake, {0, 0, 5, 5}, 255);
    const QByteArray text = FormulaDocument(document.LayerFormulas().Records());

    DocumentFixture other;
    for (const char* name : {"Lake", "Shore", "Both"}) {
        Layer* layer = other.AddLayer();
        const Layer* same = document.Layers().LayerByName(QString::fromLatin1(name));
        other.document.Do(Edits::Rename(*layer, same->text()));
        layer->SetImage(same->Image(), Qt::white);
    }
    other.document.LayerFormulas().Read(ReadFormulas(text), QString());

    QCOMPARE(FormulaDocument(other.document.LayerFormulas().Records()), text);
    const Layer& live = *other.document.Layers().LayerByName(QStringLiteral("Shore"));
    QVERIFY(other.document.LayerFormulas().IsLive(live));
    QCOMPARE(other.document.LayerFormulas().Describe(live),
             QStringLiteral("Dilation of Lake, 25 m, up to date"));
    QCOMPARE(other.document.LayerFormulas().StateOf(
                 *other.document.Layers().LayerByName(QStringLiteral("Both"))),
             FormulaState::OutOfDate);
}

void tst_Formulas::StatesSurviveFiles()
{
    Document& document = m_fixture->document;
    Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});
    const FormulaReading reading =
        ReadFormulas(FormulaDocument(document.LayerFormulas().Records()));
    // Somebody else changed the bitmap.
    m_fixture->Fill(*shore, {0, 0, 5, 5}, 9);
    shore->StoreCode({});
    document.LayerFormulas().SetFacts(*shore, {});
    document.LayerFormulas().Read(reading, QString());

    QCOMPARE(State(*shore), FormulaState::Edited);
}

void tst_Formulas::LayersOfOneNameKeepTheirFormulas()
{
    Document& document = m_fixture->document;
    Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});
    Layer* lake = m_fixture->AddLayer();
    Layer* land = Add(QStringLiteral("Land"), {OperationComplement, {lake->Id()}, 0});
    document.Do(Edits::Rename(*lake, m_lake->text()));
    document.Do(Edits::Rename(*land, shore->text()));
    const QStringList codes{shore->Code(), land->Code()};

    const FormulaReading reading =
        ReadFormulas(FormulaDocument(document.LayerFormulas().Records()));
    for (Layer* layer : {shore, land}) {
        layer->StoreCode({});
        document.LayerFormulas().SetFacts(*layer, {});
    }
    document.LayerFormulas().Read(reading, QString());

    QCOMPARE(QStringList({shore->Code(), land->Code()}), codes);
}

void tst_Formulas::MissingOperandsAreBroken()
{
    Document& document = m_fixture->document;
    Layer* both = Add(QStringLiteral("Both"),
                      {OperationUnion, {m_lake->Id(), m_fixture->AddLayer()->Id()}, 0});
    FormulaReading reading = ReadFormulas(FormulaDocument(document.LayerFormulas().Records()));
    reading.records.front().operands[1].name = QStringLiteral("Bog");
    document.LayerFormulas().Read(reading, QString());

    QCOMPARE(Words(*both), QStringLiteral("Union of Lake and Bog, Bog is missing, broken"));
    const FormulaRecords records = document.LayerFormulas().Records();
    QCOMPARE(records.front().operands.at(1).name, QStringLiteral("Bog"));
}

void tst_Formulas::FaultsAreLoggedOnceAndUnknownLayersAreNot()
{
    Document& document = m_fixture->document;
    const QString file = QStringLiteral("a.derived.xml");
    LogSpy log;

    document.LayerFormulas().Read(ReadFormulas("<a/>"), file);
    QStringList messages = log.Take();
    QCOMPARE(messages.size(), 1);
    QVERIFY(messages.first().startsWith(
        QLatin1String("Error: The formulas in 'a.derived.xml' cannot be used: line 1:")));
    QVERIFY(!document.LayerFormulas().HasAny());

    FormulaRecord record;
    record.operation = OperationComplement;
    record.operands.append({QStringLiteral("Lake"), 1});
    FormulaRecords records;
    for (const char* name : {"Bog", "Fen"}) {
        record.layer = QString::fromLatin1(name);
        records.push_back(record);
    }
    document.LayerFormulas().Read({records, {}}, file);
    QCOMPARE(log.Take(), QStringList());
    QVERIFY(!document.LayerFormulas().HasAny());

    record.layer = QStringLiteral("Lake");
    document.LayerFormulas().Read({{record}, {}}, file);
    QCOMPARE(log.Take(), QStringList("Error: In 'a.derived.xml', layers are made of one another: "
                                     "Lake -> Lake."));
}

/// Whole masks take long to read, and the tip of a row is due after each edit.
void tst_Formulas::ReadsOnlyTilesThatChanged()
{
    const Layer* shore = Add(QStringLiteral("Shore"), {OperationDilation, {m_lake->Id()}, 25});
    QCOMPARE(State(*shore), FormulaState::UpToDate);

    // Nobody announced this pixel.
    QImage pixel = raster::BlankMask({1, 1});
    pixel.fill(7);
    m_lake->PutPixels({199, 199, 1, 1}, pixel, {});
    m_fixture->Fill(*m_lake, {0, 0, 5, 5}, 99);
    QCOMPARE(State(*shore), FormulaState::OutOfDate);
    m_fixture->document.Undo();
    QCOMPARE(State(*shore), FormulaState::UpToDate);
}

QTEST_MAIN(tst_Formulas)
#include "tst_Formulas.moc"
