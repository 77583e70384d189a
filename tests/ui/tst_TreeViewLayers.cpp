#include "ui/TreeViewLayers.h"

#include "layers/CustomLayerWorker.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/Drags.h"
#include "tests/support/Models.h"
#include "tests/support/PaintCounter.h"

#include <QAbstractItemModelTester>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

#include <memory>

class tst_TreeViewLayers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void MovesALayerToTheRowItIsDroppedOn_data();
    void MovesALayerToTheRowItIsDroppedOn();
    void MovesTheLayerItself();
    void MovesALayerThatTheMouseDrags();
    void LeavesTheEventUnaccepted();
    void IgnoresADropBelowTheLastRow();
    void IgnoresADropOnTheRowItself();
    void IgnoresADropWhileNothingIsSelected();
    void IgnoresADropOfARowThatIsNoLayer();
    void IgnoresADropWithoutAList();
    void DropsOnARowThatIsScrolledTo();
    void AMarkLeavesTheNameBeingTypedAlone();

private:
    Layer* AddLayer(const QString& name);
    Layer* LayerAt(int row) const { return m_list->LayerAt(row); }
    QString Order() const { return RowTexts(*m_list->model()).join(QLatin1Char(' ')); }

    std::unique_ptr<LayerList> m_list;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    std::unique_ptr<TreeViewLayers> m_view;
};

void tst_TreeViewLayers::initTestCase()
{
    qRegisterMetaType<Layer*>("Layer*");
}

