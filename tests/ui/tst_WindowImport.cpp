#include "layers/Layer.h"
#include "layers/LayerList.h"
#include "layers/raster/Mask.h"
#include "tests/support/AreaMaps.h"
#include "tests/support/Files.h"
#include "tests/support/LiteralMap.h"
#include "tests/support/Masks.h"
#include "tests/support/MemoryLimit.h"
#include "tests/support/WindowFixture.h"
#include "ui/DockLayers.h"

#include <QAbstractButton>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QTest>
#include <QtEndian>

namespace {

/// A window with the small project, unmodified.
class Editor : public WindowFixture
{
public:
    Editor() { Load(WriteProject()); }

    LayerList& Layers() const { return *Child<DockLayers>("DockLayers")->List(); }
    QStringList LayerNames() const
    {
        QStringList names;
        const QVector<Layer*> layers = Layers().Layers();
        for (const Layer* layer : layers) {
            names.append(layer->text());
        }
        return names;
    }
    /// The map's colour at a place where both layers are painted and there is no zone.
    QColor Shown() const
    {
        QImage picture(64, 64, QImage::Format_ARGB32_Premultiplied);
        picture.fill(0);
        QPainter painter(&picture);
        Scene().render(&painter, QRectF(), QRectF(0, 0, 64, 64));
        return picture.pixelColor(20, 20);
    }
    /// Chooses a file in a file dialog and removes it before it is opened.
    void AddVanishingFile(const QString& path)
    {
        WriteBytes(path, "x");
        answers.Add([path](QWidget& dialog) {
            dialog.findChild<QLineEdit*>("fileNameEdit")->setText(path);
            static_cast<QDialog*>(&dialog)->accept();
            QFile::remove(path);
        });
    }
};

/// A map of 8 usage types with a layer that has these flags.
QByteArray Map(const QImage& mask, int world, quint32 flags)
{
    return literal::WriteMap({{mask, flags, 0}}, mask.size(), {world, world}, 8, 0);
}

/// The left half is set.
QImage HalfMask(QSize size)
{
    QImage mask = raster::BlankMask(size);
    for (int y = 0; y < size.height(); ++y) {
        memset(mask.scanLine(y), 255, static_cast<size_t>(size.width() / 2));
    }
    return mask;
}

} // namespace

class tst_WindowImport : public QObject
{
    Q_OBJECT

private slots:
    void TheMapStaysAsItWasWithoutAFile_data();
    void TheMapStaysAsItWasWithoutAFile();
    void TakesBytesThatLookLikeLineEnds_data();
    void TakesBytesThatLookLikeLineEnds();
    void AHugeMapTakesLittleMemory();
    void AMapThatCannotBeReadLeavesNothing_data();
    void AMapThatCannotBeReadLeavesNothing();
    void ReplacesUnsavedWorkWhenTheUserAgrees();
    void CancelChangesNothing_data();
    void CancelChangesNothing();
};

void tst_WindowImport::TheMapStaysAsItWasWithoutAFile_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("answer");

    for (const char* action : {"actionLoad", "actionImportMap"}) {
        for (const char* answer : {"No", "Cancel", "a file that is gone"}) {
            QTest::addRow("%s: %s", action, answer) << action << answer;
        }
    }
}

void tst_WindowImport::TheMapStaysAsItWasWithoutAFile()
{
    QFETCH(QString, action);
    QFETCH(QString, answer);
    Editor editor;
    // No layer is current, so both are shown only because they are checked.
    QTest::mouseClick(editor.Child<QAbstractButton>("btnHideAll"), Qt::LeftButton);
    Layer* red = editor.Layers().LayerAt(0);
    red->setCheckState(Qt::Checked);
    editor.Layers().LayerAt(1)->setCheckState(Qt::Checked);
    QCOMPARE(editor.Shown(), QColor(Qt::red));
    editor.SetModified(answer == "No");
    if (answer == "No") {
        editor.answers.AddButton(answer);
    } else if (answer == "Cancel") {
        editor.answers.AddCancel();
    } else {
        editor.AddVanishingFile(editor.Path(action == "actionLoad" ? "gone.xml" : "gone.map"));
    }

    editor.Trigger(action.toLatin1());
    QCOMPARE(editor.Shown(), QColor(Qt::red));
    red->setCheckState(Qt::Unchecked);

    QCOMPARE(editor.Shown(), QColor(Qt::blue));
}

