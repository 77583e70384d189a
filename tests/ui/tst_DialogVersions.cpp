#include "document/Document.h"
#include "document/StoredProject.h"
#include "document/versions/StoredPicture.h"
#include "document/versions/VersionStore.h"
#include "layers/Layer.h"
#include "tests/support/Files.h"
#include "tests/support/TargaFiles.h"
#include "tests/support/WindowFixture.h"
#include "ui/DialogVersions.h"
#include "ui/widgets/NoticeBar.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

namespace {

/// What a row shows.
QStringList RowTexts(const QAbstractItemModel& model, int row)
{
    QStringList texts;
    for (int column = 0; column < model.columnCount(); ++column) {
        texts.append(model.index(row, column).data().toString());
    }
    return texts;
}

} // namespace

/// "Earlier versions…" brings back what a save replaced and what was discarded.
class tst_DialogVersions : public QObject
{
    Q_OBJECT

private slots:
    void SaysThatThereIsNone();
    void BringsBackASavedState_data();
    void BringsBackASavedState();
    void BringsBackAReplacedBitmap();
    void BringsBackADocumentThatCouldNotBeRead();
    void ListsThePresentProjectFirst();
    void ShowsAPicture();
    void CopiesFiles();
    void LeavesUnsavedWorkToTheUser();
    void LeavesTheProjectWhenAVersionIsGone();
    void KeepsTheJournalOfWhatIsDiscarded_data();
    void KeepsTheJournalOfWhatIsDiscarded();
    void TellsWhenNothingCanBeKept();

private:
    static LayerList& Layers(const WindowFixture& fixture)
    {
        return fixture.window->GetDocument().Layers();
    }
    static QStringList LayerNames(const WindowFixture& fixture)
    {
        QStringList names;
        const QVector<Layer*> layers = Layers(fixture).Layers();
        for (const Layer* layer : layers) {
            names.append(layer->text());
        }
        return names;
    }
    static void RenameFirstLayer(const WindowFixture& fixture, const QString& name)
    {
        QAbstractItemModel* model = Layers(fixture).model();
        QVERIFY(model->setData(model->index(0, 0), name, Qt::EditRole));
    }
    /// Opens the dialog and leaves it by the answer.
    static void Answer(WindowFixture& fixture, const std::function<void(DialogVersions&)>& answer)
    {
        fixture.answers.Add([answer](QWidget& dialog) {
            auto* versions = qobject_cast<DialogVersions*>(&dialog);
            QVERIFY(versions);
            answer(*versions);
            if (versions->isVisible()) {
                QTest::keyClick(versions, Qt::Key_Escape);
            }
        });
        fixture.Trigger("actionVersions");
    }
    static QTreeView& View(const DialogVersions& dialog)
    {
        return *dialog.findChild<QTreeView*>("viewVersions");
    }
    static void OpenRow(WindowFixture& fixture, int row)
    {
        Answer(fixture, [row](DialogVersions& dialog) {
            QTreeView& view = View(dialog);
            view.setCurrentIndex(view.model()->index(row, 0));
            QTest::mouseClick(dialog.findChild<QPushButton*>("btnOpenCopy"), Qt::LeftButton);
        });
    }
};

void tst_DialogVersions::SaysThatThereIsNone()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    Answer(fixture, [](DialogVersions& dialog) {
        QVERIFY(dialog.findChild<QLabel*>("lblNoVersions")->isVisible());
        QVERIFY(!View(dialog).isVisible());
        QVERIFY(!dialog.findChild<QPushButton*>("btnOpenCopy")->isEnabled());
        QVERIFY(!dialog.findChild<QPushButton*>("btnCopyFiles")->isEnabled());
        QTest::keyClick(&dialog, Qt::Key_Return);
        QVERIFY(dialog.isVisible());
    });
    QCOMPARE(LayerNames(fixture), QStringList({"red", "blue"}));
}

using Opening = std::function<void(DialogVersions&)>;
Q_DECLARE_METATYPE(Opening)

void tst_DialogVersions::BringsBackASavedState_data()
{
    QTest::addColumn<Opening>("open");
    QTest::newRow("the button") << Opening([](DialogVersions& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>("btnOpenCopy"), Qt::LeftButton);
    });
    QTest::newRow("Enter in the list") << Opening([](DialogVersions& dialog) {
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QTRY_VERIFY(View(dialog).hasFocus());
        QTest::keyClick(&View(dialog), Qt::Key_Return);
    });
    QTest::newRow("a double click") << Opening([](DialogVersions& dialog) {
        QTreeView& view = View(dialog);
        const QPoint place = view.visualRect(view.model()->index(0, 0)).center();
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, place);
    });
}

