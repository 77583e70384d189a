#include "ui/dialogs/DialogGoTo.h"

#include "canvas/PlaceMark.h"
#include "canvas/ViewMoves.h"
#include "tests/support/WideFixture.h"

#include <QAbstractItemModel>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

class tst_DialogGoTo : public QObject
{
    Q_OBJECT

private slots:
    void GoesToMetres();
    void GoesToNames_data();
    void GoesToNames();
    void OffersNames();
    void RefusesBadPlaces_data();
    void RefusesBadPlaces();
    void OneWayToGoClearsTheOther();
    void ShowsPlacesAtTheEdge();
    void GoesNowhereWithoutAMap();
};

void tst_DialogGoTo::GoesToMetres()
{
    WideFixture editor;
    editor.GoTo("4200", "9800", {}, "300");
    editor.VerifyShown(WideFixture::ToScene(4200, 9800), 3);
    QCOMPARE(editor.Child<QLabel>("lblZoomValue")->text(), "<strong>300%</strong>");
    QVERIFY(editor.View().Mark().IsShown());
    QCOMPARE(editor.View().Mark().Place(), WideFixture::ToScene(4200, 9800));
    // The zoom stays unless one is chosen.
    editor.GoTo(" 7680.5", "7000 ", {});
    editor.VerifyShown(WideFixture::ToScene(7680.5, 7000), 3);
}

void tst_DialogGoTo::GoesToNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QPointF>("scene");
    QTest::addColumn<float>("zoom");
    QTest::newRow("territory") << "North" << WideFixture::ToScene(5100, 9750) << 2.0F;
    QTest::newRow("layer") << "Forest" << QRectF(WideFixture::ForestArea).center() << 2.0F;
    QTest::newRow("in other letters")
        << " fOREST" << QRectF(WideFixture::ForestArea).center() << 2.0F;
    QTest::newRow("one of several")
        << "Marsh (layer)" << QRectF(WideFixture::ForestArea).center() << 2.0F;
    QTest::newRow("bookmark") << "Harbour" << QPointF(1100, 900) << 4.0F;
}

void tst_DialogGoTo::GoesToNames()
{
    QFETCH(QString, name);
    WideFixture editor;
    editor.View().Moves().Show({{1100, 900}, 4});
    editor.AddBookmark("Harbour");
    editor.View().Moves().Show({{1024, 1024}, 2});
    editor.GoTo({}, {}, name);
    QFETCH(QPointF, scene);
    QFETCH(float, zoom);
    editor.VerifyShown(scene, zoom);
    QVERIFY(editor.View().Mark().IsShown());
}

void tst_DialogGoTo::OffersNames()
{
    WideFixture editor;
    editor.AddBookmark("Harbour");
    editor.answers.Add([](QWidget& dialog) {
        auto* edit = dialog.findChild<QLineEdit*>("txtGoName");
        edit->setFocus();
        QTest::keyClicks(edit, "ar");
        QStringList offered;
        const QAbstractItemModel* model = edit->completer()->completionModel();
        for (int row = 0; row < model->rowCount(); ++row) {
            offered.append(model->index(row, 0).data().toString());
        }
        QCOMPARE(offered,
                 QStringList({"Bare", "Harbour", "Marsh (layer)", "Marsh (territory of Deer)"}));
        qobject_cast<QDialog*>(&dialog)->reject();
    });
    editor.Trigger("actionGoTo");
}

void tst_DialogGoTo::RefusesBadPlaces_data()
{
    QTest::addColumn<QString>("x");
    QTest::addColumn<QString>("z");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("problem");
    QTest::newRow("nothing") << ""
                             << ""
                             << ""
                             << "";
    QTest::newRow("blanks") << " "
                            << "  "
                            << " "
                            << "";
    QTest::newRow("no Z") << "4200"
                          << ""
                          << ""
                          << "Type Z too.";
    QTest::newRow("no X") << ""
                          << "4200"
                          << ""
                          << "Type X too.";
    QTest::newRow("no number") << "12"
                               << "abc"
                               << ""
                               << "Z: \"abc\" is not a number of metres.";
    QTest::newRow("comma") << "4,200"
                           << "1"
                           << ""
                           << "X: \"4,200\" is not a number of metres.";
    QTest::newRow("nan") << "nan"
                         << "1"
                         << ""
                         << "X: \"nan\" is not a number of metres.";
    QTest::newRow("infinite") << "inf"
                              << "1"
                              << ""
                              << "X: \"inf\" is not a number of metres.";
    QTest::newRow("west of the world") << "-1"
                                       << "1"
                                       << ""
                                       << "X is between 0 and 15360 m.";
    QTest::newRow("north of the world") << "1"
                                        << "15361"
                                        << ""
                                        << "Z is between 0 and 15360 m.";
    QTest::newRow("huge") << "1e300"
                          << "1"
                          << ""
                          << "X is between 0 and 15360 m.";
    QTest::newRow("unknown name") << ""
                                  << ""
                                  << "<b>Nowhere"
                                  << "No territory, layer or bookmark is called \"<b>Nowhere\".";
    QTest::newRow("name of two")
        << ""
        << ""
        << "marsh"
        << "Several things are called \"marsh\". Choose one from the list.";
    QTest::newRow("empty territory") << ""
                                     << ""
                                     << "Void"
                                     << "\"Void\" is empty, so it has no place.";
    QTest::newRow("empty layer") << ""
                                 << ""
                                 << "Bare"
                                 << "\"Bare\" is empty, so it has no place.";
    QTest::newRow("both") << "1"
                          << "2"
                          << "North"
                          << "Type either X and Z or a name.";
}

