#include "ui/DockLayerProps.h"

#include "app/ProjectSettings.h"
#include "document/Document.h"
#include "tests/support/Modals.h"
#include "tests/support/ProjectFixture.h"
#include "ui/widgets/GroupBoxColor.h"

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>
#include <QWheelEvent>

#include <memory>

namespace {

const QString UsageGroup = QStringLiteral("gboLayerUsageFlags");
const QString ValueGroup = QStringLiteral("gboLayerValueFlags");

QVector<QString> Names(const QString& kind, int count)
{
    QVector<QString> names;
    for (int i = 0; i < count; ++i) {
        names.append(QStringLiteral("%1 %2").arg(kind).arg(i));
    }
    return names;
}

} // namespace

class tst_DockLayerProps : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void StartsDisabled();
    void PlacesABoxForEachType();
    void GivesEachBoxItsBit();
    void BuildsBoxesBesideThoseThatAreThere();
    void RefreshesWithTheBoxesOfOtherTypes();
    void ShowsTheFlagsOfALayer_data();
    void ShowsTheFlagsOfALayer();
    void ShowsColorAndOpacityOfALayer();
    void WritesNothingBackWhileItShows();
    void AnnouncesColorAndOpacity();
    void ShowsNoLayer();
    void ClicksFlags();
    void ChecksFlagsWithTheKeyboard();
    void PicksAColor();
    void SlidesTheOpacity();
    void ForgetsALayerThatDied();
    void TakesTheWheelOnlyWithFocus();
    void TabsInTheOrderOfTheEye();
    void HoldsAllFlagsOnASmallScreen();

private:
    void SetTypes(int usages, int values);
    QList<QCheckBox*> Boxes(const QString& group) const;
    QList<int> Checked(const QString& group) const;
    QGridLayout* Grid(const QString& name) const;
    QSlider* Slider() const { return m_dock->findChild<QSlider*>(QStringLiteral("slider")); }
    QPushButton* Button() const
    {
        return m_dock->findChild<QPushButton*>(QStringLiteral("button"));
    }
    static bool IsModified() { return ProjectSettings::Instance().IsModified(); }
    std::unique_ptr<Layer> MakeLayer(const QColor& color, quint32 usages, quint32 values);

    std::unique_ptr<ProjectFixture> m_project;
    std::unique_ptr<Document> m_document;
    std::unique_ptr<QMainWindow> m_window;
    DockLayerProps* m_dock = nullptr;
};

