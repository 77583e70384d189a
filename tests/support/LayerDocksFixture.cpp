#include "tests/support/LayerDocksFixture.h"

#include "tests/support/Models.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QStandardItemModel>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTest>
#include <QTimer>

LayerDocksFixture::LayerDocksFixture()
    : window(std::make_unique<QMainWindow>())
    , props(new DockLayerProps(document, window.get()))
    , dock(new DockLayers(document, props, window.get()))
    , tester(std::make_unique<QAbstractItemModelTester>(
          dock->List()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest))
{
    // QSignalSpy needs the type of the signals' layers.
    qRegisterMetaType<Layer*>("Layer*");
    window->addDockWidget(Qt::LeftDockWidgetArea, dock);
    window->addDockWidget(Qt::LeftDockWidgetArea, props);
    window->setCentralWidget(new QWidget);
    window->resize(700, 650);
    window->show();
    QObject::connect(dock, &DockLayers::Selected, dock,
                     [this](const Layer* layer) { selected.append(layer->text()); });
    QApplication::setActiveWindow(window.get());
    if (!QTest::qWaitForWindowActive(window.get())) {
        qFatal("The window does not become active.");
    }
}

LayerDocksFixture::~LayerDocksFixture()
{
    tester.reset();
    window.reset();
    // The model.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QString LayerDocksFixture::Order() const
{
    return RowTexts(*List()->model()).join(QLatin1Char(' '));
}

QString LayerDocksFixture::ShownRows() const
{
    QStringList names = RowTexts(*List()->model());
    for (int row = names.size() - 1; row >= 0; --row) {
        if (Tree()->isRowHidden(row, {})) {
            names.removeAt(row);
        }
    }
    return names.join(QLatin1String(", "));
}

QPushButton* LayerDocksFixture::Button(const char* name) const
{
    return dock->findChild<QPushButton*>(QLatin1String(name));
}

QAction* LayerDocksFixture::Action(const char* name) const
{
    return dock->findChild<QAction*>(QLatin1String(name));
}

QRect LayerDocksFixture::RectOf(int row) const
{
    return Tree()->visualRect(List()->model()->index(row, 0));
}

Layer* LayerDocksFixture::AddLayer(const QString& name, const QColor& color)
{
    auto layer = std::make_unique<Layer>(0, 0, List(), name);
    layer->SetImage(ProjectSettings::Instance().BlankLayerImage(), color);
    Layer* added = layer.get();
    return List()->AddLayer(std::move(layer)) ? added : nullptr;
}

void LayerDocksFixture::Click(int row)
{
    QTest::mouseClick(Tree()->viewport(), Qt::LeftButton, {}, RectOf(row).center());
}

void LayerDocksFixture::ClickBox(int row)
{
    QStyleOptionViewItem option;
    option.initFrom(Tree());
    option.rect = RectOf(row);
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    const QRect box =
        Tree()->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, Tree());
    QTest::mouseClick(Tree()->viewport(), Qt::LeftButton, {}, box.center());
}

QStringList LayerDocksFixture::UseMenu(QPoint position, const char* action)
{
    QStringList texts;
    QAction* used = Action(action);
    QTimer::singleShot(0, dock, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu) {
            return;
        }
        const QList<QAction*> entries = menu->actions();
        for (const QAction* entry : entries) {
            texts.append(entry->text());
        }
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(used).center());
    });
    QTest::mouseClick(Tree()->viewport(), Qt::RightButton, {}, position);
    QContextMenuEvent event(QContextMenuEvent::Mouse, position,
                            Tree()->viewport()->mapToGlobal(position));
    QApplication::sendEvent(Tree()->viewport(), &event);
    QCoreApplication::processEvents();
    return texts;
}

void LayerDocksFixture::Rename(const QString& name)
{
    Tree()->setFocus();
    QTest::keyClick(Tree(), Qt::Key_F2);
    auto* editor = Tree()->viewport()->findChild<QLineEdit*>();
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, name);
    QTest::keyClick(editor, Qt::Key_Return);
    // The editor commits its text after the key event.
    QCoreApplication::processEvents();
}

ModalAnswers::Answer ClickWhenIdle(const char* button, const QString& name)
{
    return [button, name](QWidget& dialog) {
        auto* clicked = dialog.findChild<QPushButton*>(QLatin1String(button));
        QVERIFY(clicked);
        QTRY_VERIFY(clicked->isEnabled());
        if (!name.isEmpty()) {
            auto* edit = dialog.findChild<QLineEdit*>(QStringLiteral("txtOutputName"));
            edit->selectAll();
            QTest::keyClicks(edit, name);
        }
        QTest::mouseClick(clicked, Qt::LeftButton);
        QTRY_VERIFY(!dialog.isVisible());
    };
}
