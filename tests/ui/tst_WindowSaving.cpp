#include "app/Log.h"
#include "canvas/WorldItem.h"
#include "document/Document.h"
#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "tests/support/FailingDisk.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockLayers.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSettings>
#include <QTest>
#include <QTreeView>

#include <algorithm>

#include <sys/stat.h>

namespace {

const char* const Discard = ": This action will remove all current data. All unsaved work will be "
                            "lost.\n\nAre you sure you "
                            "want to continue?";

LayerList& Layers(const WindowFixture& fixture)
{
    return *fixture.Child<DockLayers>("DockLayers")->List();
}

} // namespace

class tst_WindowSaving : public QObject
{
    Q_OBJECT

private slots:
    void SavesWhatItLoaded();
    void SavesIntoAnotherFolder();
    void CancelledSaveSavesNothing();
    void AFailedSaveKeepsTheProjectModified();
    void AFailedBitmapKeepsTheProjectModified();
    void SavesAll();
    void SavesNoMapWithoutLayers();
    void ImportsAMap();
    void AsksBeforeItImportsAMap();
    void AnUnreadableMapLeavesAllAsItWas();
    void ImportsFlagTypes_data();
    void ImportsFlagTypes();
    void MalformedFlagTypesGiveThoseBeforeTheFault();
    void LoadsABackground();
    void UndoFindsTheBackgroundAfterASaveElsewhere();
    void ClosesWithoutAQuestion();
    void AsksBeforeItCloses_data();
    void AsksBeforeItCloses();
    void AsksWhatIsBeingPainted();
    void ClosesAfterARunningSave();
    void ShortcutsWaitForTheEndOfASave();
    void SavesANameThatIsBeingTyped();
    void WaitsForNoPipe();
};

void tst_WindowSaving::SavesWhatItLoaded()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    fixture.SaveOver("actionSave", path);
    const QByteArray saved = ReadBytes(path);
    fixture.SetModified(true);
    fixture.log.Take();

    fixture.SaveOver("actionSave", path);

    QCOMPARE(fixture.log.Take(), (QStringList{"Info: Saving project 'small'...",
                                              "Success: Layer 'red' successfully saved.",
                                              "Success: Layer 'blue' successfully saved.",
                                              "Success: Project saved to file 'small.xml'."}));
    QCOMPARE(ReadBytes(path), saved);
    QVERIFY(!fixture.IsModified());
    QVERIFY(saved.contains("<selected row=\"1\"/>"));
    fixture.Load(path);
    fixture.SaveOver("actionSave", path);
    QCOMPARE(ReadBytes(path), saved);
}

void tst_WindowSaving::SavesIntoAnotherFolder()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    QDir().mkpath(fixture.Path("moved"));

    fixture.TriggerWithFile("actionSave", fixture.Path("moved/copy"));

    QCOMPARE(fixture.window->windowTitle(), "copy - Tarvo Ledger Tool");
    QCOMPARE(ProjectSettings::Instance().Dir().path(), fixture.Path("moved"));
    QVERIFY(QFile::exists(fixture.Path("moved/copy.xml")));
    QCOMPARE(ReadBytes(fixture.Path("moved/layers/red.tga")),
             ReadBytes(fixture.Path("small/layers/red.tga")));
}

void tst_WindowSaving::CancelledSaveSavesNothing()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    const QByteArray before = ReadBytes(path);
    fixture.SetModified(true);
    fixture.answers.AddCancel();

    QVERIFY(!fixture.window->SaveProject());

    QVERIFY(fixture.IsModified());
    QCOMPARE(ReadBytes(path), before);
}

void tst_WindowSaving::AFailedSaveKeepsTheProjectModified()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    const QByteArray before = ReadBytes(path);
    fixture.SetModified(true);
    fixture.log.Take();
    {
        // There is room for the bitmaps but not for the document.
        const FileSizeLimit fullDisk(700);
        fixture.TriggerWithFile("actionSave", fixture.Path("other.xml"));
    }
    QVERIFY(fixture.log.Messages().contains("Error: Failed to open file 'other.xml' for writing."));
    QVERIFY(fixture.IsModified());
    QCOMPARE(fixture.window->windowTitle(), "small - Tarvo Ledger Tool");
    QCOMPARE(ProjectSettings::Instance().FileName(), "small.xml");
    QCOMPARE(ReadBytes(path), before);
    QVERIFY(!QFile::exists(fixture.Path("other.xml")));
}

