#include "ui/DockLayers.h"

#include "tests/support/Drags.h"
#include "tests/support/LayerDocksFixture.h"
#include "tests/support/LogSpy.h"

#include <QApplication>
#include <QLineEdit>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

class tst_DockLayers : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_docks = std::make_unique<LayerDocksFixture>(); }
    void cleanup() { m_docks.reset(); }
    void HasItsSignalsInOrder();
    void AddsAPaintedLayer();
    void AddsNoPaintedLayerWithoutALayerSize_data();
    void AddsNoPaintedLayerWithoutALayerSize();
    void AddsACustomLayer();
    void AddsNothingWhenTheDialogIsCancelled();
    void AddsNothingToAnEmptyListWithTheDialog();
    void SelectsWithMouseAndKeyboard();
    void SelectsByRowAndItem();
    void SelectsNothingByItself();
    void ReportsWhatTheUserChecks();
    void HidesAll();
    void FiltersRows();
    void TheFilterKeepsTheCurrentRowInView();
    void NewRowsObeyTheFilter();
    void ANewLayerEndsAFilterThatHidesIt();
    void DragsFilteredRows();
    void WritesAndReads();
    void SavesTheMap();
    void ReportsAMapThatCannotBeSaved();

private:
    std::unique_ptr<LayerDocksFixture> m_docks;
};

void tst_DockLayers::HasItsSignalsInOrder()
{
    QStringList signatures;
    const QMetaObject& meta = DockLayers::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        if (meta.method(i).methodType() == QMetaMethod::Signal) {
            signatures.append(QString::fromLatin1(meta.method(i).methodSignature()));
        }
    }
    QCOMPARE(signatures,
             (QStringList{"Added(Layer*)", "Checked(Layer*)", "Modified(Layer*)", "Removed(int)",
                          "Selected(Layer*)", "AllHidden()", "Reordered()"}));
}

void tst_DockLayers::AddsAPaintedLayer()
{
    QCOMPARE(m_docks->Tree()->model(), m_docks->List()->model());
    const QSignalSpy added(m_docks->dock, &DockLayers::Added);

    QTest::mouseClick(m_docks->Button("btnAddPainted"), Qt::LeftButton);

    QVERIFY(m_docks->dock->HasLayers());
    const Layer* layer = m_docks->LayerAt(0);
    QCOMPARE(added.size(), 1);
    QCOMPARE(added.first().first().value<Layer*>(), layer);
    QCOMPARE(layer->text(), QStringLiteral("layer-%1").arg(layer->Id()));
    QCOMPARE(layer->Color(), QColor(Qt::white));
    QCOMPARE(layer->Image(), ProjectSettings::Instance().BlankLayerImage());
    QCOMPARE(layer->UsageFlags(), 0U);
    QCOMPARE(layer->ValueFlags(), 0U);
    QVERIFY(layer->Code().isEmpty());
    QVERIFY(!layer->IsVisible());
    QVERIFY(m_docks->Button("btnHideAll")->isEnabled());
    QVERIFY(m_docks->IsModified());
}

void tst_DockLayers::AddsNoPaintedLayerWithoutALayerSize_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow("0") << QSize(0, 0);
    QTest::newRow("negative") << QSize(-4, -4);
}

void tst_DockLayers::AddsNoPaintedLayerWithoutALayerSize()
{
    QFETCH(QSize, size);
    const ProjectFixture project(size);
    const QSignalSpy added(m_docks->dock, &DockLayers::Added);
    LogSpy log;

    QTest::mouseClick(m_docks->Button("btnAddPainted"), Qt::LeftButton);

    QVERIFY(!m_docks->dock->HasLayers());
    QCOMPARE(added.size(), 0);
    QVERIFY(!m_docks->Button("btnHideAll")->isEnabled());
    QVERIFY(!m_docks->IsModified());
    QCOMPARE(log.Messages().size(), 1);
    QVERIFY(log.Messages().first().startsWith(QStringLiteral("Error: ")));
}

