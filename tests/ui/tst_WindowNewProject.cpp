#include "document/Document.h"
#include "layers/LayerList.h"
#include "tests/support/Files.h"
#include "tests/support/WindowFixture.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QDirIterator>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

namespace {

/// Fills in the dialog for a new project and presses OK.
ModalAnswers::Answer NewProject(int layerSize, int worldSize, const QString& path,
                                const QString& background = {}, const QString& flags = {})
{
    return [=](QWidget& dialog) {
        dialog.findChild<QSpinBox*>("spinLayerSizeX")->setValue(layerSize);
        dialog.findChild<QSpinBox*>("spinWorldSizeX")->setValue(worldSize);
        dialog.findChild<QLineEdit*>("txtWorldImage")->setText(background);
        dialog.findChild<QLineEdit*>("txtAreaFlagsFile")->setText(flags);
        dialog.findChild<QLineEdit*>("txtProjectName")->setText(path);
        QTest::mouseClick(dialog.findChild<QPushButton*>("btnOk"), Qt::LeftButton);
    };
}

} // namespace

/// "New project", from its question to what it leaves.
class tst_WindowNewProject : public QObject
{
    Q_OBJECT

private slots:
    void BeginsAProject();
    void NeedsNoFiles();
    void UsesThePictureWhereItIs_data();
    void UsesThePictureWhereItIs();
    void AsksFirst_data();
    void AsksFirst();
    void ProjectThatCannotBeSavedHasNoName();
};

void tst_WindowNewProject::BeginsAProject()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    auto* query = fixture.Child<QAbstractButton>("btnToggleQueryTer");
    query->click();
    QVERIFY(query->isChecked());
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::magenta);
    QVERIFY(picture.save(fixture.Path("small/world.png")));
    WriteBytes(fixture.Path("types.xml"),
               R"(<areas><usages><usage name="Only"/></usages></areas>)");
    QDir().mkpath(fixture.Path("fresh"));
    fixture.answers.Add(NewProject(128, 1280, fixture.Path("fresh/fresh.xml"),
                                   fixture.Path("small/world.png"), fixture.Path("types.xml")));

    fixture.Trigger("actionNew");

    const ProjectSettings& settings = ProjectSettings::Instance();
    QCOMPARE(fixture.window->windowTitle(), "fresh - Tarvo Ledger Tool");
    QVERIFY(fixture.window->GetDocument().Layers().IsEmpty());
    QCOMPARE(settings.LayerSize(), QSize(128, 128));
    QCOMPARE(settings.WorldWidth(), 1280);
    QCOMPARE(settings.FlagTypes().usages, QVector<QString>{"Only"});
    QVERIFY(settings.FlagTypes().values.isEmpty());
    QCOMPARE(settings.BackgroundColor().rgba(), 2U);
    QCOMPARE(settings.BackgroundFile(), "../small/world.png");
    QVERIFY(!settings.IsModified());
    QVERIFY(!query->isChecked());
    QVERIFY(!fixture.Action("actionTogglePaintMode")->isEnabled());
    QVERIFY(!fixture.Child<QWidget>("btnHideAll")->isEnabled());
    QCOMPARE(fixture.Child<QGroupBox>("gboLayerUsageFlags")->findChildren<QCheckBox*>().size(), 1);
    QCOMPARE(fixture.Scene().sceneRect(), QRectF(0, 0, 128, 128));
    QVERIFY(!ReadBytes(fixture.Path("fresh/fresh.xml")).contains("selected"));
}

void tst_WindowNewProject::NeedsNoFiles()
{
    WindowFixture fixture;
    fixture.log.Take();
    fixture.answers.Add(NewProject(64, 640, fixture.Path("fresh.xml")));

    fixture.Trigger("actionNew");

    QCOMPARE(fixture.log.Take(), (QStringList{"Info: Saving project 'fresh'...",
                                              "Success: Project saved to file 'fresh.xml'."}));
    QCOMPARE(ProjectSettings::Instance().BackgroundFile(), QString());
    QVERIFY(fixture.Action("actionSave")->isEnabled());
}

