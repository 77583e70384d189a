#include "ui/DialogNewProject.h"

#include "tests/support/Files.h"
#include "tests/support/Modals.h"
#include "tests/support/ProjectFixture.h"

#include <QApplication>
#include <QFile>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScopeGuard>
#include <QSpinBox>
#include <QTest>

#include <unistd.h>

namespace {

/// Root may write any file, so permissions are tested as nobody while this object exists.
class NotRoot
{
public:
    NotRoot() { Become(m_user == 0 ? 65534 : m_user); }
    ~NotRoot() { Become(m_user); }
    Q_DISABLE_COPY_MOVE(NotRoot)

private:
    static void Become(uid_t user) { QCOMPARE(setreuid(user, uid_t(-1)), 0); }

    const uid_t m_user = getuid();
};

void Press(DialogNewProject& dialog, const char* button)
{
    QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
}

QLineEdit* Line(const DialogNewProject& dialog, const char* name)
{
    return dialog.findChild<QLineEdit*>(name);
}

} // namespace

class tst_DialogNewProject : public QObject
{
    Q_OBJECT

private slots:
    void GivesWhatWasEntered();
    void PutsChosenFilesIntoTheirLines();
    void AppendsTheSuffix_data();
    void AppendsTheSuffix();
    void AsksAgainWhenTheAppendedNameExists_data();
    void AsksAgainWhenTheAppendedNameExists();
    void NeedsAProjectFile();
    void NeedsAProjectFileThatCanBeWritten();
    void Cancels();
    void EnterPressesNoButton();
    void TellsThatTheFolderHoldsAnotherProject_data();
    void TellsThatTheFolderHoldsAnotherProject();
    void ClipsNothing_data();
    void ClipsNothing();

private:
    ProjectFixture m_project;
};

void tst_DialogNewProject::GivesWhatWasEntered()
{
    DialogNewProject dialog;
    dialog.findChild<QWidget*>("spinLayerSizeX")->setFocus();
    QTest::keyClicks(dialog.findChild<QWidget*>("spinLayerSizeX"), "\b\b\b\b512");
    dialog.findChild<QObject*>("spinWorldSizeX")->setProperty("value", 4000);
    QTest::keyClicks(Line(dialog, "txtWorldImage"), "/a/world.png");
    QTest::keyClicks(Line(dialog, "txtAreaFlagsFile"), "/a/areas.xml");
    QTest::keyClicks(Line(dialog, "txtProjectName"), "/a/project.xml");

    QCOMPARE(dialog.findChild<QObject*>("spinLayerSizeX")->property("value").toInt(),
             dialog.LayerSize());
    QCOMPARE(dialog.WorldSize(), 4000);
    QCOMPARE(dialog.BackgroundPath(), "/a/world.png");
    QCOMPARE(dialog.AreaFlagsPath(), "/a/areas.xml");
    QCOMPARE(dialog.ProjectPath(), "/a/project.xml");
}

void tst_DialogNewProject::PutsChosenFilesIntoTheirLines()
{
    WriteBytes(m_project.Path("world.png"), "x");
    WriteBytes(m_project.Path("areas.xml"), "x");
    DialogNewProject dialog;
    dialog.show();
    ModalAnswers answers;
    answers.AddFile("world.png");
    answers.AddFile("areas.xml");
    answers.AddFile("new.xml");
    answers.AddCancel();

    Press(dialog, "btnSelectWorldImg");
    Press(dialog, "btnSelectAreaFlags");
    Press(dialog, "btnSaveProject");
    // Cancelling the file dialog keeps the earlier choice.
    Press(dialog, "btnSelectWorldImg");

    QCOMPARE(answers.Asked(), (QStringList{"Load background image", "Import area flag types",
                                           "Save", "Load background image"}));
    QCOMPARE(Line(dialog, "txtWorldImage")->text(), m_project.Path("world.png"));
    QCOMPARE(Line(dialog, "txtAreaFlagsFile")->text(), m_project.Path("areas.xml"));
    QCOMPARE(Line(dialog, "txtProjectName")->text(), m_project.Path("new.xml"));
}