void tst_DockLayers::AddsACustomLayer()
{
    m_docks->AddLayer(QStringLiteral("a"));
    const QSignalSpy added(m_docks->dock, &DockLayers::Added);
    ModalAnswers answers;
    answers.Add(ClickWhenIdle("btnOk", QStringLiteral("computed")));

    QTest::mouseClick(m_docks->Button("btnAddCustom"), Qt::LeftButton);

    QCOMPARE(answers.Asked(), QStringList{QStringLiteral("Add layer")});
    QCOMPARE(m_docks->Order(), QStringLiteral("a computed"));
    QCOMPARE(added.size(), 1);
    QCOMPARE(added.first().first().value<Layer*>(), m_docks->LayerAt(1));
    QVERIFY(!m_docks->LayerAt(1)->Code().isEmpty());
    QVERIFY(m_docks->Button("btnHideAll")->isEnabled());
    QVERIFY(m_docks->IsModified());
}

void tst_DockLayers::AddsNothingWhenTheDialogIsCancelled()
{
    m_docks->AddLayer(QStringLiteral("a"));
    const QSignalSpy added(m_docks->dock, &DockLayers::Added);
    ModalAnswers answers;
    answers.Add(ClickWhenIdle("btnCancel"));

    QTest::mouseClick(m_docks->Button("btnAddCustom"), Qt::LeftButton);

    QCOMPARE(m_docks->Order(), QStringLiteral("a"));
    QCOMPARE(added.size(), 0);
    QVERIFY(!m_docks->IsModified());
}

void tst_DockLayers::AddsNothingToAnEmptyListWithTheDialog()
{
    const QSignalSpy added(m_docks->dock, &DockLayers::Added);
    ModalAnswers answers;
    answers.Add(ClickWhenIdle("btnOk"));

    QTest::mouseClick(m_docks->Button("btnAddCustom"), Qt::LeftButton);

    QVERIFY(!m_docks->dock->HasLayers());
    QCOMPARE(added.size(), 0);
    QVERIFY(!m_docks->Button("btnHideAll")->isEnabled());
    QVERIFY(!m_docks->IsModified());
}