void tst_WindowSaving::AFailedBitmapKeepsTheProjectModified()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    const QString bitmap = fixture.Path("small/layers/red.tga");
    QFile::remove(bitmap);
    QDir().mkpath(bitmap);
    fixture.log.Take();

    fixture.SaveOver("actionSave", path);

    QCOMPARE(fixture.log.Messages().mid(fixture.log.Messages().size() - 2),
             (QStringList{"Success: Project saved to file 'small.xml'.",
                          "Error: 1 layer bitmaps could not be saved."}));
    QVERIFY(fixture.IsModified());
}

void tst_WindowSaving::SavesAll()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    fixture.log.Take();

    fixture.SaveOver("actionSaveAll", path);

    QCOMPARE(fixture.log.Messages().last(), "Info: Save done");
    QVERIFY(fixture.log.Messages().contains("Success: Territory types succesfully exported."));
    QVERIFY(QFileInfo(fixture.Path("small/map/small.map")).size() > 24);
    QVERIFY(QFile::exists(fixture.Path("small/territoryTypes/Deer.xml")));
}

void tst_WindowSaving::SavesNoMapWithoutLayers()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.window->GetDocument().Layers().Clear();

    fixture.window->SaveAll();
    fixture.window->SaveAreaMap();

    QCOMPARE(fixture.answers.Asked(), QStringList{"Load"});
    QVERIFY(!QFile::exists(fixture.Path("small/map")));
}

void tst_WindowSaving::ImportsAMap()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    fixture.window->SaveAreaMap();
    const QString map = fixture.Path("small/map/small.map");
    QVERIFY(QFile::copy(map, fixture.Path("world.old.map")));

    // The map's world is twice as large.
    ProjectSettings::Instance().SetSizes(64, 64, 1280, 1280);

    fixture.TriggerWithFile("actionImportMap", fixture.Path("world.old.map"));

    QCOMPARE(ProjectSettings::Instance().WorldWidth(), 640);
    QCOMPARE(fixture.Child<QLabel>("lblWorldScaleX")->text(), "X: 1 px = 10 m");
    QCOMPARE(fixture.window->windowTitle(), "world - Tarvo Ledger Tool");
    QStringList names;
    const QVector<Layer*> layers = Layers(fixture).Layers();
    for (const Layer* layer : layers) {
        names.append(layer->text());
        QVERIFY(!layer->IsVisible());
    }
    QCOMPARE(names, (QStringList{"Town", "Farm", "Rich"}));
    QVERIFY(fixture.IsModified());
    QVERIFY(fixture.Child<QWidget>("btnHideAll")->isEnabled());
    QVERIFY(fixture.Child<QWidget>("pgrStatus")->isHidden());
}

void tst_WindowSaving::AsksBeforeItImportsAMap()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.SetModified(true);
    fixture.answers.AddButton("No");

    fixture.Trigger("actionImportMap");

    QCOMPARE(fixture.answers.Asked().constLast(), QString("Import area map") + Discard);
    QCOMPARE(Layers(fixture).Layers().size(), 2);
}

void tst_WindowSaving::AnUnreadableMapLeavesAllAsItWas()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    const QString path = fixture.Path("gone.map");
    WriteBytes(path, "x");
    fixture.log.Take();
    fixture.answers.Add([&](QWidget& dialog) {
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(path);
        static_cast<QDialog*>(qobject_cast<QDialog*>(&dialog))->accept();
        QFile::remove(path);
    });

    fixture.Trigger("actionImportMap");

    QCOMPARE(fixture.log.Take(),
             QStringList{QString("Error: Failed to open file '%1' for reading.").arg(path)});
    QCOMPARE(Layers(fixture).Layers().size(), 2);
    QCOMPARE(fixture.window->windowTitle(), "small - Tarvo Ledger Tool");
}

void tst_WindowSaving::ImportsFlagTypes_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("isImported");

    QTest::newRow("yes") << "Yes" << true;
    QTest::newRow("no") << "No" << false;
}

void tst_WindowSaving::ImportsFlagTypes()
{
    QFETCH(QString, button);
    QFETCH(bool, isImported);
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    WriteBytes(
        fixture.Path("types.xml"),
        R"(<areas><usages><usage name="A"/><usage name="B"/><usage name="C"/></usages></areas>)");
    fixture.answers.AddButton(button);
    if (isImported) {
        fixture.answers.AddFile(fixture.Path("types.xml"));
    }

    fixture.Trigger("actionImportAreas");

    QCOMPARE(
        fixture.answers.Asked().at(1),
        "Import area flag types: This action will replace all area flag types and resets flags "
        "on all layers.\n\nAre you sure you want to continue?");
    QCOMPARE(Layers(fixture).LayerAt(1)->UsageFlags(), isImported ? 0U : 2U);
    QCOMPARE(fixture.Child<QGroupBox>("gboLayerUsageFlags")->findChildren<QCheckBox*>().size(),
             isImported ? 3 : 2);
    QCOMPARE(fixture.IsModified(), isImported);
}

