#include "app/Log.h"
#include "canvas/BrushDock.h"
#include "canvas/WorldItem.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "territories/Zone.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockLayers.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSlider>
#include <QTest>
#include <QTreeView>

#include <algorithm>
#include <functional>

namespace {

const char* const Discard =
    "Load configuration: This action will remove all current data. All unsaved "
    "work will be lost.\n\nAre you sure you want to load a different "
    "configuration?";

LayerList& Layers(const WindowFixture& fixture)
{
    return *fixture.Child<DockLayers>("DockLayers")->List();
}

int ZonesOnTheMap(const WindowFixture& fixture)
{
    int count = 0;
    const QList<QGraphicsItem*> items = fixture.Scene().items();
    for (const QGraphicsItem* item : items) {
        count += item->type() == Zone::Type ? 1 : 0;
    }
    return count;
}

/// Calls a function once, when the next message is logged.
class AtNextMessage : public QObject
{
public:
    explicit AtNextMessage(const std::function<void()>& action)
    {
        connect(&Log::Instance(), &Log::MessageReceived, this, [this, action] {
            if (!m_wasDone) {
                m_wasDone = true;
                action();
            }
        });
    }

private:
    bool m_wasDone = false;
};

} // namespace

class tst_WindowLoading : public QObject
{
    Q_OBJECT

private slots:
    void LoadsAProject();
    void CompletesAKilledSave();
    void PaintsTheListsOnceWhileItLoads();
    void SelectsTheStoredRow();
    void WithoutAStoredRowThereIsNothingToPaint();
    void TakesElementsInAnyOrder();
    void TakesElementsBelowAnotherRoot();
    void AsksBeforeItDiscards_data();
    void AsksBeforeItDiscards();
    void CancelKeepsWhatIsThere();
    void AMissingFileLeavesAllAsItWas();
    void AMalformedProjectLeavesNothing_data();
    void AMalformedProjectLeavesNothing();
    void AFailedLoadLeavesThePicture_data();
    void AFailedLoadLeavesThePicture();
    void LayersMadeAfterAFailedLoadCanBePainted();
    void OldFlagBoxesGo();
    void AnOldBackgroundGoes_data();
    void AnOldBackgroundGoes();
    void OpensTheProjectOfTheCommandLine();
    void RefusesToCloseWhileItLoads();
    void ClosesWhileItLoadsWithoutTheStatusDock();
    void IsNotStartedTwice();
};

void tst_WindowLoading::LoadsAProject()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.log.Take();

    fixture.Load(path);

    QCOMPARE(fixture.log.Take(),
             (QStringList{"Info: Loading layer \"red\"...", "Info: Loading layer \"blue\"..."}));
    QCOMPARE(fixture.window->windowTitle(), "small - Tarvo Ledger Tool");
    QCOMPARE(Layers(fixture).Layers().size(), 2);
    QCOMPARE(ZonesOnTheMap(fixture), 1);
    QCOMPARE(ProjectSettings::Instance().FileName(), "small.xml");
    QCOMPARE(ProjectSettings::Instance().Dir().path(), fixture.Path("small"));
    QCOMPARE(ProjectSettings::Instance().FlagTypes().usages, (QVector<QString>{"Town", "Farm"}));
    QVERIFY(!fixture.IsModified());
    QCOMPARE(fixture.Child<QLabel>("lblWorldScaleX")->text(), "X: 1 px = 10 m");
    QCOMPARE(fixture.Child<QLabel>("lblWorldScaleZ")->text(), "Z: 1 px = 10 m");
    QCOMPARE(fixture.Child<QLabel>("lblWorldRStepX")->text(), "X step = 250 m");
    QCOMPARE(fixture.Child<QLabel>("lblWorldRStepZ")->text(), "Z step = 250 m");
    QCOMPARE(fixture.Scene().sceneRect(), QRectF(0, 0, 64, 64));
    for (const char* name : {"actionSave", "actionSaveAll", "actionLoadWorld", "actionImportAreas",
                             "actionImportMap", "actionTogglePaintMode"}) {
        QVERIFY2(fixture.Action(name)->isEnabled(), name);
    }
    for (const char* name : {"DockLayers", "DockTerTypes", "paintView", "gboPaintMode", "gboBgOver",
                             "gboWorldScale", "gboWorldRSteps", "gboWorldPos", "btnHideAll"}) {
        QVERIFY2(fixture.Child<QWidget>(name)->isEnabled(), name);
    }
    QVERIFY(fixture.View().isInteractive());
    QVERIFY(fixture.window->actions().contains(fixture.Action("actionTogglePaintMode")));
    QVERIFY(fixture.Child<QWidget>("pgrStatus")->isHidden());
    QVERIFY(fixture.Child<QWidget>("BrushDock")->isHidden());
}