void tst_WindowImport::TakesBytesThatLookLikeLineEnds_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("world");
    QTest::addColumn<uint>("flags");
    QTest::addColumn<QStringList>("names");

    QTest::newRow("pixels") << QSize(64, 0x0D) << 640 << 2U << QStringList{"usage1"};
    QTest::newRow("metres") << QSize(64, 64) << 0x0D00 << 2U << QStringList{"usage1"};
    QTest::newRow("words") << QSize(64, 64) << 640 << 0x0DU
                           << QStringList{"usage0", "usage2", "usage3"};
    QTest::newRow("all") << QSize(64, 0x0D) << 0x0A0D << 0x0DU
                         << QStringList{"usage0", "usage2", "usage3"};
}

void tst_WindowImport::TakesBytesThatLookLikeLineEnds()
{
    QFETCH(QSize, size);
    QFETCH(int, world);
    QFETCH(uint, flags);
    QFETCH(QStringList, names);
    Editor editor;
    SetFlagTypes(8, 0);
    const QImage mask = HalfMask(size);
    WriteBytes(editor.Path("ends.map"), Map(mask, world, flags));

    editor.TriggerWithFile("actionImportMap", editor.Path("ends.map"));

    const ProjectSettings& settings = ProjectSettings::Instance();
    QCOMPARE(settings.LayerSize(), size);
    QCOMPARE(settings.WorldWidth(), world);
    QCOMPARE(settings.WorldHeight(), world);
    QCOMPARE(editor.LayerNames(), names);
    const QVector<Layer*> layers = editor.Layers().Layers();
    for (const Layer* layer : layers) {
        QVERIFY(Indices(layer->Image()) == Indices(mask));
    }
}

/// A file of few bytes may say that its map is huge; the background is shown on it.
void tst_WindowImport::AHugeMapTakesLittleMemory()
{
    Editor editor;
    QImage picture(64, 64, QImage::Format_RGB32);
    picture.fill(Qt::green);
    QVERIFY(picture.save(editor.Path("world.png")));
    editor.TriggerWithFile("actionLoadWorld", editor.Path("world.png"));
    editor.answers.AddButton("Yes");
    SetFlagTypes(8, 0);
    QByteArray map = Map(HalfMask({64, 64}), 1280, 0).left(120);
    constexpr qint32 side = 60000;
    for (const int place : {0, 4}) {
        qToLittleEndian(side, map.data() + place);
    }
    WriteBytes(editor.Path("huge.map"), map);
    editor.log.Take();
    const MemoryLimit limit(128 * AMebibyte);

    editor.TriggerWithFile("actionImportMap", editor.Path("huge.map"));

    QCOMPARE(ProjectSettings::Instance().LayerSize(), QSize(side, side));
    QCOMPARE(editor.log.Take(),
             QStringList({"Info: Importing map, please wait ...", "Info: Import done"}));
    QCOMPARE(editor.Scene().sceneRect(), QRectF(0, 0, side, side));
    QCOMPARE(editor.Shown(), QColor(Qt::green));
}

void tst_WindowImport::AMapThatCannotBeReadLeavesNothing_data()
{
    QTest::addColumn<bool>("isRead");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("more flag types than a map holds")
        << true
        << QStringList{TooManyTypes, "Error: Reading map file failed.",
                       "Error: Failed to parse input."};
    QTest::newRow("a disk that fails")
        << false
        << QStringList{"Info: Importing map, please wait ...", "Error: Reading map file failed.",
                       "Error: Failed to parse input."};
}