void tst_DockLayerProps::init()
{
    m_project = std::make_unique<ProjectFixture>();
    m_document = std::make_unique<Document>();
    m_window = std::make_unique<QMainWindow>();
    // Another control of the window, before those of the dock in the tab order.
    m_window->setCentralWidget(new QLineEdit);
    m_dock = new DockLayerProps(*m_document, m_window.get());
    m_window->addDockWidget(Qt::LeftDockWidgetArea, m_dock);
    m_window->resize(600, 400);
    m_window->show();
    QApplication::setActiveWindow(m_window.get());
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void tst_DockLayerProps::cleanup()
{
    m_window.reset();
    m_document.reset();
    m_project.reset();
}

void tst_DockLayerProps::SetTypes(int usages, int values)
{
    AreaFlagTypes types = ProjectSettings::Instance().FlagTypes();
    types.usages = Names(QStringLiteral("usage"), usages);
    types.values = Names(QStringLiteral("value"), values);
    ProjectSettings::Instance().SetFlagTypes(types);
    m_dock->Refresh();
    // Lets the layout place the boxes.
    QCoreApplication::processEvents();
}

QList<QCheckBox*> tst_DockLayerProps::Boxes(const QString& group) const
{
    return m_dock->findChild<QWidget*>(group)->findChildren<QCheckBox*>();
}

QList<int> tst_DockLayerProps::Checked(const QString& group) const
{
    QList<int> checked;
    const QList<QCheckBox*> boxes = Boxes(group);
    for (int i = 0; i < boxes.size(); ++i) {
        if (boxes[i]->isChecked()) {
            checked.append(i);
        }
    }
    return checked;
}

QGridLayout* tst_DockLayerProps::Grid(const QString& name) const
{
    return m_dock->findChild<QGridLayout*>(name);
}

std::unique_ptr<Layer> tst_DockLayerProps::MakeLayer(const QColor& color, quint32 usages,
                                                     quint32 values)
{
    auto layer = std::make_unique<Layer>(usages, values, nullptr);
    layer->SetImage(ProjectSettings::Instance().BlankLayerImage(), color);
    return layer;
}

void tst_DockLayerProps::StartsDisabled()
{
    QVERIFY(!m_dock->isEnabled());
    QVERIFY(Boxes(UsageGroup).isEmpty());
    QVERIFY(Boxes(ValueGroup).isEmpty());
}

void tst_DockLayerProps::PlacesABoxForEachType()
{
    SetTypes(5, 2);

    const QList<QCheckBox*> usages = Boxes(UsageGroup);
    QCOMPARE(usages.size(), 5);
    const QGridLayout* grid = Grid(QStringLiteral("layoutAreaUsageFlags"));
    QCOMPARE(grid->count(), 5);
    const QList<QPoint> places = {{0, 0}, {0, 1}, {1, 0}, {1, 1}, {2, 0}};
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(usages[i]->text(), QStringLiteral("usage %1").arg(i));
        QCOMPARE(usages[i]->property("bit"), QVariant(1 << i));
        QVERIFY(usages[i]->isVisible());
        QCOMPARE(grid->itemAtPosition(places[i].x(), places[i].y())->widget(), usages[i]);
    }
    const QList<QCheckBox*> values = Boxes(ValueGroup);
    QCOMPARE(values.size(), 2);
    QCOMPARE(values[1]->text(), QStringLiteral("value 1"));
    QCOMPARE(values[1]->property("bit"), QVariant(2));
    QCOMPARE(Grid(QStringLiteral("layoutAreaValueFlags"))->itemAtPosition(0, 1)->widget(),
             values[1]);
}

void tst_DockLayerProps::GivesEachBoxItsBit()
{
    SetTypes(35, 35);

    for (const QString& group : {UsageGroup, ValueGroup}) {
        const QList<QCheckBox*> boxes = Boxes(group);
        QCOMPARE(boxes.size(), 35);
        for (int i = 0; i < boxes.size(); ++i) {
            const QVariant bit = boxes[i]->property("bit");
            QCOMPARE(bit.type(), QVariant::Int);
            QCOMPARE(static_cast<quint32>(bit.toInt()), 1U << (i % 32));
        }
    }
}

void tst_DockLayerProps::BuildsBoxesBesideThoseThatAreThere()
{
    SetTypes(2, 1);
    const QList<QCheckBox*> before = Boxes(UsageGroup);

    m_dock->BuildFlagBoxes();

    QCOMPARE(Boxes(UsageGroup).size(), 4);
    QCOMPARE(Boxes(UsageGroup).mid(0, 2), before);
    QCOMPARE(Boxes(UsageGroup).at(2)->property("bit"), QVariant(1));
    QCOMPARE(Boxes(ValueGroup).size(), 2);
}

void tst_DockLayerProps::RefreshesWithTheBoxesOfOtherTypes()
{
    const std::unique_ptr<Layer> layer = MakeLayer(Qt::red, 4, 2);
    SetTypes(2, 1);
    m_dock->SetLayer(layer.get(), false);
    QCOMPARE(Checked(UsageGroup), QList<int>());

    SetTypes(3, 2);

    QCOMPARE(Boxes(UsageGroup).size(), 3);
    QCOMPARE(Boxes(ValueGroup).size(), 2);
    QCOMPARE(Grid(QStringLiteral("layoutAreaUsageFlags"))->count(), 3);
    QCOMPARE(Checked(UsageGroup), QList<int>{2});
    QCOMPARE(Checked(ValueGroup), QList<int>{1});
    QVERIFY(m_dock->isEnabled());

    layer->SetUsageFlags(0);
    SetTypes(0, 0);

    QVERIFY(Boxes(UsageGroup).isEmpty());
    QVERIFY(Boxes(ValueGroup).isEmpty());
}

