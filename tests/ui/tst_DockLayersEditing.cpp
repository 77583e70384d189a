#include "ui/DockLayers.h"

#include "tests/support/Drags.h"
#include "tests/support/LayerDocksFixture.h"

#include <QAction>
#include <QCheckBox>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

class tst_DockLayersEditing : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_docks = std::make_unique<LayerDocksFixture>(); }
    void cleanup() { m_docks.reset(); }
    void OpensItsMenuOnLayersOnly();
    void ModifiesTheLayer();
    void ReportsAModificationThatWasCancelled();
    void AModificationThatFailedChangesNothing();
    void RenamesWithF2();
    void DropsInvalidNames_data();
    void DropsInvalidNames();
    void RenamesNothingWithoutALayer();
    void RemovesTheLayer_data();
    void RemovesTheLayer();
    void RemovesTheLastLayer();
    void DoesNothingWithoutALayer();
    void ReordersByDragging();
    void EnablesHideAllWhileThereIsALayer();
    void ClearsWhileALayerIsSelected();
    void DiesBeforeAndAfterTheOtherDock_data();
    void DiesBeforeAndAfterTheOtherDock();

private:
    std::unique_ptr<LayerDocksFixture> m_docks;
};

void tst_DockLayersEditing::OpensItsMenuOnLayersOnly()
{
    m_docks->AddLayer(QStringLiteral("a"));
    m_docks->AddLayer(QStringLiteral("b"));
    const QPoint below(m_docks->RectOf(1).center().x(), m_docks->Tree()->viewport()->height() - 5);
    QVERIFY(!m_docks->Tree()->indexAt(below).isValid());

    QVERIFY(m_docks->UseMenu(below, "actionRemove").isEmpty());
    QCOMPARE(m_docks->Order(), QStringLiteral("a b"));

    QCOMPARE(m_docks->UseMenu(m_docks->RectOf(1).center(), "actionRemove"),
             (QStringList{QStringLiteral("Modify"), QStringLiteral("Remove")}));
    // The click has made the layer current.
    QCOMPARE(m_docks->Order(), QStringLiteral("a"));
}

void tst_DockLayersEditing::ModifiesTheLayer()
{
    Layer* layer = m_docks->AddLayer(QStringLiteral("a"));
    const QSignalSpy modified(m_docks->dock, &DockLayers::Modified);
    ModalAnswers answers;
    answers.Add(ClickWhenIdle("btnOk", QStringLiteral("inverse")));

    m_docks->UseMenu(m_docks->RectOf(0).center(), "actionModify");

    QCOMPARE(answers.Asked(), QStringList{QStringLiteral("Modify layer - a")});
    QCOMPARE(modified.size(), 1);
    QCOMPARE(modified.first().first().value<Layer*>(), layer);
    QCOMPARE(m_docks->Order(), QStringLiteral("inverse"));
    QTRY_VERIFY(!layer->Code().isEmpty());
    QVERIFY(m_docks->IsModified());
}

void tst_DockLayersEditing::ReportsAModificationThatWasCancelled()
{
    m_docks->AddLayer(QStringLiteral("a"));
    const QSignalSpy modified(m_docks->dock, &DockLayers::Modified);
    ModalAnswers answers;
    answers.Add(ClickWhenIdle("btnCancel"));

    m_docks->UseMenu(m_docks->RectOf(0).center(), "actionModify");

    QCOMPARE(modified.size(), 1);
    QCOMPARE(m_docks->Order(), QStringLiteral("a"));
    QVERIFY(m_docks->LayerAt(0)->Code().isEmpty());
    QVERIFY(!m_docks->IsModified());
}

void tst_DockLayersEditing::AModificationThatFailedChangesNothing()
{
    const Layer* layer = m_docks->AddLayer(QStringLiteral("a"));
    const QImage mask = layer->Image();
    const QSignalSpy modified(m_docks->dock, &DockLayers::Modified);
    ProjectSettings& settings = ProjectSettings::Instance();
    settings.SetSizesOnly(0, settings.LayerHeight(), settings.WorldWidth(), settings.WorldHeight());
    ModalAnswers answers;
    answers.Add(ClickWhenIdle("btnOk", QStringLiteral("inverse")));

    m_docks->UseMenu(m_docks->RectOf(0).center(), "actionModify");

    QCOMPARE(modified.size(), 1);
    QCOMPARE(m_docks->Order(), QStringLiteral("a"));
    QCOMPARE(layer->Image(), mask);
    QVERIFY(!m_docks->IsModified());
}