void tst_DialogVersions::BringsBackASavedState()
{
    QFETCH(Opening, open);
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    const auto before = fixture.SavedBytes();
    Layer* red = Layers(fixture).Layers().constFirst();
    QImage mask = red->Image().copy();
    mask.fill(255);
    red->TakePaintedMask(mask);
    RenameFirstLayer(fixture, "green");
    fixture.Trigger("actionQuickSave");
    const QByteArray saved = ReadBytes(path);

    Answer(fixture, [&open](DialogVersions& dialog) {
        QCOMPARE(View(dialog).model()->rowCount(), 1);
        const QStringList row = RowTexts(*View(dialog).model(), 0);
        const QDateTime time = QDateTime::fromString(row[0], "yyyy-MM-dd HH:mm:ss");
        QVERIFY(qAbs(time.secsTo(QDateTime::currentDateTime())) < 60);
        QCOMPARE(row[1], QString("saved"));
        QVERIFY(row[2].endsWith("KiB"));
        QCOMPARE(row[3], QString("small"));
        open(dialog);
        QVERIFY(!dialog.isVisible());
    });

    QCOMPARE(fixture.SavedBytes(), before);
    QVERIFY(fixture.IsModified());
    QCOMPARE(fixture.window->GetDocument().Path(), QString());
    QVERIFY(fixture.window->windowTitle().startsWith("Unsaved"));
    QCOMPARE(ReadBytes(path), saved);
}

void tst_DialogVersions::BringsBackAReplacedBitmap()
{
    WindowFixture fixture;
    const QString theirs = fixture.WriteProject();
    const QByteArray bitmap = ReadBytes(fixture.Path("small/layers/red.tga"));
    fixture.Load(fixture.WriteProject("mine"));
    Layer* red = Layers(fixture).Layers().constFirst();
    QImage mask = red->Image().copy();
    mask.fill(255);
    red->TakePaintedMask(mask);
    RenameFirstLayer(fixture, "blue2");
    RenameFirstLayer(fixture, "red");
    auto* bar = fixture.Child<NoticeBar>("barNotice");

    fixture.TriggerWithFile("actionSave", fixture.Path("small/new.xml"));

    QVERIFY(ReadBytes(fixture.Path("small/layers/red.tga")) != bitmap);
    QCOMPARE(bar->findChild<QLabel*>("lblNotice")->text(),
             QStringLiteral("This save replaced 2 bitmaps of another project: blue, red. The old "
                            "ones are kept under Project \u2192 Earlier versions."));
    // A second save replaces its own.
    QTest::mouseClick(bar->findChild<QToolButton*>("btnNoticeClose"), Qt::LeftButton);
    fixture.Trigger("actionQuickSave");
    QVERIFY(!bar->isVisible());

    // Present project first: its saved state, what it replaced, then the same for the other one.
    Answer(fixture, [](DialogVersions& dialog) {
        QStringList rows;
        for (int row = 0; row < View(dialog).model()->rowCount(); ++row) {
            const QStringList texts = RowTexts(*View(dialog).model(), row);
            rows.append(texts[1] + ' ' + texts[3]);
        }
        QCOMPARE(rows, QStringList({"saved new", "replaced new", "replaced small"}));
    });
    for (const QString& name : {QString("new"), QString("small")}) {
        fixture.SetModified(false);
        Answer(fixture, [&name](DialogVersions& dialog) {
            QTreeView& view = View(dialog);
            int row = 0;
            while (RowTexts(*view.model(), row).at(1) != "replaced" ||
                   RowTexts(*view.model(), row).at(3) != name) {
                QVERIFY(++row < view.model()->rowCount());
            }
            view.setCurrentIndex(view.model()->index(row, 0));
            QTest::mouseClick(dialog.findChild<QPushButton*>("btnOpenCopy"), Qt::LeftButton);
        });
        QCOMPARE(LayerNames(fixture), QStringList({"red", "blue"}));
        QCOMPARE(Encoded(Layers(fixture).Layers().constFirst()->Image(),
                         raster::TargaPacking::RunLength),
                 bitmap);
        fixture.SetModified(false);
        fixture.Load(theirs);
    }
}