void tst_WindowImport::AMapThatCannotBeReadLeavesNothing()
{
    QFETCH(bool, isRead);
    QFETCH(QStringList, messages);
    Editor editor;
    SetFlagTypes(isRead ? 33 : 8, 0);
    const QString path = editor.Path("broken.map");
    if (isRead) {
        WriteBytes(path, Map(HalfMask({32, 32}), 1280, 2));
    } else {
        // This file can be opened, but its first bytes cannot be read.
        QVERIFY(QFile::link("/proc/self/mem", path));
    }
    editor.log.Take();

    editor.TriggerWithFile("actionImportMap", path);

    QCOMPARE(editor.log.Take(), messages);
    QVERIFY(editor.Layers().IsEmpty());
    const ProjectSettings& settings = ProjectSettings::Instance();
    QCOMPARE(settings.LayerSize(), QSize(64, 64));
    QCOMPARE(settings.WorldWidth(), 640);
    QCOMPARE(settings.WorldHeight(), 640);
    QCOMPARE(editor.Child<QLabel>("lblWorldScaleX")->text(), "X: 1 px = 10 m");
    QCOMPARE(editor.Scene().sceneRect(), QRectF(0, 0, 64, 64));
    QVERIFY(editor.Action("actionImportMap")->isEnabled());
    QVERIFY(!editor.Action("actionTogglePaintMode")->isEnabled());
    QVERIFY(editor.Child<QWidget>("pgrStatus")->isHidden());
}

void tst_WindowImport::ReplacesUnsavedWorkWhenTheUserAgrees()
{
    Editor editor;
    editor.SetModified(true);
    SetFlagTypes(8, 0);
    WriteBytes(editor.Path("next.map"), Map(HalfMask({64, 64}), 1280, 2));
    editor.answers.AddButton("Yes");

    editor.TriggerWithFile("actionImportMap", editor.Path("next.map"));

    QCOMPARE(editor.answers.Asked(),
             (QStringList{"Load",
                          "Import area map: This action will remove all current data. All unsaved "
                          "work will be lost.\n\nAre you sure you want to continue?",
                          "Import area map"}));
    QCOMPARE(editor.LayerNames(), QStringList{"usage1"});
    QCOMPARE(ProjectSettings::Instance().WorldWidth(), 1280);
    QVERIFY(editor.IsModified());
}

void tst_WindowImport::CancelChangesNothing_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<bool>("isModified");

    for (const char* action : {"actionImportMap", "actionImportAreas", "actionLoadWorld"}) {
        QTest::addRow("%s, saved", action) << action << false;
        QTest::addRow("%s, unsaved", action) << action << true;
    }
}

void tst_WindowImport::CancelChangesNothing()
{
    QFETCH(QString, action);
    QFETCH(bool, isModified);
    Editor editor;
    editor.SetModified(isModified);
    editor.log.Take();
    // The project has flag types, and may have unsaved layers.
    if (action == "actionImportAreas" || (action == "actionImportMap" && isModified)) {
        editor.answers.AddButton("Yes");
    }
    editor.answers.AddCancel();

    editor.Trigger(action.toLatin1());

    const ProjectSettings& settings = ProjectSettings::Instance();
    QCOMPARE(editor.IsModified(), isModified);
    QCOMPARE(editor.log.Take(), QStringList());
    QCOMPARE(editor.LayerNames(), (QStringList{"red", "blue"}));
    QCOMPARE(editor.Layers().LayerAt(1)->UsageFlags(), 2U);
    QCOMPARE(settings.FlagTypes().usages, (QVector<QString>{"Town", "Farm"}));
    QCOMPARE(settings.BackgroundFile(), QString());
    QCOMPARE(editor.window->windowTitle(), "small - Tarvo Ledger Tool");
}

QTEST_MAIN(tst_WindowImport)
#include "tst_WindowImport.moc"