void tst_WindowSaving::MalformedFlagTypesGiveThoseBeforeTheFault()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    WriteBytes(fixture.Path("types.xml"), R"(<areas><usages><usage name="A"/><usage)");

    fixture.window->LoadAreaTypesFile(fixture.Path("types.xml"));

    QCOMPARE(ProjectSettings::Instance().FlagTypes().usages, (QVector<QString>{"A"}));
    QCOMPARE(fixture.Child<QGroupBox>("gboLayerUsageFlags")->findChildren<QCheckBox*>().size(), 1);
    QCOMPARE(Layers(fixture).LayerAt(1)->UsageFlags(), 2U);
    QVERIFY(fixture.IsModified());
    fixture.log.Take();
    QVERIFY(!fixture.window->LoadAreaTypesFile(fixture.Path("none.xml")));
    QCOMPARE(
        fixture.log.Take(),
        QStringList{
            QString("Error: Failed to open file '%1' for reading.").arg(fixture.Path("none.xml"))});
}

void tst_WindowSaving::LoadsABackground()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::magenta);
    QVERIFY(picture.save(fixture.Path("world.png")));

    fixture.TriggerWithFile("actionLoadWorld", fixture.Path("world.png"));

    QCOMPARE(ProjectSettings::Instance().BackgroundFile(), "../world.png");
    QVERIFY(fixture.IsModified());
}

void tst_WindowSaving::UndoFindsTheBackgroundAfterASaveElsewhere()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    QDir().mkpath(fixture.Path("moved"));
    const auto write = [&fixture](const char* file, Qt::GlobalColor color) {
        QImage picture(64, 64, QImage::Format_RGB32);
        picture.fill(color);
        QVERIFY(picture.save(fixture.Path(file)));
    };
    write("small/a.png", Qt::red);
    write("small/b.png", Qt::green);
    write("moved/a.png", Qt::blue);
    const auto shown = [&fixture] {
        const QList<QGraphicsItem*> items = fixture.Scene().items();
        const auto world = std::find_if(items.begin(), items.end(), [](QGraphicsItem* item) {
            return dynamic_cast<WorldItem*>(item) != nullptr;
        });
        return static_cast<WorldItem*>(*world)->pixmap().toImage().pixelColor(32, 32);
    };
    const ProjectSettings& settings = ProjectSettings::Instance();
    fixture.TriggerWithFile("actionLoadWorld", fixture.Path("small/a.png"));
    fixture.TriggerWithFile("actionLoadWorld", fixture.Path("small/b.png"));
    fixture.TriggerWithFile("actionSave", fixture.Path("moved/copy"));

    fixture.Trigger("actionUndo");

    QCOMPARE(shown(), QColor(Qt::red));
    QCOMPARE(settings.BackgroundFile(), "../small/a.png");
    fixture.SaveOver("actionSave", fixture.Path("moved/copy.xml"));
    fixture.Load(fixture.Path("moved/copy.xml"));
    QCOMPARE(shown(), QColor(Qt::red));
    QCOMPARE(QFileInfo(settings.BackgroundPath()).canonicalFilePath(),
             QFileInfo(fixture.Path("small/a.png")).canonicalFilePath());
}

void tst_WindowSaving::ClosesWithoutAQuestion()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());

    QVERIFY(fixture.window->close());

    QCOMPARE(fixture.answers.Asked(), QStringList{"Load"});
    QSettings settings("Halvern Works", "Tarvo Tools");
    settings.beginGroup("Brantle");
    QCOMPARE(settings.value("path").toString(), fixture.Path("small"));
    QVERIFY(settings.contains("geometry"));
    QVERIFY(settings.contains("windowState"));

    fixture.Restart();
    QCOMPARE(ProjectSettings::Instance().Dir().path(), fixture.Path("small"));
}

void tst_WindowSaving::AsksBeforeItCloses_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("isClosed");

    QTest::newRow("yes") << "Yes" << true;
    QTest::newRow("no") << "No" << false;
}

void tst_WindowSaving::AsksBeforeItCloses()
{
    QFETCH(QString, button);
    QFETCH(bool, isClosed);
    WindowFixture fixture;
    fixture.SetModified(true);
    fixture.answers.AddButton(button);

    fixture.Trigger("actionExit");

    QCOMPARE(
        fixture.answers.Asked(),
        QStringList{"Exit application: All unsaved work will be lost.\n\nAre you sure you want "
                    "to quit the application?"});
    QCOMPARE(fixture.window->isVisible(), !isClosed);
    QCOMPARE(QSettings("Halvern Works", "Tarvo Tools").contains("Brantle/path"), isClosed);
}