void tst_DialogVersions::BringsBackADocumentThatCouldNotBeRead()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    QByteArray document = ReadBytes(path);
    const QByteArray fault = "</layers";
    document.replace(fault, "<layer name='cut" + fault);
    WriteBytes(path, document);
    fixture.Load(path);
    QCOMPARE(fixture.log.Messages().constLast(), QString("Error: Failed to parse input."));
    fixture.SaveOver("actionSave", path);
    QVERIFY(ReadBytes(path) != document);

    OpenRow(fixture, 0);

    QCOMPARE(LayerNames(fixture), QStringList({"red", "blue"}));
    const VersionStore store;
    QCOMPARE(ReadBytes(store.Versions().constLast().Folder() + "/document.xml"), document);
}

void tst_DialogVersions::ListsThePresentProjectFirst()
{
    WindowFixture fixture;
    const QString first = fixture.WriteProject("first");
    const QString second = fixture.WriteProject("second");
    for (const QString& path : {first, second}) {
        fixture.Load(path);
        RenameFirstLayer(fixture, "green");
        fixture.Trigger("actionQuickSave");
    }
    const auto projects = [&fixture] {
        QStringList names;
        Answer(fixture, [&names](DialogVersions& dialog) {
            for (int row = 0; row < View(dialog).model()->rowCount(); ++row) {
                names.append(RowTexts(*View(dialog).model(), row).at(3));
            }
        });
        return names;
    };
    QCOMPARE(projects(), QStringList({"second", "first"}));
    fixture.Load(first);
    QCOMPARE(projects(), QStringList({"first", "second"}));
    fixture.Restart();
    QCOMPARE(projects(), QStringList({"second", "first"}));
}

void tst_DialogVersions::ShowsAPicture()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    RenameFirstLayer(fixture, "green");
    fixture.Trigger("actionQuickSave");
    for (const bool isKept : {false, true}) {
        Answer(fixture, [isKept](DialogVersions& dialog) {
            auto* label = dialog.findChild<QLabel*>("lblVersionPicture");
            const auto image = [label] {
                return label->pixmap(Qt::ReturnByValue)
                    .toImage()
                    .convertToFormat(QImage::Format_RGB32);
            };
            // Red is on top of blue, from 8 to 24 of 64 pixels.
            QTRY_COMPARE(image().pixel(40, 40), qRgb(255, 0, 0));
            QCOMPARE(image().size(), QSize(160, 160));
            QVERIFY(image().pixel(19, 40) != qRgb(255, 0, 0));
            QCOMPARE(image().pixel(20, 59), qRgb(255, 0, 0));
            QVERIFY(image().pixel(60, 40) != qRgb(255, 0, 0));
            QTRY_COMPARE(dialog.Selected()->Picture().isNull(), false);
            if (isKept) {
                QCOMPARE(image(),
                         dialog.Selected()->Picture().convertToFormat(QImage::Format_RGB32));
            }
        });
    }
}

void tst_DialogVersions::CopiesFiles()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    const auto before = FilesBelow(fixture.Path("small"));
    fixture.Load(path);
    RenameFirstLayer(fixture, "green");
    fixture.Trigger("actionQuickSave");
    QVERIFY(QDir().mkdir(fixture.Path("copies")));
    // The dialog comes to the front again when the ones that it opens are closed.
    fixture.answers.SetOtherwise(
        [](QWidget& dialog) { QVERIFY(qobject_cast<DialogVersions*>(&dialog)); });
    for (int i = 0; i < 2; ++i) {
        Answer(fixture, [&](DialogVersions& dialog) {
            fixture.answers.AddFile(fixture.Path("copies"));
            if (i == 1) {
                // The folder of the first time is there.
                fixture.answers.AddButton("OK");
            }
            QTest::mouseClick(dialog.findChild<QPushButton*>("btnCopyFiles"), Qt::LeftButton);
        });
        const QStringList made =
            QDir(fixture.Path("copies")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(made.size(), 1);
        QVERIFY(made.constFirst().startsWith("small 2"));
        QCOMPARE(FilesBelow(fixture.Path("copies/" + made.constFirst())), before);
    }
}

void tst_DialogVersions::LeavesUnsavedWorkToTheUser()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    RenameFirstLayer(fixture, "green");
    fixture.Trigger("actionQuickSave");
    RenameFirstLayer(fixture, "brown");
    fixture.answers.Add([&fixture](QWidget& dialog) {
        fixture.answers.AddButton("No");
        QTest::mouseClick(dialog.findChild<QPushButton*>("btnOpenCopy"), Qt::LeftButton);
    });
    fixture.Trigger("actionVersions");
    QCOMPARE(LayerNames(fixture), QStringList({"brown", "blue"}));
}