void tst_DockLayerProps::ShowsTheFlagsOfALayer_data()
{
    QTest::addColumn<quint32>("flags");
    QTest::addColumn<QList<int>>("checked");

    QTest::newRow("none") << 0U << QList<int>{};
    QTest::newRow("5") << 5U << QList<int>{0, 2};
    QTest::newRow("the highest") << 0x80000000U << QList<int>{31};
    QTest::newRow("bits without a box") << 0x80000002U << QList<int>{1, 31};
}

void tst_DockLayerProps::ShowsTheFlagsOfALayer()
{
    QFETCH(quint32, flags);
    QFETCH(QList<int>, checked);
    SetTypes(32, 32);
    const std::unique_ptr<Layer> usage = MakeLayer(Qt::red, flags, 0);
    const std::unique_ptr<Layer> value = MakeLayer(Qt::red, 0, flags);

    m_dock->SetLayer(usage.get(), false);

    QVERIFY(m_dock->isEnabled());
    QCOMPARE(Checked(UsageGroup), checked);
    QCOMPARE(Checked(ValueGroup), QList<int>());

    m_dock->SetLayer(value.get(), false);

    QCOMPARE(Checked(UsageGroup), QList<int>());
    QCOMPARE(Checked(ValueGroup), checked);
}

void tst_DockLayerProps::ShowsColorAndOpacityOfALayer()
{
    const std::unique_ptr<Layer> layer = MakeLayer(QColor(10, 20, 30, 64), 0, 0);

    m_dock->SetLayer(layer.get(), false);

    QCOMPARE(Slider()->value(), 64);
    QCOMPARE(m_dock->findChild<QLabel*>(QStringLiteral("label"))->text(),
             QStringLiteral("<strong>25%</strong>"));
    QCOMPARE(Button()->icon().pixmap(16).toImage().pixelColor(8, 8), QColor(10, 20, 30));
}

void tst_DockLayerProps::WritesNothingBackWhileItShows()
{
    SetTypes(2, 2);
    const std::unique_ptr<Layer> first = MakeLayer(QColor(1, 2, 3, 100), 0xF0, 0xF1);
    const std::unique_ptr<Layer> second = MakeLayer(QColor(4, 5, 6, 200), 1, 2);
    const QSignalSpy colorChanged(m_dock, &DockLayerProps::ColorChanged);
    const QSignalSpy opacityChanged(m_dock, &DockLayerProps::OpacityChanged);

    m_dock->SetLayer(first.get(), false);
    m_dock->SetLayer(second.get(), false);
    m_dock->Refresh();
    m_dock->SetLayer(nullptr, false);

    QCOMPARE(first->Color(), QColor(1, 2, 3, 100));
    QCOMPARE(first->UsageFlags(), 0xF0U);
    QCOMPARE(first->ValueFlags(), 0xF1U);
    QCOMPARE(second->Color(), QColor(4, 5, 6, 200));
    QCOMPARE(second->UsageFlags(), 1U);
    QCOMPARE(colorChanged.size(), 0);
    QCOMPARE(opacityChanged.size(), 0);
    QVERIFY(!IsModified());
}

void tst_DockLayerProps::AnnouncesColorAndOpacity()
{
    const std::unique_ptr<Layer> layer = MakeLayer(QColor(10, 20, 30, 51), 0, 0);
    const QSignalSpy colorChanged(m_dock, &DockLayerProps::ColorChanged);
    const QSignalSpy opacityChanged(m_dock, &DockLayerProps::OpacityChanged);

    m_dock->SetLayer(layer.get(), true);

    QCOMPARE(colorChanged.size(), 1);
    QCOMPARE(opacityChanged.size(), 1);
    QCOMPARE(opacityChanged.first().first().toFloat(), 51.0F / 255.0F);
    QVERIFY(!IsModified());

    m_dock->SetLayer(nullptr, true);

    QCOMPARE(colorChanged.size(), 1);
    QCOMPARE(opacityChanged.size(), 1);
}

