#include "app/BackgroundPicture.h"

#include "app/ProjectSettings.h"
#include "tests/support/Files.h"
#include "tests/support/LogSpy.h"
#include "tests/support/ProjectFixture.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <sys/stat.h>

namespace {

/// A project in "old" beside a folder "new".
class TwoFolders
{
public:
    TwoFolders()
    {
        QDir().mkpath(Path("old"));
        QDir().mkpath(Path("new"));
        ProjectSettings::Instance().SetDir(QDir(Path("old")));
    }

    QString Path(const QString& name) const { return m_project.Path(name); }
    void CarryPicture(const QString& backgroundFile) const
    {
        ProjectSettings::Instance().SetBackgroundFile(backgroundFile);
        CarryBackgroundTo(QDir(Path("new")));
    }
    QString BackgroundFile() const { return ProjectSettings::Instance().BackgroundFile(); }

    LogSpy log;

private:
    ProjectFixture m_project;
};

} // namespace

class tst_BackgroundPicture : public QObject
{
    Q_OBJECT

private slots:
    void IsCopiedToTheSamePlace_data();
    void IsCopiedToTheSamePlace();
    void ReplacesAnotherPicture();
    void NothingToCarry();
    void IsThereAlready();
    void IsTheSameFileByALink();
    void ReplacesALinkAndNotItsTarget();
    void ReplacesNothingOutsideTheFolder_data();
    void ReplacesNothingOutsideTheFolder();
    void APictureThatIsGoneIsStillNamed();
    void APipeInThePicturesPlaceIsNotWaitedFor();
    void APictureThatCannotBeCopiedIsNamedAtItsOldPlace();
};

void tst_BackgroundPicture::IsCopiedToTheSamePlace_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("beside the document") << "world.png";
    QTest::newRow("in a folder") << "pictures/of/world.png";
    QTest::newRow("outside, where nothing is") << "../other/world.png";
}

void tst_BackgroundPicture::IsCopiedToTheSamePlace()
{
    QFETCH(QString, file);
    TwoFolders folders;
    WriteBytes(folders.Path("old/" + file), "picture");
    if (file.startsWith("..")) {
        // From the new folder the path leads to another place.
        QVERIFY(QDir().rename(folders.Path("new"), folders.Path("moved")));
        QDir().mkpath(folders.Path("deep/new"));
        ProjectSettings::Instance().SetBackgroundFile(file);
        CarryBackgroundTo(QDir(folders.Path("deep/new")));
        QCOMPARE(ReadBytes(folders.Path("deep/other/world.png")), "picture");
    } else {
        folders.CarryPicture(file);
        QCOMPARE(ReadBytes(folders.Path("new/" + file)), "picture");
    }
    QCOMPARE(ReadBytes(folders.Path("old/" + file)), "picture");
    QCOMPARE(folders.BackgroundFile(), file);
    QCOMPARE(folders.log.Take(), QStringList());
}

void tst_BackgroundPicture::ReplacesAnotherPicture()
{
    const TwoFolders folders;
    WriteBytes(folders.Path("old/world.png"), "picture");
    WriteBytes(folders.Path("new/world.png"), "another one");

    folders.CarryPicture("world.png");

    QCOMPARE(ReadBytes(folders.Path("new/world.png")), "picture");
    QCOMPARE(FilesBelow(folders.Path("new")).keys(), QStringList{"world.png"});
}

void tst_BackgroundPicture::NothingToCarry()
{
    const TwoFolders folders;
    folders.CarryPicture("");
    QCOMPARE(folders.BackgroundFile(), QString());
    QVERIFY(FilesBelow(folders.Path("new")).isEmpty());
}

void tst_BackgroundPicture::IsThereAlready()
{
    const TwoFolders folders;
    WriteBytes(folders.Path("picture.png"), "picture");

    folders.CarryPicture("../picture.png");

    QCOMPARE(ReadBytes(folders.Path("picture.png")), "picture");
    QCOMPARE(folders.BackgroundFile(), "../picture.png");
}

