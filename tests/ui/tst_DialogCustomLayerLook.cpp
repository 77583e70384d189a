#include "tests/support/CustomLayerFixture.h"
#include "tests/support/OrderedEvents.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QBoxLayout>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTest>

namespace {

/// The objects in the layout, in order.
QStringList Contents(const QLayout* layout)
{
    QStringList names;
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        const QObject* object = item->widget();
        names.append((object ? object : item->layout())->objectName());
    }
    return names;
}

bool Shows(const QImage& picture, const QColor& color)
{
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y) == color) {
                return true;
            }
        }
    }
    return false;
}

double Lightness(const QColor& color)
{
    return color.lightnessF();
}

} // namespace

/// The look of the dialog, its keys, and its texts for screen readers.
class tst_DialogCustomLayerLook : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void HasItsRows();
    void IsAModalDialogWithATitleOnly();
    void ListsTheLayersOfTheModel();
    void TakesTabsInReadingOrder_data();
    void TakesTabsInReadingOrder();
    void NamesItsControls_data();
    void NamesItsControls();
    void ClipsNothing_data();
    void ClipsNothing();
    void KeepsItsSizeWithLongNames();
    void ShowsTheLayersColors();
    void KeepsTheNameReadable_data();
    void KeepsTheNameReadable();

private:
    std::unique_ptr<CustomLayerFixture> m;
    QFont m_font;
    QPalette m_palette;
};

void tst_DialogCustomLayerLook::init()
{
    m_font = QApplication::font();
    m_palette = QApplication::palette();
    m = std::make_unique<CustomLayerFixture>();
}

void tst_DialogCustomLayerLook::cleanup()
{
    m.reset();
    QApplication::setFont(m_font);
    QApplication::setPalette(m_palette);
}

void tst_DialogCustomLayerLook::HasItsRows()
{
    const DialogCustomLayer dialog(m->document, nullptr);
    const auto row = [&](const char* name) { return Contents(dialog.findChild<QLayout*>(name)); };

    QCOMPARE(dialog.layout()->objectName(), "verticalLayout_2");
    QVERIFY(qobject_cast<QVBoxLayout*>(dialog.layout()));
    QCOMPARE(row("verticalLayout_2"),
             (QStringList{"horizontalLayout_2", "horizontalLayout", "horizontalLayout_3"}));
    QCOMPARE(row("horizontalLayout_2"), (QStringList{"groupBoxDefinition", "layoutRadius"}));
    QCOMPARE(row("horizontalLayout"),
             (QStringList{"groupBoxInputA", "groupBoxInputB", "groupBoxOutput"}));
    QCOMPARE(row("horizontalLayout_3"), (QStringList{"pgr", "btnCancel", "btnOk"}));
    const auto* definition =
        qobject_cast<QFormLayout*>(dialog.findChild<QWidget*>("groupBoxDefinition")->layout());
    QVERIFY(definition);
    QCOMPARE(Contents(definition),
             (QStringList{"lblOperation", "cboOperation", "lblRadius", "spnRadius"}));
    for (const QStringList& box : {QStringList{"groupBoxInputA", "cboInputA", "lblImageInputA"},
                                   {"groupBoxInputB", "cboInputB", "lblImageInputB"},
                                   {"groupBoxOutput", "txtOutputName", "lblImageOutput"}}) {
        const auto* layout =
            qobject_cast<QVBoxLayout*>(dialog.findChild<QWidget*>(box.at(0))->layout());
        QVERIFY(layout);
        const auto* form = qobject_cast<QFormLayout*>(layout->itemAt(0)->layout());
        QVERIFY(form);
        const auto* label =
            qobject_cast<QLabel*>(form->itemAt(0, QFormLayout::LabelRole)->widget());
        QCOMPARE(label->text(), box.at(0) == "groupBoxOutput" ? "Name:" : "Layer:");
        QCOMPARE(label->buddy()->objectName(), box.at(1));
        QCOMPARE(form->itemAt(0, QFormLayout::FieldRole)->widget()->objectName(), box.at(1));
        QCOMPARE(layout->itemAt(1)->widget()->objectName(), box.at(2));
    }
}