void tst_DockLayers::SelectsWithMouseAndKeyboard()
{
    m_docks->AddLayer(QStringLiteral("a"));
    m_docks->AddLayer(QStringLiteral("b"));
    QVERIFY(!m_docks->props->isEnabled());

    m_docks->Click(0);
    QTest::keyClick(m_docks->Tree(), Qt::Key_Down);
    // The layer is already current.
    m_docks->Click(1);

    QCOMPARE(m_docks->selected, (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    QVERIFY(m_docks->props->isEnabled());
    QVERIFY(!m_docks->IsModified());

    m_docks->Tree()->setCurrentIndex(QModelIndex());

    QVERIFY(!m_docks->props->isEnabled());
    QCOMPARE(m_docks->selected.size(), 2);
}

void tst_DockLayers::SelectsByRowAndItem()
{
    Layer* first = m_docks->AddLayer(QStringLiteral("a"));
    Layer* second = m_docks->AddLayer(QStringLiteral("b"));

    QCOMPARE(m_docks->dock->SelectRow(1), second);
    QCOMPARE(m_docks->Tree()->currentIndex(), second->index());
    QCOMPARE(m_docks->dock->SelectRow(2), nullptr);
    QCOMPARE(m_docks->dock->SelectRow(-1), nullptr);
    QCOMPARE(m_docks->Tree()->currentIndex(), second->index());

    m_docks->dock->SelectItem(first);
    QCOMPARE(m_docks->Tree()->currentIndex(), first->index());
    m_docks->dock->SelectItem(nullptr);
    QCOMPARE(m_docks->Tree()->currentIndex(), first->index());
    QCOMPARE(m_docks->selected, (QStringList{QStringLiteral("b"), QStringLiteral("a")}));
}

void tst_DockLayers::SelectsNothingByItself()
{
    m_docks->AddLayer(QStringLiteral("a"));
    m_docks->AddLayer(QStringLiteral("b"));
    m_docks->Button("btnHideAll")->setFocus();

    QTest::keyClick(m_docks->Button("btnHideAll"), Qt::Key_Tab);

    QCOMPARE(QApplication::focusWidget(), m_docks->Tree());
    QVERIFY(!m_docks->Tree()->currentIndex().isValid());
    QVERIFY(m_docks->selected.isEmpty());

    QTest::keyClick(m_docks->Tree(), Qt::Key_Down);

    QCOMPARE(m_docks->selected, QStringList{QStringLiteral("a")});
    QVERIFY(m_docks->Tree()->selectionModel()->isSelected(m_docks->LayerAt(0)->index()));

    m_docks->document.Clear();
    m_docks->AddLayer(QStringLiteral("c"));
    m_docks->Button("btnHideAll")->setFocus();
    QTest::keyClick(m_docks->Button("btnHideAll"), Qt::Key_Tab);

    QCOMPARE(m_docks->selected.size(), 1);
}

void tst_DockLayers::ReportsWhatTheUserChecks()
{
    Layer* layer = m_docks->AddLayer(QStringLiteral("a"));
    const QSignalSpy checked(m_docks->dock, &DockLayers::Checked);

    m_docks->ClickBox(0);

    QCOMPARE(checked.size(), 1);
    QCOMPARE(checked.first().first().value<Layer*>(), layer);
    QVERIFY(layer->IsVisible());
    // A click on the box shows a layer and does not select it.
    QVERIFY(m_docks->selected.isEmpty());

    m_docks->Click(0);
    QTest::keyClick(m_docks->Tree(), Qt::Key_Space);

    QCOMPARE(checked.size(), 2);
    QVERIFY(!layer->IsVisible());

    layer->SetVisible(true);

    QCOMPARE(checked.size(), 2);
}

void tst_DockLayers::HidesAll()
{
    for (const char* name : {"a", "b", "c"}) {
        m_docks->AddLayer(QLatin1String(name))->SetVisible(true);
    }
    m_docks->Click(1);
    const QSignalSpy checked(m_docks->dock, &DockLayers::Checked);
    QStringList whenHidden;
    connect(m_docks->dock, &DockLayers::AllHidden, this, [&] {
        const QVector<Layer*> layers = m_docks->List()->Layers();
        for (const Layer* layer : layers) {
            whenHidden.append(layer->IsVisible() ? QStringLiteral("shown")
                                                 : QStringLiteral("hidden"));
        }
    });

    QTest::mouseClick(m_docks->Button("btnHideAll"), Qt::LeftButton);

    const QString hidden = QStringLiteral("hidden");
    QCOMPARE(whenHidden, (QStringList{hidden, hidden, hidden}));
    QCOMPARE(m_docks->LayerAt(2)->checkState(), Qt::Unchecked);
    QVERIFY(!m_docks->Tree()->currentIndex().isValid());
    QVERIFY(!m_docks->Tree()->selectionModel()->hasSelection());
    QVERIFY(!m_docks->props->isEnabled());
    QCOMPARE(checked.size(), 0);
    QVERIFY(m_docks->Button("btnHideAll")->isEnabled());
    QVERIFY(m_docks->IsModified());
}

void tst_DockLayers::FiltersRows()
{
    for (const char* name : {"Lake", "Shore of the lake", "Forest"}) {
        m_docks->AddLayer(QLatin1String(name));
    }
    m_docks->Click(2);
    auto* field = m_docks->dock->findChild<QLineEdit*>(QStringLiteral("txtLayerFilter"));
    // The Tab key passes it by.
    QCOMPARE(field->focusPolicy(), Qt::ClickFocus);
    QTest::mouseClick(field, Qt::LeftButton);
    QTest::keyClicks(field, QStringLiteral("LAKE"));
    QCOMPARE(m_docks->ShownRows(), QStringLiteral("Lake, Shore of the lake"));
    // What is hidden stays what it is.
    QCOMPARE(m_docks->Tree()->currentIndex(), m_docks->LayerAt(2)->index());
    QCOMPARE(m_docks->selected, QStringList{QStringLiteral("Forest")});
    QVERIFY(!m_docks->IsModified());
    QTest::keyClicks(field, QStringLiteral("s"));
    QCOMPARE(m_docks->ShownRows(), QString());
    QTest::keyClick(field, Qt::Key_Escape);
    QCOMPARE(field->text(), QString());
    QCOMPARE(m_docks->ShownRows(), QStringLiteral("Lake, Shore of the lake, Forest"));
    QCOMPARE(QApplication::focusWidget(), m_docks->Tree());
    QCOMPARE(m_docks->Tree()->model(), m_docks->List()->model());
}

void tst_DockLayers::TheFilterKeepsTheCurrentRowInView()
{
    constexpr int count = 60;
    for (int i = 0; i < count; ++i) {
        m_docks->AddLayer(QStringLiteral("layer %1").arg(i));
    }
    const auto* tree = m_docks->Tree();
    const auto isCurrentInView = [tree] {
        return tree->viewport()->rect().contains(tree->visualRect(tree->currentIndex()));
    };
    auto* field = m_docks->dock->findChild<QLineEdit*>(QStringLiteral("txtLayerFilter"));
    QTest::mouseClick(field, Qt::LeftButton);
    QTest::keyClicks(field, QStringLiteral("57"));
    m_docks->Click(57);
    QTest::mouseClick(field, Qt::LeftButton);
    QTest::keyClick(field, Qt::Key_Backspace);
    QVERIFY(isCurrentInView());
    QTest::keyClick(field, Qt::Key_Escape);
    QCOMPARE(m_docks->Order().count(QStringLiteral("layer")), count);
    QVERIFY(isCurrentInView());
}

void tst_DockLayers::NewRowsObeyTheFilter()
{
    m_docks->AddLayer(QStringLiteral("Lake"));
    auto* field = m_docks->dock->findChild<QLineEdit*>(QStringLiteral("txtLayerFilter"));
    field->setText(QStringLiteral("lake"));
    m_docks->AddLayer(QStringLiteral("Forest"));
    Layer* north = m_docks->AddLayer(QStringLiteral("north lake"));
    QCOMPARE(m_docks->ShownRows(), QStringLiteral("Lake, north lake"));
    north->setText(QStringLiteral("north"));
    QCOMPARE(m_docks->ShownRows(), QStringLiteral("Lake"));
    // Rows that are moved, too.
    m_docks->List()->MoveLayer(*north, 0);
    QCOMPARE(m_docks->ShownRows(), QStringLiteral("Lake"));
    // Another project begins with all of its rows.
    m_docks->document.Clear();
    QCOMPARE(field->text(), QString());
}

void tst_DockLayers::ANewLayerEndsAFilterThatHidesIt()
{
    Layer* lake = m_docks->AddLayer(QStringLiteral("Lake"));
    Layer* forest = m_docks->AddLayer(QStringLiteral("Forest"));
    auto* field = m_docks->dock->findChild<QLineEdit*>(QStringLiteral("txtLayerFilter"));
    ModalAnswers answers;
    const auto addComputed = [&](const char* name) {
        answers.Add(ClickWhenIdle("btnOk", QLatin1String(name)));
        QTest::mouseClick(m_docks->Button("btnAddCustom"), Qt::LeftButton);
    };

    QTest::keyClicks(field, QStringLiteral("lake"));
    QTest::mouseClick(m_docks->Button("btnAddPainted"), Qt::LeftButton);
    QCOMPARE(field->text(), QString());
    QCOMPARE(m_docks->ShownRows().count(QLatin1Char(',')), 2);

    QTest::keyClicks(field, QStringLiteral("lake"));
    addComputed("Shore");
    QCOMPARE(field->text(), QString());

    QTest::keyClicks(field, QStringLiteral("lake"));
    m_docks->dock->ShowNew(*forest);
    QCOMPARE(field->text(), QString());

    // One that the filter shows leaves it.
    QTest::keyClicks(field, QStringLiteral("lake"));
    addComputed("Shore of the lake");
    m_docks->dock->ShowNew(*lake);
    QCOMPARE(field->text(), QStringLiteral("lake"));
    QCOMPARE(m_docks->ShownRows(), QStringLiteral("Lake, Shore of the lake"));
}

void tst_DockLayers::DragsFilteredRows()
{
    for (const char* name : {"x1", "a", "x2", "b", "x3"}) {
        m_docks->AddLayer(QLatin1String(name));
    }
    auto* field = m_docks->dock->findChild<QLineEdit*>(QStringLiteral("txtLayerFilter"));
    field->setText(QStringLiteral("x"));
    QCOMPARE(m_docks->ShownRows(), QStringLiteral("x1, x2, x3"));
    DragRow(*m_docks->Tree(), 0, 2);
    QCOMPARE(m_docks->ShownRows(), QStringLiteral("x2, x1, x3"));
    QCOMPARE(m_docks->Order(), QStringLiteral("a x2 x1 b x3"));
    DragRow(*m_docks->Tree(), 4, 1);
    QCOMPARE(m_docks->ShownRows(), QStringLiteral("x3, x2, x1"));
    QCOMPARE(m_docks->Order(), QStringLiteral("a x3 x2 x1 b"));
    // Keys go past the next row that is shown.
    m_docks->document.SetCurrentLayer(m_docks->LayerAt(3));
    m_docks->dock->MoveCurrent(false);
    QCOMPARE(m_docks->Order(), QStringLiteral("a x3 x2 x1 b"));
    m_docks->dock->MoveCurrent(true);
    m_docks->dock->MoveCurrent(true);
    QCOMPARE(m_docks->Order(), QStringLiteral("a x1 x3 x2 b"));
    m_docks->dock->MoveCurrent(true);
    QCOMPARE(m_docks->Order(), QStringLiteral("a x1 x3 x2 b"));
}

void tst_DockLayers::WritesAndReads()
{
    m_docks->AddLayer(QStringLiteral("a"), QColor(1, 2, 3, 4))->SetVisible(true);
    m_docks->AddLayer(QStringLiteral("b"));
    QByteArray text;
    QXmlStreamWriter writer(&text);
    QCOMPARE(m_docks->List()->WriteXml(writer), 0);
    m_docks->document.Clear();

    QXmlStreamReader reader(text);
    QVERIFY(reader.readNextStartElement());
    QVERIFY(m_docks->List()->ReadXml(reader));

    QCOMPARE(m_docks->Order(), QStringLiteral("a b"));
    QCOMPARE(m_docks->LayerAt(0)->Color(), QColor(1, 2, 3, 4));
    QVERIFY(m_docks->LayerAt(0)->IsVisible());
    QVERIFY(m_docks->Button("btnHideAll")->isEnabled());
    m_docks->Click(1);
    QVERIFY(m_docks->props->isEnabled());
}

void tst_DockLayers::SavesTheMap()
{
    m_docks->AddLayer(QStringLiteral("a"));
    LogSpy log;

    QVERIFY(m_docks->dock->SaveMap(m_docks->project.Path(QStringLiteral("area.map"))));

    QVERIFY(QFile::exists(m_docks->project.Path(QStringLiteral("area.map"))));
    QVERIFY(log.Messages().filter(QStringLiteral("Error")).isEmpty());
}

void tst_DockLayers::ReportsAMapThatCannotBeSaved()
{
    m_docks->AddLayer(QStringLiteral("a"));
    const QString path = m_docks->project.Path(QStringLiteral("no folder/area.map"));
    LogSpy log;

    QVERIFY(!m_docks->dock->SaveMap(path));

    QCOMPARE(log.Messages().last(),
             QStringLiteral("Error: Failed to save binary map to file '%1'.").arg(path));
    QCOMPARE(m_docks->Order(), QStringLiteral("a"));
}

QTEST_MAIN(tst_DockLayers)
#include "tst_DockLayers.moc"