void tst_WindowLoading::CompletesAKilledSave()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    LeaveKilledSave(fixture.Path("small"), "small.xml", ReadBytes(path));
    WriteBytes(path, "<qm-config/>");

    fixture.Load(path);

    QCOMPARE(Layers(fixture).Layers().size(), 2);
}

void tst_WindowLoading::PaintsTheListsOnceWhileItLoads()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    const QVector<QWidget*> lists{fixture.Child<QWidget>("treeLayers"),
                                  fixture.Child<QWidget>("treeTerTypes")};
    QStringList painted;
    const QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context, [&] {
        for (const QWidget* list : lists) {
            painted += list->updatesEnabled() ? list->objectName() : QString();
        }
    });

    fixture.Load(path);

    QCOMPARE(painted, (QStringList{"", "", "", ""}));
    for (const QWidget* list : lists) {
        QVERIFY(list->updatesEnabled());
    }
}

void tst_WindowLoading::SelectsTheStoredRow()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());

    QCOMPARE(fixture.Child<QTreeView>("treeLayers")->currentIndex().row(), 1);
    QCOMPARE(fixture.Scene().CurrentLayer(), Layers(fixture).LayerAt(1));
    const auto boxes = fixture.Child<QGroupBox>("gboLayerUsageFlags")->findChildren<QCheckBox*>();
    QCOMPARE(boxes.size(), 2);
    QVERIFY(!boxes[0]->isChecked());
    QVERIFY(boxes[1]->isChecked());
}

void tst_WindowLoading::WithoutAStoredRowThereIsNothingToPaint()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    QByteArray document = ReadBytes(path);
    WriteBytes(path, document.replace("<selected row=\"1\"/>", ""));

    fixture.Load(path);

    QVERIFY(!fixture.Action("actionTogglePaintMode")->isEnabled());
    QVERIFY(!fixture.Child<QWidget>("gboPaintMode")->isEnabled());
    QCOMPARE(fixture.Scene().CurrentLayer(), nullptr);
    QVERIFY(!fixture.Child<QWidget>("DockLayerProps")->isEnabled());
}

void tst_WindowLoading::TakesElementsInAnyOrder()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    QByteArray document = ReadBytes(path);
    const int global = document.indexOf("<global>");
    const int layers = document.indexOf("<layers>");
    const QByteArray settings = document.mid(global, layers - global);
    document.remove(global, settings.size());
    document.insert(document.indexOf("</qm-config>"), settings);
    WriteBytes(path, document);

    fixture.Load(path);

    QCOMPARE(Layers(fixture).Layers().size(), 2);
    QCOMPARE(ZonesOnTheMap(fixture), 1);
    const QList<QGraphicsItem*> items = fixture.Scene().items(QPointF(10, 10));
    QVERIFY(std::any_of(items.begin(), items.end(), [](const QGraphicsItem* item) {
        return item->type() == Zone::Type && item->pos() == QPointF(10, 10);
    }));
}

void tst_WindowLoading::TakesElementsBelowAnotherRoot()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    QByteArray document = ReadBytes(path);
    document.replace("<qm-config>", "<old><project>").replace("</qm-config>", "</project></old>");
    WriteBytes(path, document);

    fixture.Load(path);

    QCOMPARE(Layers(fixture).Layers().size(), 2);
}