void tst_DialogNewProject::AppendsTheSuffix_data()
{
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QString>("path");

    QTest::newRow("none") << "proj"
                          << "proj.xml";
    QTest::newRow("there") << "proj.xml"
                           << "proj.xml";
    QTest::newRow("in capitals") << "proj.XML"
                                 << "proj.XML.xml";
    QTest::newRow("another") << "proj.txt"
                             << "proj.txt.xml";
}

void tst_DialogNewProject::AppendsTheSuffix()
{
    QFETCH(QString, chosen);
    QFETCH(QString, path);
    DialogNewProject dialog;
    dialog.show();
    ModalAnswers answers;
    answers.AddFile(chosen);

    Press(dialog, "btnSaveProject");

    QCOMPARE(dialog.ProjectPath(), m_project.Path(path));
}

void tst_DialogNewProject::AsksAgainWhenTheAppendedNameExists_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("isTaken");

    QTest::newRow("yes") << "Yes" << true;
    QTest::newRow("no") << "No" << false;
}

void tst_DialogNewProject::AsksAgainWhenTheAppendedNameExists()
{
    QFETCH(QString, button);
    QFETCH(bool, isTaken);
    WriteBytes(m_project.Path("old.XML.xml"), "x");
    DialogNewProject dialog;
    dialog.show();
    ModalAnswers answers;
    answers.AddFile("old.XML");
    answers.AddButton(button);

    Press(dialog, "btnSaveProject");

    QCOMPARE(answers.Asked().constLast(),
             "Save: old.XML.xml already exists.\nDo you want to replace it?");
    QCOMPARE(dialog.ProjectPath(), isTaken ? m_project.Path("old.XML.xml") : QString());
}

void tst_DialogNewProject::NeedsAProjectFile()
{
    DialogNewProject dialog;
    dialog.show();
    ModalAnswers answers;
    answers.AddButton("OK");

    Press(dialog, "btnOk");

    QCOMPARE(answers.Asked(), QStringList{"Dialog: No project file selected"});
    QVERIFY(dialog.isVisible());

    QTest::keyClicks(Line(dialog, "txtProjectName"), m_project.Path("new.xml"));
    Press(dialog, "btnOk");

    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void tst_DialogNewProject::NeedsAProjectFileThatCanBeWritten()
{
    WriteBytes(m_project.Path("locked.xml"), "x");
    QFile::setPermissions(m_project.Path("locked.xml"), QFile::ReadOwner);
    DialogNewProject dialog;
    dialog.show();
    QTest::keyClicks(Line(dialog, "txtProjectName"), m_project.Path("locked.xml"));
    ModalAnswers answers;
    answers.AddButton("OK");
    QFile::setPermissions(m_project.Path("."), QFile::ReadOwner | QFile::WriteOwner |
                                                   QFile::ExeOwner | QFile::ExeGroup |
                                                   QFile::ExeOther);
    const NotRoot notRoot;

    Press(dialog, "btnOk");

    QCOMPARE(answers.Asked(), QStringList{"Dialog: Selected project file cannot be saved"});
    QVERIFY(dialog.isVisible());
}

void tst_DialogNewProject::Cancels()
{
    DialogNewProject dialog;
    dialog.show();
    QTest::keyClicks(Line(dialog, "txtProjectName"), m_project.Path("new.xml"));

    Press(dialog, "btnCancel");

    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
}

void tst_DialogNewProject::EnterPressesNoButton()
{
    DialogNewProject dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QTest::keyClicks(Line(dialog, "txtProjectName"), m_project.Path("new.xml"));
    const QWidget* first = QApplication::focusWidget();
    do {
        QWidget* focused = QApplication::focusWidget();
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            QTest::keyClick(focused, key);
            QVERIFY2(dialog.isVisible(), qPrintable(focused->objectName()));
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    } while (QApplication::focusWidget() != first);

    dialog.findChild<QWidget*>("btnOk")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);

    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void tst_DialogNewProject::TellsThatTheFolderHoldsAnotherProject_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("notice");

    const QByteArray project = "<qm-config><selected row='0'/><global></global></qm-config>";
    QTest::newRow("nothing") << "other.txt" << project << "";
    QTest::newRow("a project") << "other.xml" << project << "Folder in use: other.xml";
    QTest::newRow("the file itself") << "new.xml" << project << "Folder in use: new.xml";
    QTest::newRow("a damaged project")
        << "other.xml" << QByteArray("<qm-config><layers><") << "Folder in use: other.xml";
    QTest::newRow("flag types") << "areas.xml" << QByteArray("<areas><usages/></areas>") << "";
    QTest::newRow("a territory type")
        << "Deer.xml" << QByteArray("<territory-type name='Deer'/>") << "";
    QTest::newRow("no XML") << "other.xml" << QByteArray("\0\1", 2) << "";
    QTest::newRow("a bitmap") << "layers/red.tga" << QByteArray("x") << "Folder in use: 1 layer";
    QTest::newRow("no bitmap") << "layers/red.txt" << QByteArray("x") << "";
    QTest::newRow("a project below") << "below/other.xml" << project << "";
}