void tst_TreeViewLayers::init()
{
    m_list = std::make_unique<LayerList>();
    m_tester = std::make_unique<QAbstractItemModelTester>(
        m_list->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    m_view = std::make_unique<TreeViewLayers>();
    m_view->setHeaderHidden(true);
    m_view->setDragDropMode(QAbstractItemView::InternalMove);
    m_view->SetList(m_list.get());
    connect(m_view.get(), &TreeViewLayers::Moved, m_list.get(),
            [this](Layer* layer, int row) { m_list->MoveLayer(*layer, row); });
    m_view->resize(200, 300);
    m_view->show();
    for (const char* name : {"a", "b", "c", "d"}) {
        AddLayer(QLatin1String(name));
    }
    QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
}

void tst_TreeViewLayers::cleanup()
{
    m_view.reset();
    m_tester.reset();
    m_list.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

Layer* tst_TreeViewLayers::AddLayer(const QString& name)
{
    auto layer = std::make_unique<Layer>(0, 0, m_list.get(), name);
    layer->SetImage(QImage(4, 4, QImage::Format_Indexed8), Qt::white);
    Layer* added = layer.get();
    return m_list->AddLayer(std::move(layer)) ? added : nullptr;
}

void tst_TreeViewLayers::MovesALayerToTheRowItIsDroppedOn_data()
{
    QTest::addColumn<int>("source");
    QTest::addColumn<int>("target");
    QTest::addColumn<QString>("order");

    QTest::newRow("one down") << 0 << 1 << QStringLiteral("b a c d");
    QTest::newRow("two down") << 0 << 2 << QStringLiteral("b c a d");
    QTest::newRow("first to last") << 0 << 3 << QStringLiteral("b c d a");
    QTest::newRow("one up") << 2 << 1 << QStringLiteral("a c b d");
    QTest::newRow("last to first") << 3 << 0 << QStringLiteral("d a b c");
}

void tst_TreeViewLayers::MovesALayerToTheRowItIsDroppedOn()
{
    QFETCH(int, source);
    QFETCH(int, target);
    QFETCH(QString, order);
    const QSignalSpy moved(m_view.get(), &TreeViewLayers::Moved);

    DragRow(*m_view, source, target);

    QCOMPARE(Order(), order);
    QCOMPARE(moved.size(), 1);
    QCOMPARE(moved.first().first().value<Layer*>(), LayerAt(target));
    QCOMPARE(moved.first().last().toInt(), target);
}

void tst_TreeViewLayers::MovesALayerThatTheMouseDrags()
{
    if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
        QTest::qSkip("Nothing is dragged without a window system.", __FILE__, __LINE__);
        return;
    }
    Layer* layer = LayerAt(0);
    QApplication::setActiveWindow(m_view.get());

    DragRowByMouse(*m_view, 0, 2);

    QCOMPARE(Order(), QStringLiteral("b c a d"));
    QCOMPARE(LayerAt(2), layer);
    DragRowByMouse(*m_view, 3, 1);
    QCOMPARE(Order(), QStringLiteral("b d c a"));
}

void tst_TreeViewLayers::MovesTheLayerItself()
{
    Layer* layer = LayerAt(0);
    layer->SetVisible(true);
    layer->SetUsageFlags(5);
    layer->SetColor(Qt::red);
    const QSignalSpy toggled(m_list.get(), &LayerList::ItemChanged);

    DragRow(*m_view, 0, 2);

    QCOMPARE(LayerAt(2), layer);
    QCOMPARE(m_list->LayerById(layer->Id()), layer);
    QVERIFY(layer->IsVisible());
    QCOMPARE(layer->checkState(), Qt::Checked);
    QCOMPARE(layer->UsageFlags(), 5U);
    QCOMPARE(layer->Color(), QColor(Qt::red));
    QCOMPARE(layer->Image().size(), QSize(4, 4));
    QCOMPARE(toggled.size(), 0);
}

void tst_TreeViewLayers::LeavesTheEventUnaccepted()
{
    QVERIFY(!DragRow(*m_view, 0, 2));
    QVERIFY(!DragRow(*m_view, 1, 1));
    QVERIFY(!DropAt(*m_view, {10, 290}));
    QCOMPARE(m_list->model()->rowCount(), 4);
}

void tst_TreeViewLayers::IgnoresADropBelowTheLastRow()
{
    const QSignalSpy moved(m_view.get(), &TreeViewLayers::Moved);
    m_view->setCurrentIndex(LayerAt(0)->index());
    QVERIFY(!m_view->indexAt({10, 290}).isValid());

    DropAt(*m_view, {10, 290});

    QCOMPARE(Order(), QStringLiteral("a b c d"));
    QCOMPARE(m_view->currentIndex(), LayerAt(0)->index());
    QCOMPARE(moved.size(), 0);
}

void tst_TreeViewLayers::IgnoresADropOnTheRowItself()
{
    const QSignalSpy moved(m_view.get(), &TreeViewLayers::Moved);

    DragRow(*m_view, 2, 2);

    QCOMPARE(Order(), QStringLiteral("a b c d"));
    QCOMPARE(moved.size(), 0);
}

void tst_TreeViewLayers::IgnoresADropWhileNothingIsSelected()
{
    const QSignalSpy moved(m_view.get(), &TreeViewLayers::Moved);
    m_view->selectionModel()->clear();

    DropAt(*m_view, m_view->visualRect(LayerAt(2)->index()).center());

    QCOMPARE(Order(), QStringLiteral("a b c d"));
    QCOMPARE(moved.size(), 0);
}

void tst_TreeViewLayers::IgnoresADropOfARowThatIsNoLayer()
{
    const QSignalSpy moved(m_view.get(), &TreeViewLayers::Moved);
    m_list->model()->insertRow(0, new QStandardItem(QStringLiteral("x")));
    m_list->model()->item(0)->setData(-5, Qt::UserRole);

    DragRow(*m_view, 0, 2);

    QCOMPARE(Order(), QStringLiteral("x a b c d"));
    QCOMPARE(moved.size(), 0);
}

void tst_TreeViewLayers::IgnoresADropWithoutAList()
{
    TreeViewLayers view;
    view.setModel(m_list->model());
    view.show();
    const QSignalSpy moved(&view, &TreeViewLayers::Moved);

    DragRow(view, 0, 2);

    QCOMPARE(Order(), QStringLiteral("a b c d"));
    QCOMPARE(moved.size(), 0);
}

void tst_TreeViewLayers::DropsOnARowThatIsScrolledTo()
{
    for (int i = 0; i < 100; ++i) {
        AddLayer(QString::number(i));
    }
    m_view->setCurrentIndex(LayerAt(0)->index());
    m_view->scrollTo(LayerAt(90)->index());
    const QPoint position = m_view->visualRect(LayerAt(90)->index()).center();
    QVERIFY(m_view->viewport()->rect().contains(position));
    Layer* layer = LayerAt(0);

    DropAt(*m_view, position);

    QCOMPARE(layer->row(), 90);
}

void tst_TreeViewLayers::AMarkLeavesTheNameBeingTypedAlone()
{
    m_view->edit(LayerAt(1)->index());
    auto* editor = m_view->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("Lake"));
    QCOMPARE(editor->text(), QStringLiteral("Lake"));
    QCoreApplication::processEvents();
    const PaintCounter painted(m_view->viewport());

    m_list->RepaintMarks(LayerAt(1));
    m_list->RepaintMarks(nullptr);
    QCOMPARE(editor->text(), QStringLiteral("Lake"));
    QTRY_VERIFY(painted.Count() > 0);
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(Order(), QStringLiteral("a Lake c d"));
}

QTEST_MAIN(tst_TreeViewLayers)
#include "tst_TreeViewLayers.moc"