void tst_DockLayersEditing::RenamesWithF2()
{
    m_docks->AddLayer(QStringLiteral("a"));
    m_docks->Click(0);

    m_docks->Rename(QStringLiteral("North hills 2"));

    QCOMPARE(m_docks->Order(), QStringLiteral("North hills 2"));
    QVERIFY(m_docks->IsModified());
}

void tst_DockLayersEditing::DropsInvalidNames_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("slash") << QStringLiteral("a/b");
    QTest::newRow("blanks") << QStringLiteral("  ");
    QTest::newRow("the same") << QStringLiteral("a");
}

void tst_DockLayersEditing::DropsInvalidNames()
{
    QFETCH(QString, name);
    m_docks->AddLayer(QStringLiteral("a"));
    m_docks->Click(0);

    m_docks->Rename(name);

    QCOMPARE(m_docks->Order(), QStringLiteral("a"));
    QVERIFY(!m_docks->IsModified());
}

void tst_DockLayersEditing::RenamesNothingWithoutALayer()
{
    m_docks->AddLayer(QStringLiteral("a"));
    QVERIFY(!m_docks->Tree()->currentIndex().isValid());

    m_docks->Action("actionRename")->trigger();

    QVERIFY(!m_docks->Tree()->viewport()->findChild<QLineEdit*>());
}

void tst_DockLayersEditing::RemovesTheLayer_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("next");

    QTest::newRow("first") << 0 << QStringLiteral("b c") << QStringLiteral("b");
    QTest::newRow("middle") << 1 << QStringLiteral("a c") << QStringLiteral("c");
    QTest::newRow("last") << 2 << QStringLiteral("a b") << QStringLiteral("b");
}

void tst_DockLayersEditing::RemovesTheLayer()
{
    QFETCH(int, row);
    QFETCH(QString, order);
    QFETCH(QString, next);
    AreaFlagTypes types;
    types.usages = {QStringLiteral("usage")};
    ProjectSettings::Instance().SetFlagTypes(types);
    m_docks->props->Refresh();
    for (const char* name : {"a", "b", "c"}) {
        m_docks->AddLayer(QLatin1String(name));
    }
    m_docks->Click(row);
    const int id = m_docks->LayerAt(row)->Id();
    m_docks->selected.clear();
    QList<int> removed;
    bool isGone = false;
    connect(m_docks->dock, &DockLayers::Removed, this, [&](int removedId) {
        removed.append(removedId);
        isGone = !m_docks->List()->LayerById(removedId);
    });

    m_docks->UseMenu(m_docks->RectOf(row).center(), "actionRemove");

    QCOMPARE(removed, QList<int>{id});
    QVERIFY(isGone);
    QCOMPARE(m_docks->Order(), order);
    // The neighbour is selected, and the other dock edits it.
    QCOMPARE(m_docks->selected, QStringList{next});
    QCOMPARE(m_docks->Tree()->currentIndex().data().toString(), next);
    QVERIFY(m_docks->Button("btnHideAll")->isEnabled());
    QVERIFY(m_docks->IsModified());
    auto* box = m_docks->props->findChild<QCheckBox*>();
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    QCOMPARE(m_docks->List()->LayerByName(next)->UsageFlags(), 1U);
}

void tst_DockLayersEditing::RemovesTheLastLayer()
{
    m_docks->AddLayer(QStringLiteral("a"));
    m_docks->Click(0);
    m_docks->selected.clear();
    const QSignalSpy removed(m_docks->dock, &DockLayers::Removed);
    bool isDisabled = false;
    connect(m_docks->dock, &DockLayers::Removed, this, [&] {
        isDisabled = !m_docks->Button("btnHideAll")->isEnabled() && !m_docks->props->isEnabled();
    });

    m_docks->UseMenu(m_docks->RectOf(0).center(), "actionRemove");

    QCOMPARE(removed.size(), 1);
    QVERIFY(isDisabled);
    QVERIFY(m_docks->selected.isEmpty());
    QVERIFY(!m_docks->dock->HasLayers());
}

void tst_DockLayersEditing::DoesNothingWithoutALayer()
{
    m_docks->AddLayer(QStringLiteral("a"));
    const QSignalSpy modified(m_docks->dock, &DockLayers::Modified);
    const QSignalSpy removed(m_docks->dock, &DockLayers::Removed);

    m_docks->Action("actionModify")->trigger();
    m_docks->Action("actionRemove")->trigger();

    QCOMPARE(modified.size(), 0);
    QCOMPARE(removed.size(), 0);
    QCOMPARE(m_docks->Order(), QStringLiteral("a"));
    QVERIFY(!m_docks->IsModified());
}