void tst_WindowLoading::AsksBeforeItDiscards_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("title");

    QTest::newRow("yes") << "Yes"
                         << "other - Tarvo Ledger Tool";
    QTest::newRow("no") << "No"
                        << "small - Tarvo Ledger Tool";
}

void tst_WindowLoading::AsksBeforeItDiscards()
{
    QFETCH(QString, button);
    QFETCH(QString, title);
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.SetModified(true);
    fixture.answers.AddButton(button);
    const QString other = fixture.WriteProject("other");

    if (button == "Yes") {
        fixture.answers.AddFile(other);
    }
    fixture.Trigger("actionLoad");

    QCOMPARE(fixture.answers.Asked().at(1), Discard);
    QCOMPARE(fixture.window->windowTitle(), title);
    QCOMPARE(fixture.IsModified(), button == "No");
    QCOMPARE(Layers(fixture).Layers().size(), 2);
}

void tst_WindowLoading::CancelKeepsWhatIsThere()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.answers.AddCancel();

    fixture.Trigger("actionLoad");

    QCOMPARE(Layers(fixture).Layers().size(), 2);
    // Its layers are still shown.
    Layer* red = Layers(fixture).LayerAt(0);
    red->setCheckState(Qt::Unchecked);
    QCOMPARE(fixture.window->windowTitle(), "small - Tarvo Ledger Tool");
}

void tst_WindowLoading::AMissingFileLeavesAllAsItWas()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    const QString other = fixture.WriteProject("other");
    fixture.log.Take();
    fixture.answers.Add([&](QWidget& dialog) {
        auto* file = dialog.findChild<QLineEdit*>("fileNameEdit");
        file->setText(other);
        static_cast<QDialog*>(qobject_cast<QFileDialog*>(&dialog))->accept();
        // The file is removed between the choice and the load.
        QFile::remove(other);
    });

    fixture.Trigger("actionLoad");

    QCOMPARE(fixture.log.Take(),
             QStringList{"Error: Failed to open file 'other.xml' for reading."});
    QCOMPARE(ProjectSettings::Instance().FileName(), "small.xml");
    QCOMPARE(ProjectSettings::Instance().Dir().path(), fixture.Path("small"));
    QCOMPARE(Layers(fixture).Layers().size(), 2);
    QCOMPARE(fixture.window->windowTitle(), "small - Tarvo Ledger Tool");
}

void tst_WindowLoading::AMalformedProjectLeavesNothing_data()
{
    QTest::addColumn<QByteArray>("cutBefore");
    QTest::addColumn<bool>("isLoaded");

    QTest::newRow("within the layers") << QByteArray("</layers>") << false;
    QTest::newRow("within the territories") << QByteArray("</territory-type-list>") << false;
    QTest::newRow("behind both") << QByteArray("</qm-config>") << true;
    QTest::newRow("before both") << QByteArray("<layers>") << true;
}

void tst_WindowLoading::AMalformedProjectLeavesNothing()
{
    QFETCH(QByteArray, cutBefore);
    QFETCH(bool, isLoaded);
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    QByteArray document = ReadBytes(path);
    document.truncate(document.indexOf(cutBefore));
    WriteBytes(path, document + "<&");
    fixture.log.Take();

    fixture.Load(path);

    const bool hasError = fixture.log.Take().contains("Error: Failed to parse input.");
    QCOMPARE(hasError, !isLoaded);
    if (!isLoaded) {
        QVERIFY(Layers(fixture).IsEmpty());
        QCOMPARE(ZonesOnTheMap(fixture), 0);
        QCOMPARE(ProjectSettings::Instance().LayerWidth(), 64);
        QVERIFY(fixture.Action("actionSave")->isEnabled());
        QVERIFY(fixture.Child<QWidget>("pgrStatus")->isHidden());
    }
}

void tst_WindowLoading::AFailedLoadLeavesThePicture_data()
{
    QTest::addColumn<bool>("isModified");
    QTest::newRow("unsaved work before") << true;
    QTest::newRow("nothing unsaved") << false;
}