void tst_WindowNewProject::UsesThePictureWhereItIs_data()
{
    QTest::addColumn<QString>("project");
    QTest::addColumn<QString>("picture");
    QTest::addColumn<QString>("stored");

    QTest::newRow("beside it") << "fresh/w2.xml"
                               << "fresh/world.png"
                               << "world.png";
    QTest::newRow("below it") << "w2.xml"
                              << "fresh/world.png"
                              << "fresh/world.png";
    QTest::newRow("above it") << "deep/er/w2.xml"
                              << "world.png"
                              << "../../world.png";
    QTest::newRow("in the folder of the former project") << "fresh/w2.xml"
                                                         << "small/world.png"
                                                         << "../small/world.png";
    QTest::newRow("beside it, through a link") << "deep/link/w2.xml"
                                               << "fresh/world.png"
                                               << "world.png";
    QTest::newRow("elsewhere, through a link") << "deep/link/w2.xml"
                                               << "deep/world.png"
                                               << "../deep/world.png";
}

void tst_WindowNewProject::UsesThePictureWhereItIs()
{
    QFETCH(QString, project);
    QFETCH(QString, picture);
    QFETCH(QString, stored);
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    QDir().mkpath(fixture.Path("fresh"));
    QDir().mkpath(fixture.Path("deep/er"));
    QVERIFY(QFile::link(fixture.Path("fresh"), fixture.Path("deep/link")));
    QImage world(4, 4, QImage::Format_RGB32);
    world.fill(Qt::magenta);
    QVERIFY(world.save(fixture.Path(picture)));
    fixture.log.Take();
    fixture.answers.Add(NewProject(64, 640, fixture.Path(project), fixture.Path(picture)));

    fixture.Trigger("actionNew");

    QCOMPARE(fixture.log.Take(), (QStringList{"Info: Saving project 'w2'...",
                                              "Success: Project saved to file 'w2.xml'."}));
    QCOMPARE(ProjectSettings::Instance().BackgroundFile(), stored);
    QVERIFY(
        ReadBytes(fixture.Path(project)).contains("file=\"" + stored.toUtf8() + "\" rgba=\"2\""));
    QCOMPARE(QFileInfo(ProjectSettings::Instance().BackgroundPath()).canonicalFilePath(),
             fixture.Path(picture));
    QStringList pictures;
    for (QDirIterator files(fixture.Path("."), {"*.png"}, QDir::Files,
                            QDirIterator::Subdirectories);
         files.hasNext();) {
        pictures.append(QDir::cleanPath(files.next()));
    }
    QCOMPARE(pictures, QStringList{fixture.Path(picture)});
}

void tst_WindowNewProject::AsksFirst_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("questions");

    QTest::newRow("yes") << "Yes" << 2;
    QTest::newRow("no") << "No" << 1;
}

void tst_WindowNewProject::AsksFirst()
{
    QFETCH(QString, button);
    QFETCH(int, questions);
    WindowFixture fixture;
    fixture.SetModified(true);
    fixture.answers.AddButton(button);
    if (questions > 1) {
        fixture.answers.AddCancel();
    }

    fixture.Trigger("actionNew");

    QCOMPARE(fixture.answers.Asked().size(), questions);
    QCOMPARE(fixture.answers.Asked().constFirst(),
             "New project: This action will remove all current data. All unsaved work will be "
             "lost.\n\nAre you sure you want to continue?");
    QVERIFY(fixture.IsModified());
}

void tst_WindowNewProject::ProjectThatCannotBeSavedHasNoName()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    fixture.log.Take();
    fixture.answers.Add(NewProject(64, 640, fixture.Path("nowhere/fresh.xml")));

    fixture.Trigger("actionNew");

    QCOMPARE(fixture.log.Take(),
             QStringList{"Error: Failed to open file 'fresh.xml' for writing."});
    QCOMPARE(fixture.window->windowTitle(), "Unsaved - Tarvo Ledger Tool");
    QCOMPARE(ProjectSettings::Instance().FileName(), QString());
    QCOMPARE(ProjectSettings::Instance().Name(), QString());
    QVERIFY(ProjectSettings::Instance().Dir().path() != fixture.Path("small"));
    QVERIFY(fixture.IsModified());
    QVERIFY(fixture.window->GetDocument().Layers().IsEmpty());
}

QTEST_MAIN(tst_WindowNewProject)
#include "tst_WindowNewProject.moc"