void tst_DialogCustomLayerLook::IsAModalDialogWithATitleOnly()
{
    m->Execute(nullptr, [&] {
        QVERIFY(m->dialog->isModal());
        QCOMPARE(m->dialog->windowFlags() & ~Qt::WindowType_Mask,
                 Qt::CustomizeWindowHint | Qt::WindowTitleHint);
        QCOMPARE(m->dialog->windowType(), Qt::Dialog);
        QCOMPARE(m->dialog->size(), QSize(1250, 583));
        m->WaitIdle();
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerLook::ListsTheLayersOfTheModel()
{
    const DialogCustomLayer dialog(m->document, nullptr);
    for (const char* name : {"cboInputA", "cboInputB"}) {
        const auto* combo = dialog.findChild<QComboBox*>(name);
        QCOMPARE(combo->model(), m->list.model());
        QCOMPARE(combo->itemText(1), "second");
        QCOMPARE(combo->itemData(1), QVariant(m->second->Id()));
        QCOMPARE(combo->currentIndex(), 0);
        QVERIFY(!combo->isEditable());
    }
}

void tst_DialogCustomLayerLook::TakesTabsInReadingOrder_data()
{
    QTest::addColumn<int>("operation");
    QTest::addColumn<QStringList>("controls");

    QTest::newRow("complement") << 0
                                << QStringList{"cboOperation", "cboInputA", "txtOutputName",
                                               "btnCancel", "btnOk"};
    QTest::newRow("union") << 1 << QStringList{"cboOperation",  "cboInputA", "cboInputB",
                                               "txtOutputName", "btnCancel", "btnOk"};
    QTest::newRow("erosion") << 4 << QStringList{"cboOperation",  "spnRadius", "cboInputA",
                                                 "txtOutputName", "btnCancel", "btnOk"};
}

void tst_DialogCustomLayerLook::TakesTabsInReadingOrder()
{
    QFETCH(int, operation);
    QFETCH(QStringList, controls);

    m->Execute(nullptr, [&] {
        m->Choose("cboOperation", operation);
        m->Child("cboOperation")->setFocus();
        for (const QString& control : qAsConst(controls)) {
            QCOMPARE(m->dialog->focusWidget()->objectName(), control);
            QTest::keyClick(m->dialog->focusWidget(), Qt::Key_Tab);
            m->WaitIdle();
        }
        QCOMPARE(m->dialog->focusWidget()->objectName(), "cboOperation");
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerLook::NamesItsControls_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");

    QTest::newRow("operation") << "cboOperation"
                               << "Operation"
                               << "lblOperation";
    QTest::newRow("radius") << "spnRadius"
                            << "Radius in meters"
                            << "lblRadius";
    QTest::newRow("A") << "cboInputA"
                       << "Layer of input A"
                       << "label_5";
    QTest::newRow("B") << "cboInputB"
                       << "Layer of input B"
                       << "label_6";
    QTest::newRow("name") << "txtOutputName"
                          << "Name of the layer"
                          << "label";
    QTest::newRow("picture A") << "lblImageInputA"
                               << "Picture of input A"
                               << "";
    QTest::newRow("picture B") << "lblImageInputB"
                               << "Picture of input B"
                               << "";
    QTest::newRow("preview") << "lblImageOutput"
                             << "Preview of the layer"
                             << "";
    QTest::newRow("progress") << "pgr"
                              << "Progress"
                              << "";
    QTest::newRow("OK") << "btnOk"
                        << "OK"
                        << "";
    QTest::newRow("Cancel") << "btnCancel"
                            << "Cancel"
                            << "";
}

void tst_DialogCustomLayerLook::NamesItsControls()
{
    QFETCH(QString, control);
    QFETCH(QString, label);
    DialogCustomLayer dialog(m->document, nullptr);
    auto* widget = dialog.findChild<QWidget*>(control);
    // The accessible interface of a combo box returns the chosen text instead of a name.
    const bool isCombo = qobject_cast<QComboBox*>(widget) != nullptr;
    QTEST(isCombo ? widget->accessibleName()
                  : QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name),
          "name");
    if (!label.isEmpty()) {
        QCOMPARE(dialog.findChild<QLabel*>(label)->buddy(), widget);
    }
    QCOMPARE(widget->toolTip().isEmpty(), widget->focusPolicy() == Qt::NoFocus);
}

void tst_DialogCustomLayerLook::ClipsNothing_data()
{
    QTest::addColumn<int>("points");

    QTest::newRow("the usual font") << QApplication::font().pointSize();
    QTest::newRow("a large font") << 14;
}

void tst_DialogCustomLayerLook::ClipsNothing()
{
    QFETCH(int, points);
    QFont font = QApplication::font();
    font.setPointSize(points);
    QApplication::setFont(font);

    m->Execute(nullptr, [&] {
        m->WaitIdle();
        const QSize screen(1366, 768);
        QVERIFY(m->dialog->width() <= screen.width() &&
                m->dialog->height() <= screen.height() - 40);
        const QList<QWidget*> widgets = m->dialog->findChildren<QWidget*>();
        for (const QWidget* widget : widgets) {
            const bool isPicture = widget->objectName().startsWith("lblImage");
            if (!widget->isVisible() || isPicture || widget->parentWidget()->layout() == nullptr) {
                continue;
            }
            const QSize least = widget->minimumSizeHint();
            QVERIFY2(widget->width() >= least.width() && widget->height() >= least.height(),
                     qPrintable(widget->objectName()));
        }
        // Pictures made before the dialog was shown have the sizes of their labels.
        for (const char* name : {"lblImageInputA", "lblImageInputB", "lblImageOutput"}) {
            const auto* label = m->Child<QLabel>(name);
            QVERIFY(label->width() >= 384 && label->height() >= 384);
            QCOMPARE(label->pixmap(Qt::ReturnByValue).size(), label->size());
        }
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerLook::KeepsItsSizeWithLongNames()
{
    constexpr int length = 400;
    m->first->setText(QString(length, 'W'));
    m->second->setText(QString(length, 'M'));

    m->Execute(m->second, [&] {
        m->Choose("cboOperation", 1);
        QCOMPARE(m->dialog->size(), QSize(1250, 583));
        for (const char* name : {"lblImageInputA", "lblImageInputB", "lblImageOutput"}) {
            const auto* label = m->Child<QLabel>(name);
            QVERIFY(label->width() >= 384);
            QVERIFY(m->dialog->rect().contains(
                QRect(label->mapTo(m->dialog, QPoint()), label->size())));
        }
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerLook::ShowsTheLayersColors()
{
    const QColor red(201, 3, 5);
    const QColor blue(7, 9, 203);
    m->first->SetColor(red);
    m->second->SetColor(blue);

    m->Execute(nullptr, [&] {
        m->WaitIdle();
        auto* combo = m->Child<QComboBox>("cboInputA");
        QVERIFY(Shows(combo->grab().toImage(), red));
        QVERIFY(!Shows(combo->grab().toImage(), blue));
        m->Choose("cboInputA", 1);
        QVERIFY(Shows(combo->grab().toImage(), blue));

        m->Click("cboInputA");
        QVERIFY(QTest::qWaitForWindowExposed(combo->view()->window()));
        // The icon of the current row is tinted.
        QVERIFY(Shows(combo->view()->grab().toImage(), red));
        QTest::keyClick(combo->view(), Qt::Key_Escape);
        QVERIFY(m->dialog->isVisible());
        m->Click("btnCancel");
    });
}

void tst_DialogCustomLayerLook::KeepsTheNameReadable_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("good") << "good";
    QTest::newRow("bad") << "ba:d";
}

void tst_DialogCustomLayerLook::KeepsTheNameReadable()
{
    QFETCH(QString, name);
    QPalette dark(QColor(50, 50, 50));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    QApplication::setPalette(dark);

    m->Execute(nullptr, [&] {
        m->WaitIdle();
        m->Type("txtOutputName", name);
        m->Child("cboOperation")->setFocus();
        QImage picture = m->Child("txtOutputName")->grab().toImage();
        // Inside the frame there are dark letters on a light background.
        picture = picture.copy(picture.rect().adjusted(4, 4, -4, -4));
        double darkest = 1;
        for (int x = 0; x < picture.width(); ++x) {
            for (int y = 0; y < picture.height(); ++y) {
                darkest = std::min(darkest, Lightness(picture.pixelColor(x, y)));
            }
        }
        QVERIFY(Lightness(picture.pixelColor(picture.width() - 1, 0)) > 0.8);
        QVERIFY(darkest < 0.4);
        m->Click("btnCancel");
    });
}

int main(int argc, char* argv[])
{
    OrderedApplication application(argc, argv);
    tst_DialogCustomLayerLook test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_DialogCustomLayerLook.moc"