void tst_WindowSaving::AsksWhatIsBeingPainted()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.Trigger("actionTogglePaintMode");
    QWidget* viewport = fixture.View().viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, viewport->rect().center());
    QVERIFY(!fixture.IsModified());
    fixture.answers.AddButton("No");
    fixture.answers.AddButton("No");

    QVERIFY(!fixture.window->close());
    QVERIFY(fixture.IsModified());

    fixture.SetModified(false);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, viewport->rect().center());
    QTest::mousePress(viewport, Qt::LeftButton, {}, viewport->rect().center());
    fixture.SetModified(false);
    fixture.Trigger("actionNew");
    QCOMPARE(fixture.answers.Asked().size(), 3);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, viewport->rect().center());
}

void tst_WindowSaving::ClosesAfterARunningSave()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    fixture.SetModified(true);
    bool wasClosed = true;
    QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context, [&](const QString& line) {
        if (line.contains("Saving")) {
            wasClosed = fixture.window->close();
        }
    });

    fixture.SaveOver("actionSave", path);

    QVERIFY(!wasClosed);
    QVERIFY(!fixture.IsModified());
    QTRY_VERIFY(!fixture.window->isVisible());
    QCOMPARE(fixture.answers.Asked(), (QStringList{"Load", "Save",
                                                   "Save: small.xml already exists.\nDo you want "
                                                   "to replace it?"}));
}

void tst_WindowSaving::ShortcutsWaitForTheEndOfASave()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    fixture.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
    const auto press = [&fixture](Qt::Key key) {
        // The window manager may not have finished closing the dialog.
        QApplication::setActiveWindow(fixture.window.get());
        QTest::keyClick(fixture.window->windowHandle(), key, Qt::ControlModifier);
    };
    int pressed = 0;
    QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context, [&](const QString& line) {
        if (line.contains("Saving project")) {
            ++pressed;
            press(Qt::Key_P);
            press(Qt::Key_B);
        }
    });

    QVERIFY(fixture.window->SaveProjectFile(path));

    QCOMPARE(pressed, 1);
    QCOMPARE(fixture.Scene().Mode(), SceneMode::None);
    QCOMPARE(fixture.answers.Asked(), QStringList{"Load"});
    // The first key may be lost to the dialog that closes. Qt asks once more at the end.
    bool hasPainted = false;
    QTRY_VERIFY((hasPainted =
                     hasPainted || (press(Qt::Key_P), fixture.Scene().Mode() == SceneMode::Paint)));
}

void tst_WindowSaving::SavesANameThatIsBeingTyped()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    fixture.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(fixture.window.get()));
    auto* tree = fixture.Child<QTreeView>("treeLayers");
    tree->setCurrentIndex(tree->model()->index(0, 0));
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_F2);
    QTest::keyClicks(tree->viewport()->findChild<QLineEdit*>(), "sea");
    QObject context;
    connect(&Log::Instance(), &Log::MessageReceived, &context, [&](const QString& line) {
        if (line.contains("successfully saved")) {
            // As when the window loses the focus.
            tree->setFocus();
        }
    });

    QVERIFY(fixture.window->SaveProjectFile(path));

    QCOMPARE(Layers(fixture).LayerAt(0)->text(), "sea");
    QVERIFY(ReadBytes(path).contains("name=\"sea\""));
    QVERIFY(QFile::exists(fixture.Path("small/layers/sea.tga")));
    QVERIFY(!fixture.IsModified());
    fixture.Trigger("actionUndo");
    QCOMPARE(Layers(fixture).LayerAt(0)->text(), "red");
    QVERIFY(fixture.IsModified());
}

void tst_WindowSaving::WaitsForNoPipe()
{
    WindowFixture fixture;
    const QString pipe = fixture.Path("pipe.xml");
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    const QStringList error{QString("Error: Failed to open file '%1' for reading.").arg(pipe)};

    fixture.log.Take();
    QVERIFY(!fixture.window->LoadAreaTypesFile(pipe));
    QCOMPARE(fixture.log.Take(), error);

    fixture.window->LoadWorldImageFile(pipe);
    QCOMPARE(fixture.log.Take(),
             QStringList{QString("Error: Could not load background image '%1'.").arg(pipe)});

    fixture.Restart(pipe);
    QCOMPARE(fixture.log.Take(), QStringList{"Error: Failed to open file 'pipe.xml' for reading."});
    QCOMPARE(ProjectSettings::Instance().FileName(), QString());
}

QTEST_MAIN(tst_WindowSaving)
#include "tst_WindowSaving.moc"