void tst_WindowLoading::AFailedLoadLeavesThePicture()
{
    QFETCH(bool, isModified);
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    const QByteArray document = ReadBytes(path);
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::magenta);
    QVERIFY(picture.save(fixture.Path("small/world.png")));
    QByteArray first = document;
    first.replace("file=\"\" rgba=\"16777215\"", "file=\"world.png\" rgba=\"1677721855\"");
    // What is in the lists is not part of the picture.
    first.replace("visible=\"1\"", "visible=\"0\"").replace("<selected row=\"1\"/>", "");
    WriteBytes(path, first);
    QByteArray second = document;
    second.replace("rgba=\"16777215\"", "rgba=\"3355443455\"")
        .replace("<layer size=\"64\"/>", "<layer size=\"32\"/>")
        .replace("<world size=\"640\"/>", "<world size=\"6400\"/>")
        .replace("size=\"8\"", "size=\"99\"");
    second.truncate(second.indexOf("<layer usage"));
    WriteBytes(fixture.Path("second.xml"), second);
    fixture.Load(path);
    const QImage map = fixture.View().grab().toImage();
    fixture.log.Take();
    fixture.SetModified(isModified);
    if (isModified) {
        fixture.answers.AddButton("Yes");
    }

    fixture.Load(fixture.Path("second.xml"));

    QCOMPARE(fixture.log.Take(), QStringList{"Error: Failed to parse input."});
    QVERIFY(Layers(fixture).IsEmpty());
    QCOMPARE(ZonesOnTheMap(fixture), 0);
    QCOMPARE(fixture.Scene().sceneRect(), QRectF(0, 0, 64, 64));
    QCOMPARE(fixture.Child<QLabel>("lblWorldScaleX")->text(), "X: 1 px = 10 m");
    QCOMPARE(fixture.Child<QGroupBox>("gboBgOver")->findChild<QSlider*>()->value(), 100);
    QCOMPARE(fixture.Child<BrushDock>("BrushDock")->GetBrush()->Size(), 8);
    QCOMPARE(fixture.View().grab().toImage(), map);
    QCOMPARE(fixture.IsModified(), isModified);
    // The sizes and the background are those of the file, for what is made and saved from now on.
    QCOMPARE(ProjectSettings::Instance().LayerSize(), QSize(32, 32));
    QCOMPARE(ProjectSettings::Instance().BackgroundColor().rgba(), 3355443455U);
}

void tst_WindowLoading::LayersMadeAfterAFailedLoadCanBePainted()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    QByteArray document = ReadBytes(fixture.Path("small/small.xml"));
    document.replace("<layer size=\"64\"/>", "<layer size=\"32\"/>");
    document.truncate(document.indexOf("<layer usage"));
    WriteBytes(fixture.Path("second.xml"), document);
    fixture.Load(fixture.Path("second.xml"));

    fixture.Child<QAbstractButton>("btnAddPainted")->click();
    auto* tree = fixture.Child<QTreeView>("treeLayers");
    tree->setCurrentIndex(tree->model()->index(0, 0));
    fixture.Trigger("actionTogglePaintMode");
    QWidget* viewport = fixture.View().viewport();
    for (const QPointF place : {QPointF(50, 50), QPointF(10, 10)}) {
        QTest::mouseMove(viewport, fixture.View().mapFromScene(place));
        QTest::mouseClick(viewport, Qt::LeftButton, {}, fixture.View().mapFromScene(place));
    }

    QCOMPARE(fixture.Scene().sceneRect(), QRectF(0, 0, 64, 64));
    const QImage mask = Layers(fixture).LayerAt(0)->Image();
    QCOMPARE(mask.size(), QSize(32, 32));
    QCOMPARE(mask.pixelIndex(10, 10), 255);
    QCOMPARE(mask.pixelIndex(30, 30), 0);
}

void tst_WindowLoading::OldFlagBoxesGo()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    fixture.Load(path);

    const auto boxes = [&](const char* group) {
        return fixture.Child<QGroupBox>(group)->findChildren<QCheckBox*>().size();
    };
    QCOMPARE(boxes("gboLayerUsageFlags"), 2);
    QCOMPARE(boxes("gboLayerValueFlags"), 1);
}