void tst_DialogNewProject::TellsThatTheFolderHoldsAnotherProject()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, notice);
    const ProjectFixture project;
    WriteBytes(project.Path(file), content);
    DialogNewProject dialog;
    dialog.show();
    const auto* label = dialog.findChild<QLabel*>("lblFolderNotice");
    QVERIFY(label->isHidden());

    QTest::keyClicks(Line(dialog, "txtProjectName"), project.Path("new.xml"));

    QCOMPARE(label->isVisible(), !notice.isEmpty());
    if (!notice.isEmpty()) {
        QCOMPARE(label->text(), notice);
    }
    Line(dialog, "txtProjectName")->setText(project.Path("empty/new.xml"));
    QVERIFY(label->isHidden());
    Line(dialog, "txtProjectName")->setText(project.Path("new.xml"));
    QCOMPARE(label->isVisible(), !notice.isEmpty());
    Line(dialog, "txtProjectName")->clear();
    QVERIFY(label->isHidden());
}

void tst_DialogNewProject::ClipsNothing_data()
{
    QTest::addColumn<int>("points");

    for (const int points : {9, 11, 14, 20}) {
        QTest::addRow("%d points", points) << points;
    }
}

void tst_DialogNewProject::ClipsNothing()
{
    QFETCH(int, points);
    const QFont usual = QApplication::font();
    QFont font = usual;
    font.setPointSize(points);
    QApplication::setFont(font);
    const auto restore = qScopeGuard([usual] { QApplication::setFont(usual); });
    DialogNewProject dialog;
    dialog.show();

    const QList<QWidget*> controls = dialog.findChildren<QWidget*>();
    QHash<const QWidget*, QRect> places;
    for (const QWidget* control : controls) {
        places.insert(control, control->geometry());
    }
    WriteBytes(m_project.Path("layers/red.tga"), "x");
    Line(dialog, "txtProjectName")->setText(m_project.Path("new.xml"));
    const auto* notice = dialog.findChild<QLabel*>("lblFolderNotice");
    QTRY_VERIFY(notice->height() >= notice->minimumSizeHint().height());

    QCOMPARE(dialog.size(), QSize(340, 200));
    QVERIFY(dialog.fontInfo().pointSize() <= points);
    for (const QWidget* control : controls) {
        const bool isOwn =
            qobject_cast<const QPushButton*>(control) || qobject_cast<const QLabel*>(control) ||
            qobject_cast<const QLineEdit*>(control) || qobject_cast<const QSpinBox*>(control);
        const QSize smallest = control->minimumSizeHint();
        if (isOwn && !control->objectName().startsWith(QLatin1String("qt_"))) {
            QVERIFY2(control->width() >= smallest.width(), qPrintable(control->objectName()));
            QVERIFY2(control->height() >= smallest.height(), qPrintable(control->objectName()));
            // The notice moves nothing.
            QVERIFY2(control == notice || control->geometry() == places.value(control),
                     qPrintable(control->objectName()));
        }
    }
}

QTEST_MAIN(tst_DialogNewProject)
#include "tst_DialogNewProject.moc"