void tst_BackgroundPicture::IsTheSameFileByALink()
{
    const TwoFolders folders;
    WriteBytes(folders.Path("old/world.png"), "picture");
    QVERIFY(QFile::link(folders.Path("old/world.png"), folders.Path("new/world.png")));

    folders.CarryPicture("world.png");

    QCOMPARE(ReadBytes(folders.Path("old/world.png")), "picture");
    QVERIFY(QFileInfo(folders.Path("new/world.png")).isSymLink());
}

void tst_BackgroundPicture::ReplacesALinkAndNotItsTarget()
{
    const TwoFolders folders;
    WriteBytes(folders.Path("old/world.png"), "picture");
    WriteBytes(folders.Path("elsewhere.png"), "another one");
    QVERIFY(QFile::link(folders.Path("elsewhere.png"), folders.Path("new/world.png")));

    folders.CarryPicture("world.png");

    QCOMPARE(ReadBytes(folders.Path("new/world.png")), "picture");
    QCOMPARE(ReadBytes(folders.Path("elsewhere.png")), "another one");
}

void tst_BackgroundPicture::ReplacesNothingOutsideTheFolder_data()
{
    QTest::addColumn<bool>("isByALink");

    QTest::newRow("upward") << false;
    QTest::newRow("by a folder that is a link") << true;
}

void tst_BackgroundPicture::ReplacesNothingOutsideTheFolder()
{
    QFETCH(bool, isByALink);
    TwoFolders folders;
    const QString file = isByALink ? "pictures/world.png" : "../deep/world.png";
    WriteBytes(folders.Path("old/pictures/world.png"), "picture");
    WriteBytes(folders.Path("outside/world.png"), "another one");
    QString place;
    if (isByALink) {
        QVERIFY(QFile::link(folders.Path("outside"), folders.Path("new/pictures")));
        place = folders.Path("new/pictures/world.png");
        folders.CarryPicture(file);
    } else {
        WriteBytes(folders.Path("deep/world.png"), "picture");
        WriteBytes(folders.Path("far/deep/world.png"), "another one");
        QDir().mkpath(folders.Path("far/new"));
        place = folders.Path("far/new/../deep/world.png");
        ProjectSettings::Instance().SetBackgroundFile(file);
        CarryBackgroundTo(QDir(folders.Path("far/new")));
    }

    QCOMPARE(ReadBytes(place), "another one");
    QCOMPARE(folders.log.Take(),
             QStringList{QString("Error: The background image was not copied to '%1': there is "
                                 "another file, outside the project's folder.")
                             .arg(place)});
    // The old picture is still found.
    QCOMPARE(folders.BackgroundFile(),
             isByALink ? "../old/pictures/world.png" : "../../deep/world.png");
}

void tst_BackgroundPicture::APictureThatIsGoneIsStillNamed()
{
    const TwoFolders folders;

    folders.CarryPicture("gone.png");

    QCOMPARE(folders.BackgroundFile(), "../old/gone.png");
    QVERIFY(FilesBelow(folders.Path("new")).isEmpty());
}

void tst_BackgroundPicture::APipeInThePicturesPlaceIsNotWaitedFor()
{
    const TwoFolders folders;
    QCOMPARE(mkfifo(qPrintable(folders.Path("old/world.png")), 0600), 0);

    folders.CarryPicture("world.png");

    QCOMPARE(folders.BackgroundFile(), "../old/world.png");
    QVERIFY(FilesBelow(folders.Path("new")).isEmpty());
}

void tst_BackgroundPicture::APictureThatCannotBeCopiedIsNamedAtItsOldPlace()
{
    const TwoFolders folders;
    WriteBytes(folders.Path("old/pictures/world.png"), "picture");
    // No folder can be made where a file is.
    WriteBytes(folders.Path("new/pictures"), "a file");

    folders.CarryPicture("pictures/world.png");

    QCOMPARE(folders.BackgroundFile(), "../old/pictures/world.png");
    QCOMPARE(ReadBytes(folders.Path("new/pictures")), "a file");
}

QTEST_MAIN(tst_BackgroundPicture)
#include "tst_BackgroundPicture.moc"