void tst_WindowLoading::AnOldBackgroundGoes_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("a project without a picture") << QByteArray();
    QTest::newRow("a project whose picture is missing") << QByteArray("missing.png");
}

void tst_WindowLoading::AnOldBackgroundGoes()
{
    QFETCH(QByteArray, file);
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::magenta);
    QVERIFY(picture.save(fixture.Path("small/world.png")));
    const QByteArray document = ReadBytes(path);
    QByteArray withPicture = document;
    WriteBytes(path, withPicture.replace("file=\"\"", "file=\"world.png\""));
    const auto shown = [&] {
        const QList<QGraphicsItem*> items = fixture.Scene().items();
        for (QGraphicsItem* item : items) {
            if (qFuzzyCompare(item->zValue(), 0.2)) {
                return static_cast<WorldItem*>(item)->pixmap();
            }
        }
        return QPixmap();
    };

    fixture.Load(path);
    QCOMPARE(shown().size(), QSize(64, 64));

    QByteArray other = document;
    WriteBytes(path, other.replace("file=\"\"", "file=\"" + file + "\""));
    fixture.Load(path);
    QVERIFY(shown().isNull());
}

void tst_WindowLoading::OpensTheProjectOfTheCommandLine()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.log.Take();

    fixture.Restart(path);

    QCOMPARE(fixture.log.Take().constLast(),
             "Info: Project opened for viewing. Load it (Ctrl+O) to edit.");
    QCOMPARE(fixture.window->windowTitle(), "small - Tarvo Ledger Tool");
    QCOMPARE(Layers(fixture).Layers().size(), 2);
    // Editing needs a load. File dialogs start in the folder of the last session.
    QVERIFY(!fixture.Action("actionSave")->isEnabled());
    QVERIFY(!fixture.Child<QWidget>("paintView")->isEnabled());
    QCOMPARE(ProjectSettings::Instance().Dir().path(), QDir::currentPath());

    // The path of the command line is used only once. Now the dialog asks for a file.
    fixture.Load(path);
    QVERIFY(fixture.Action("actionSave")->isEnabled());
}

void tst_WindowLoading::RefusesToCloseWhileItLoads()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.answers.AddFile(path);
    fixture.answers.AddButton("OK");
    bool wasClosed = true;
    const AtNextMessage attempt([&] { wasClosed = fixture.window->close(); });

    fixture.Trigger("actionLoad");

    QVERIFY(!wasClosed);
    QCOMPARE(fixture.answers.Asked().constLast(),
             "Load in progress: Configuration file is now being loaded. Application cannot be "
             "closed right now.");
    QVERIFY(fixture.window->isVisible());
    QCOMPARE(Layers(fixture).Layers().size(), 2);
}

void tst_WindowLoading::ClosesWhileItLoadsWithoutTheStatusDock()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Trigger("actionViewStatus");
    bool wasClosed = false;
    const AtNextMessage attempt([&] { wasClosed = fixture.window->close(); });
    fixture.log.Take();

    fixture.Load(path);

    QVERIFY(wasClosed);
    QVERIFY(!fixture.window->isVisible());
    // The load ends at once, which is not an error.
    QCOMPARE(fixture.log.Take(), QStringList{"Info: Loading layer \"red\"..."});
}

void tst_WindowLoading::IsNotStartedTwice()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    const AtNextMessage attempt([&] {
        for (const char* action : {"actionLoad", "actionNew", "actionSave", "actionSaveAll",
                                   "actionImportMap", "actionImportAreas"}) {
            fixture.Action(action)->setEnabled(true);
            fixture.Trigger(action);
        }
    });

    fixture.Load(path);

    QCOMPARE(fixture.answers.Asked(), QStringList{"Load"});
    QCOMPARE(Layers(fixture).Layers().size(), 2);
}

QTEST_MAIN(tst_WindowLoading)
#include "tst_WindowLoading.moc"
