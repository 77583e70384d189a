#include "ui/Bookmarks.h"

#include "canvas/ViewMoves.h"
#include "tests/support/Files.h"
#include "tests/support/WideFixture.h"

#include <QAbstractButton>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QSettings>
#include <QTest>

class tst_Bookmarks : public QObject
{
    Q_OBJECT

private slots:
    void ListsBookmarks();
    void KeepsBookmarksOutOfTheProject();
    void BookmarksGoAlongWithASaveElsewhere();
    void NewProjectBeginsWithoutBookmarks();
    void BookmarksWithoutAFileJoinThoseOfTheFile();
    void SkipsDamagedBookmarks();
};

void tst_Bookmarks::ListsBookmarks()
{
    WideFixture editor;
    QVERIFY(!editor.Child<QMenu>("menuBookmarkRemove")->isEnabled());
    editor.View().Moves().Show({{1100, 900}, 4});
    editor.AddBookmark("  Harbour & quay ");
    editor.View().Moves().Show({{600, 700}, 2});
    editor.AddBookmark("Ford");
    editor.AddBookmark("Ford");
    // A name of blanks is none.
    editor.AddBookmark("  ");
    editor.answers.AddCancel();
    editor.Trigger("actionBookmarkAdd");
    const QStringList names{"Harbour && quay", "Ford", "Ford (2)"};
    QCOMPARE(editor.Bookmarks(), names);
    QCOMPARE(editor.Bookmarks("menuGo"), names);

    editor.TriggerBookmark("menuGo", "Harbour && quay");
    editor.VerifyShown({1100, 900}, 4);
    editor.Key(Qt::Key_Left, Qt::AltModifier);
    editor.VerifyShown({600, 700}, 2);

    editor.TriggerBookmark("menuBookmarkRemove", "Ford");
    QCOMPARE(editor.Bookmarks(), QStringList({"Harbour && quay", "Ford (2)"}));
}

void tst_Bookmarks::KeepsBookmarksOutOfTheProject()
{
    WideFixture editor;
    const auto files = FilesBelow(editor.Path("wide"));
    editor.View().Moves().Show({{1100, 900}, 4});
    editor.AddBookmark("Harbour");
    QCOMPARE(FilesBelow(editor.Path("wide")), files);
    editor.Load(editor.WriteProject());
    QCOMPARE(editor.Bookmarks(), QStringList());
    editor.Restart();
    QCOMPARE(editor.Bookmarks(), QStringList());
    editor.Load(editor.Path("wide/wide.xml"));
    QCOMPARE(editor.Bookmarks(), QStringList{"Harbour"});
    editor.TriggerBookmark("menuGo", "Harbour");
    editor.VerifyShown({1100, 900}, 4);
}

void tst_Bookmarks::BookmarksGoAlongWithASaveElsewhere()
{
    WideFixture editor;
    editor.AddBookmark("Harbour");
    QDir().mkpath(editor.Path("copy"));
    editor.TriggerWithFile("actionSave", editor.Path("copy/copy.xml"));
    editor.AddBookmark("Ford");
    QCOMPARE(editor.Bookmarks(), QStringList({"Harbour", "Ford"}));
    editor.Load(editor.Path("wide/wide.xml"));
    QCOMPARE(editor.Bookmarks(), QStringList{"Harbour"});
    editor.Load(editor.Path("copy/copy.xml"));
    QCOMPARE(editor.Bookmarks(), QStringList({"Harbour", "Ford"}));
}

/// Its file takes the place of a project that has some.
void tst_Bookmarks::NewProjectBeginsWithoutBookmarks()
{
    WideFixture editor;
    editor.AddBookmark("Harbour");
    editor.Trigger("actionQuickSave");
    QCOMPARE(editor.Bookmarks(), QStringList{"Harbour"});
    editor.answers.Add([&editor](QWidget& dialog) {
        dialog.findChild<QLineEdit*>("txtProjectName")->setText(editor.Path("wide/wide.xml"));
        QTest::mouseClick(dialog.findChild<QAbstractButton*>("btnOk"), Qt::LeftButton);
    });
    editor.Trigger("actionNew");
    QCOMPARE(editor.Bookmarks(), QStringList());
}

/// As when an earlier version is opened as a copy and saved to the project's file.
void tst_Bookmarks::BookmarksWithoutAFileJoinThoseOfTheFile()
{
    const WideFixture editor;
    const QString path = editor.Path("other.xml");
    Bookmarks bookmarks;
    bookmarks.Follow(path);
    bookmarks.Add({"Harbour", {1, 2}, 1});
    bookmarks.Forget();
    bookmarks.Add({"Harbour", {3, 4}, 1});
    bookmarks.Follow(path);
    QCOMPARE(bookmarks.All().size(), 2);
    QCOMPARE(bookmarks.All().at(0).place, QPointF(1, 2));
    QCOMPARE(bookmarks.All().at(1).name, QString("Harbour (2)"));
}

void tst_Bookmarks::SkipsDamagedBookmarks()
{
    WideFixture editor;
    editor.AddBookmark("Harbour");
    {
        QSettings settings("Halvern Works", "Quillmap");
        settings.beginGroup("bookmarks");
        const QStringList keys = settings.childKeys();
        QCOMPARE(keys.size(), 1);
        QStringList texts = settings.value(keys.first()).toStringList();
        texts << ""
              << "1 2 3"
              << "x 2 3 Name"
              << "1 nan 3 Name"
              << "1 2 1e30 High"
              << "1 2 -7 Low";
        settings.setValue(keys.first(), texts);
    }
    QCOMPARE(editor.Bookmarks(), QStringList({"Harbour", "High", "Low"}));
    editor.TriggerBookmark("menuGo", "High");
    QCOMPARE(editor.View().Zoom(), 12.5F);
    editor.TriggerBookmark("menuGo", "Low");
    QCOMPARE(editor.View().Zoom(), 0.0625F);
}

QTEST_MAIN(tst_Bookmarks)
#include "tst_Bookmarks.moc"