void tst_DockLayerProps::ShowsNoLayer()
{
    SetTypes(3, 3);
    const std::unique_ptr<Layer> layer = MakeLayer(Qt::red, 7, 7);
    m_dock->SetLayer(layer.get(), false);

    m_dock->SetLayer(nullptr, false);

    QVERIFY(!m_dock->isEnabled());
    QCOMPARE(Checked(UsageGroup), QList<int>());
    QCOMPARE(Checked(ValueGroup), QList<int>());
    QCOMPARE(layer->UsageFlags(), 7U);
    Slider()->setValue(3);
    QCOMPARE(layer->Color().alpha(), 255);
}

void tst_DockLayerProps::ClicksFlags()
{
    SetTypes(3, 2);
    // Two of its flags have no box, because there is no type for them.
    const std::unique_ptr<Layer> layer = MakeLayer(Qt::red, 0x101, 0x100);
    m_dock->SetLayer(layer.get(), false);

    QTest::mouseClick(Boxes(UsageGroup).at(2), Qt::LeftButton, {}, QPoint(8, 8));

    QCOMPARE(layer->UsageFlags(), 5U);
    QCOMPARE(layer->ValueFlags(), 0U);
    QVERIFY(IsModified());

    QTest::mouseClick(Boxes(ValueGroup).at(1), Qt::LeftButton, {}, QPoint(8, 8));
    QTest::mouseClick(Boxes(UsageGroup).at(0), Qt::LeftButton, {}, QPoint(8, 8));

    QCOMPARE(layer->UsageFlags(), 4U);
    QCOMPARE(layer->ValueFlags(), 2U);
}

void tst_DockLayerProps::ChecksFlagsWithTheKeyboard()
{
    SetTypes(32, 0);
    const std::unique_ptr<Layer> layer = MakeLayer(Qt::red, 1, 0);
    m_dock->SetLayer(layer.get(), false);

    QTest::keyClick(Boxes(UsageGroup).at(31), Qt::Key_Space);

    QCOMPARE(layer->UsageFlags(), 0x80000001U);
    QVERIFY(IsModified());
}

void tst_DockLayerProps::PicksAColor()
{
    const std::unique_ptr<Layer> layer = MakeLayer(QColor(10, 20, 30, 40), 0, 0);
    m_dock->SetLayer(layer.get(), false);
    const QSignalSpy colorChanged(m_dock, &DockLayerProps::ColorChanged);
    ModalAnswers answers;
    answers.Add([](QWidget& dialog) {
        auto* colors = qobject_cast<QColorDialog*>(&dialog);
        QVERIFY(colors);
        QCOMPARE(colors->currentColor().rgb(), qRgb(10, 20, 30));
        colors->setCurrentColor(QColor(70, 80, 90));
        colors->accept();
    });

    QTest::mouseClick(Button(), Qt::LeftButton);

    QCOMPARE(layer->Color(), QColor(70, 80, 90, 40));
    QCOMPARE(colorChanged.size(), 1);
    QVERIFY(IsModified());
}

void tst_DockLayerProps::SlidesTheOpacity()
{
    const std::unique_ptr<Layer> layer = MakeLayer(QColor(10, 20, 30, 40), 0, 0);
    m_dock->SetLayer(layer.get(), false);
    const QSignalSpy opacityChanged(m_dock, &DockLayerProps::OpacityChanged);

    QTest::keyClick(Slider(), Qt::Key_End);

    QCOMPARE(layer->Color(), QColor(10, 20, 30, 255));
    QCOMPARE(opacityChanged.size(), 1);
    QCOMPARE(opacityChanged.first().first().toFloat(), 1.0F);
    QVERIFY(IsModified());

    QTest::keyClick(Slider(), Qt::Key_Left);

    QCOMPARE(layer->Color(), QColor(10, 20, 30, 254));
    QCOMPARE(opacityChanged.last().first().toFloat(), 254.0F / 255.0F);
}