void tst_DockLayersEditing::ReordersByDragging()
{
    for (const char* name : {"a", "b", "c"}) {
        m_docks->AddLayer(QLatin1String(name), QColor(0, 0, 0, 50));
    }
    QStringList events;
    connect(m_docks->dock, &DockLayers::Selected, this, [&](const Layer* layer) {
        events.append(QStringLiteral("selected ") + layer->text());
    });
    connect(m_docks->dock, &DockLayers::Reordered, this, [&] { events.append(m_docks->Order()); });

    DragRow(*m_docks->Tree(), 0, 2);

    // The first signal comes from the click that begins the drag. No neighbour is selected.
    QCOMPARE(events, (QStringList{QStringLiteral("selected a"), QStringLiteral("selected a"),
                                  QStringLiteral("b c a")}));
    QCOMPARE(m_docks->Tree()->currentIndex(), m_docks->LayerAt(2)->index());
    QCOMPARE(m_docks->Tree()->selectionModel()->selectedRows(),
             QModelIndexList{m_docks->LayerAt(2)->index()});
    QVERIFY(m_docks->props->isEnabled());
    QVERIFY(m_docks->Button("btnHideAll")->isEnabled());
    QVERIFY(m_docks->IsModified());
}

void tst_DockLayersEditing::EnablesHideAllWhileThereIsALayer()
{
    const QPushButton* hideAll = m_docks->Button("btnHideAll");
    QVERIFY(!hideAll->isEnabled());
    const int first = m_docks->AddLayer(QStringLiteral("a"))->Id();
    QVERIFY(hideAll->isEnabled());
    const int second = m_docks->AddLayer(QStringLiteral("b"))->Id();
    m_docks->List()->RemoveLayer(first);
    QVERIFY(hideAll->isEnabled());
    m_docks->List()->RemoveLayer(second);
    QVERIFY(!hideAll->isEnabled());
    m_docks->AddLayer(QStringLiteral("c"));
    QVERIFY(hideAll->isEnabled());
    m_docks->document.Clear();
    QVERIFY(!hideAll->isEnabled());
    m_docks->dock->UpdateHideAll();
    QVERIFY(!hideAll->isEnabled());
}

void tst_DockLayersEditing::ClearsWhileALayerIsSelected()
{
    for (const char* name : {"a", "b", "c"}) {
        m_docks->AddLayer(QLatin1String(name));
    }
    m_docks->Click(1);
    m_docks->selected.clear();

    m_docks->document.Clear();

    QVERIFY(m_docks->selected.isEmpty());
    QVERIFY(!m_docks->props->isEnabled());
    QVERIFY(!m_docks->dock->HasLayers());

    m_docks->AddLayer(QStringLiteral("d"));
    m_docks->Click(0);
    QCOMPARE(m_docks->selected, QStringList{QStringLiteral("d")});

    m_docks->List()->Clear();

    QVERIFY(!m_docks->props->isEnabled());
}

void tst_DockLayersEditing::DiesBeforeAndAfterTheOtherDock_data()
{
    QTest::addColumn<bool>("isFirst");
    QTest::addColumn<bool>("isEdited");

    QTest::newRow("before") << true << false;
    QTest::newRow("after") << false << false;
    QTest::newRow("before, with a name being edited") << true << true;
    QTest::newRow("after, with a name being edited") << false << true;
}

void tst_DockLayersEditing::DiesBeforeAndAfterTheOtherDock()
{
    QFETCH(bool, isFirst);
    QFETCH(bool, isEdited);
    m_docks->AddLayer(QStringLiteral("a"));
    m_docks->AddLayer(QStringLiteral("b"));
    m_docks->Click(0);
    if (isEdited) {
        m_docks->Action("actionRename")->trigger();
        QVERIFY(m_docks->Tree()->viewport()->findChild<QLineEdit*>());
    }
    m_docks->selected.clear();
    m_docks->tester.reset();

    delete (isFirst ? static_cast<QDockWidget*>(m_docks->dock) : m_docks->props);
    if (isFirst) {
        QTest::keyClick(m_docks->props->findChild<QWidget*>(QStringLiteral("slider")),
                        Qt::Key_Home);
        delete m_docks->props;
    } else {
        delete m_docks->dock;
    }
    QCoreApplication::processEvents();

    QVERIFY(m_docks->selected.isEmpty());
}

QTEST_MAIN(tst_DockLayersEditing)
#include "tst_DockLayersEditing.moc"