void tst_DialogVersions::LeavesTheProjectWhenAVersionIsGone()
{
    WindowFixture fixture;
    fixture.Load(fixture.WriteProject());
    RenameFirstLayer(fixture, "green");
    fixture.Trigger("actionQuickSave");
    Answer(fixture, [](DialogVersions& dialog) {
        QVERIFY(QDir(dialog.Selected()->Folder()).removeRecursively());
        QTest::mouseClick(dialog.findChild<QPushButton*>("btnOpenCopy"), Qt::LeftButton);
    });
    QCOMPARE(LayerNames(fixture), QStringList({"green", "blue"}));
    QCOMPARE(fixture.log.Messages().constLast(),
             QString("Error: The earlier version cannot be read any more."));
}

using Discarding = std::function<void(WindowFixture&)>;
Q_DECLARE_METATYPE(Discarding)

void tst_DialogVersions::KeepsTheJournalOfWhatIsDiscarded_data()
{
    QTest::addColumn<Discarding>("discard");
    QTest::addColumn<int>("kept");

    QTest::newRow("load") << Discarding([](WindowFixture& fixture) {
        fixture.answers.AddButton("Yes");
        fixture.Load(fixture.Path("other/other.xml"));
    }) << 1;
    QTest::newRow("close") << Discarding([](WindowFixture& fixture) {
        fixture.answers.AddButton("Yes");
        fixture.window->close();
    }) << 1;
    QTest::newRow("new project") << Discarding([](WindowFixture& fixture) {
        fixture.answers.AddButton("Yes");
        fixture.answers.Add([&fixture](QWidget& dialog) {
            dialog.findChild<QLineEdit*>("txtProjectName")->setText(fixture.Path("new/new.xml"));
            QDir().mkdir(fixture.Path("new"));
            QTest::mouseClick(dialog.findChild<QPushButton*>("btnOk"), Qt::LeftButton);
        });
        fixture.Trigger("actionNew");
    }) << 1;
    QTest::newRow("a load that is cancelled") << Discarding([](WindowFixture& fixture) {
        fixture.answers.AddButton("Yes");
        fixture.answers.AddCancel();
        fixture.Trigger("actionLoad");
    }) << 0;
    QTest::newRow("No") << Discarding([](WindowFixture& fixture) {
        fixture.answers.AddButton("No");
        fixture.Trigger("actionLoad");
    }) << 0;
}

void tst_DialogVersions::KeepsTheJournalOfWhatIsDiscarded()
{
    QFETCH(Discarding, discard);
    QFETCH(int, kept);
    WindowFixture fixture;
    fixture.WriteProject("other");
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    RenameFirstLayer(fixture, "green");

    discard(fixture);

    const QVector<Version> versions = VersionStore().VersionsOf(path);
    QCOMPARE(versions.size(), kept);
    if (kept == 0) {
        return;
    }
    QCOMPARE(versions.constFirst().Kind(), VersionKind::Discarded);
    fixture.SetModified(false);
    Answer(fixture, [](DialogVersions& dialog) {
        QCOMPARE(RowTexts(*View(dialog).model(), 0).at(1), QString("discarded"));
        QVERIFY(!dialog.findChild<QPushButton*>("btnCopyFiles")->isEnabled());
        QTest::mouseClick(dialog.findChild<QPushButton*>("btnOpenCopy"), Qt::LeftButton);
    });
    QCOMPARE(LayerNames(fixture), QStringList({"green", "blue"}));
    QVERIFY(fixture.IsModified());
}

void tst_DialogVersions::TellsWhenNothingCanBeKept()
{
    WindowFixture fixture;
    const QString path = fixture.WriteProject();
    fixture.Load(path);
    const QString versions = VersionStore::DefaultFolder();
    WriteBytes(versions, "no folder");
    RenameFirstLayer(fixture, "green");
    fixture.Trigger("actionQuickSave");
    QVERIFY(ReadBytes(path).contains("green"));
    QVERIFY(!fixture.IsModified());
    auto* bar = fixture.Child<NoticeBar>("barNotice");
    QVERIFY(bar->isVisible());
    QVERIFY(bar->findChild<QLabel*>("lblNotice")
                ->text()
                .startsWith("No earlier version could be kept: "));

    QVERIFY(QFile::remove(versions));
    fixture.Trigger("actionQuickSave");
    QVERIFY(!bar->isVisible());
}

QTEST_MAIN(tst_DialogVersions)
#include "tst_DialogVersions.moc"