void tst_DockLayerProps::ForgetsALayerThatDied()
{
    SetTypes(2, 2);
    std::unique_ptr<Layer> layer = MakeLayer(Qt::red, 1, 1);
    m_dock->SetLayer(layer.get(), false);
    const QSignalSpy opacityChanged(m_dock, &DockLayerProps::OpacityChanged);

    layer.reset();
    QTest::mouseClick(Boxes(UsageGroup).at(1), Qt::LeftButton, {}, QPoint(8, 8));
    QTest::keyClick(Slider(), Qt::Key_Home);

    QCOMPARE(opacityChanged.size(), 0);
    QVERIFY(!IsModified());

    m_dock->Refresh();

    QVERIFY(!m_dock->isEnabled());
    QCOMPARE(Checked(UsageGroup), QList<int>());
}

void tst_DockLayerProps::TakesTheWheelOnlyWithFocus()
{
    const std::unique_ptr<Layer> layer = MakeLayer(QColor(0, 0, 0, 100), 0, 0);
    m_dock->SetLayer(layer.get(), false);
    const auto wheel = [this] {
        const QPointF centre = Slider()->rect().center();
        QWheelEvent event(centre, Slider()->mapToGlobal(centre.toPoint()), {}, {0, 120},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(Slider(), &event);
    };

    wheel();

    QCOMPARE(layer->Color().alpha(), 100);

    Slider()->setFocus();
    wheel();

    QVERIFY(layer->Color().alpha() > 100);
}

void tst_DockLayerProps::TabsInTheOrderOfTheEye()
{
    const std::unique_ptr<Layer> layer = MakeLayer(Qt::red, 0, 0);
    m_dock->SetLayer(layer.get(), false);
    SetTypes(4, 3);
    // Build the boxes again, as after an import.
    SetTypes(3, 2);
    Boxes(UsageGroup).constFirst()->setFocus();
    QStringList order;
    for (int i = 0; i < 7; ++i) {
        QWidget* focus = QApplication::focusWidget();
        QVERIFY(focus);
        const auto* box = qobject_cast<QCheckBox*>(focus);
        order << (box ? box->text() : focus->objectName());
        QTest::keyClick(focus, Qt::Key_Tab);
    }

    QCOMPARE(order.join(QStringLiteral(", ")),
             QStringLiteral("usage 0, usage 1, usage 2, value 0, value 1, button, slider"));
}

void tst_DockLayerProps::HoldsAllFlagsOnASmallScreen()
{
    constexpr int largePoints = 14;
    QFont font = QApplication::font();
    font.setPointSize(largePoints);
    m_window->setFont(font);
    const std::unique_ptr<Layer> layer = MakeLayer(Qt::red, 0, 0);
    m_dock->SetLayer(layer.get(), false);
    SetTypes(32, 32);

    QVERIFY2(m_dock->minimumSizeHint().height() <= 250,
             qPrintable(QString::number(m_dock->minimumSizeHint().height())));
    const auto* area = m_dock->findChild<QScrollArea*>();
    QTRY_VERIFY(area->verticalScrollBar()->maximum() > 0);
    QCheckBox* last = Boxes(ValueGroup).constLast();
    last->setFocus(Qt::TabFocusReason);
    QTest::keyClick(last, Qt::Key_Backtab);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QCOMPARE(QApplication::focusWidget(), last);
    const QRect shown(last->mapTo(area->viewport(), QPoint()), last->size());
    QVERIFY(area->viewport()->rect().contains(shown));
    const QList<QCheckBox*> boxes = Boxes(UsageGroup) + Boxes(ValueGroup);
    for (const QCheckBox* box : boxes) {
        QVERIFY(box->width() >= box->sizeHint().width());
        QVERIFY(box->height() >= box->minimumSizeHint().height());
    }
    // The colour box below is always visible.
    QVERIFY(m_dock->rect().contains(QRect(Slider()->mapTo(m_dock, QPoint()), Slider()->size())));
}

QTEST_MAIN(tst_DockLayerProps)
#include "tst_DockLayerProps.moc"