void tst_DialogGoTo::RefusesBadPlaces()
{
    QFETCH(QString, x);
    QFETCH(QString, z);
    QFETCH(QString, name);
    QFETCH(QString, problem);
    WideFixture editor;
    const QTransform shown = editor.View().viewportTransform();
    editor.answers.Add([&](QWidget& dialog) {
        auto* edit = dialog.findChild<QLineEdit*>("txtGoX");
        edit->setText(x);
        dialog.findChild<QLineEdit*>("txtGoZ")->setText(z);
        dialog.findChild<QLineEdit*>("txtGoName")->setText(name);
        QCOMPARE(dialog.findChild<QLabel*>("lblGoProblem")->text(), problem);
        QVERIFY(!dialog.findChild<QPushButton*>("btnOk")->isEnabled());
        QTest::keyClick(edit, Qt::Key_Return);
        qobject_cast<QDialog*>(&dialog)->accept();
        QVERIFY(dialog.isVisible());
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QVERIFY(dialog.isHidden());
    });
    editor.Trigger("actionGoTo");
    QCOMPARE(editor.View().viewportTransform(), shown);
    QVERIFY(!editor.View().Mark().IsShown());
    editor.View().Moves().Show({{300, 300}, 1});
    const QTransform later = editor.View().viewportTransform();
    editor.Trigger("actionGoBack");
    QCOMPARE(editor.View().viewportTransform(), later);
    QVERIFY(!WindowFixture::IsModified());
}

void tst_DialogGoTo::OneWayToGoClearsTheOther()
{
    WideFixture editor;
    editor.answers.Add([](QWidget& dialog) {
        auto* x = dialog.findChild<QLineEdit*>("txtGoX");
        auto* z = dialog.findChild<QLineEdit*>("txtGoZ");
        auto* name = dialog.findChild<QLineEdit*>("txtGoName");
        QTest::keyClicks(x, "1");
        QTest::keyClicks(z, "2");
        QTest::keyClicks(name, "N");
        QVERIFY(x->text().isEmpty() && z->text().isEmpty());
        QTest::keyClicks(z, "3");
        QVERIFY(name->text().isEmpty());
        qobject_cast<QDialog*>(&dialog)->reject();
    });
    editor.Trigger("actionGoTo");
}

void tst_DialogGoTo::ShowsPlacesAtTheEdge()
{
    WideFixture editor;
    editor.GoTo("0", "15360", {}, "200");
    QCOMPARE(editor.View().Zoom(), 2.0F);
    QCOMPARE(editor.View().mapFromScene(0, 0), QPoint(0, 0));
    QCOMPARE(editor.View().Mark().Place(), QPointF(0, 0));
}

void tst_DialogGoTo::GoesNowhereWithoutAMap()
{
    WindowFixture fixture;
    fixture.answers.Add([](QWidget& dialog) {
        dialog.findChild<QLineEdit*>("txtGoX")->setText("1");
        dialog.findChild<QLineEdit*>("txtGoZ")->setText("1");
        QCOMPARE(dialog.findChild<QLabel*>("lblGoProblem")->text(), "There is no map to go to.");
        QVERIFY(!dialog.findChild<QPushButton*>("btnOk")->isEnabled());
        qobject_cast<QDialog*>(&dialog)->reject();
    });
    fixture.Trigger("actionGoTo");
    fixture.Trigger("actionBookmarkAdd");
    for (const char* action : {"actionZoomIn", "actionZoomOut", "actionFitMap",
                               "actionFitSelection", "actionGoBack", "actionGoForward"}) {
        fixture.Trigger(action);
    }
    QCOMPARE(fixture.answers.Asked(), QStringList{"Go to"});
}

QTEST_MAIN(tst_DialogGoTo)
#include "tst_DialogGoTo.moc"
