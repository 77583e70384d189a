#include "ui/FileDialogs.h"

#include "tests/support/Files.h"
#include "tests/support/Forms.h"
#include "tests/support/Modals.h"
#include "tests/support/ProjectFixture.h"

#include <QAbstractButton>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

Q_DECLARE_METATYPE(FilePurpose)

class tst_FileDialogs : public QObject
{
    Q_OBJECT

private slots:
    void HasTextsAndIcon_data();
    void HasTextsAndIcon();
    void GivesTheChosenFile();
    void GivesNothingWhenCancelled();
    void AddsTheSuffixBeforeItAsks();
    void SelectsTheProjectToBeSaved();
    void AsksYesOrNo_data();
    void AsksYesOrNo();
    void TakesKeysForAnswers_data();
    void TakesKeysForAnswers();

private:
    ProjectFixture m_project;
    QWidget m_parent;
};

void tst_FileDialogs::HasTextsAndIcon_data()
{
    QTest::addColumn<FilePurpose>("purpose");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<bool>("isSave");

    QTest::newRow("load") << FilePurpose::LoadProject << "Load"
                          << "XML file (*.xml)"
                          << ":/icon-open" << false;
    QTest::newRow("save") << FilePurpose::SaveProject << "Save"
                          << "XML file (*.xml)"
                          << ":/icon-save" << true;
    QTest::newRow("background") << FilePurpose::BackgroundPicture << "Load background image"
                                << "Images (*.png *.bmp *.jpg)"
                                << ":/icon-world" << false;
    QTest::newRow("flag types") << FilePurpose::AreaFlagTypes << "Import area flag types"
                                << "XML file (*.xml)"
                                << ":/icon-areas" << false;
    QTest::newRow("map") << FilePurpose::AreaMap << "Import area map"
                         << "Map file (*.map)"
                         << ":/icon-import" << false;
}

void tst_FileDialogs::HasTextsAndIcon()
{
    QFETCH(FilePurpose, purpose);
    QFETCH(QString, title);
    QFETCH(QString, filter);
    QFETCH(QString, icon);
    QFETCH(bool, isSave);
    ModalAnswers answers;
    answers.Add([&](QWidget& widget) {
        auto* dialog = qobject_cast<QFileDialog*>(&widget);
        QVERIFY(dialog);
        QCOMPARE(dialog->windowTitle(), title);
        QCOMPARE(dialog->nameFilters(), QStringList{filter});
        QCOMPARE(IconPath(dialog->windowIcon()), icon);
        QCOMPARE(dialog->acceptMode(), isSave ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        QCOMPARE(dialog->fileMode(), isSave ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
        QVERIFY(dialog->testOption(QFileDialog::DontUseNativeDialog));
        QCOMPARE(dialog->directory().absolutePath(),
                 ProjectSettings::Instance().Dir().absolutePath());
        QCOMPARE(dialog->parentWidget(), &m_parent);
        dialog->close();
    });

    QCOMPARE(AskForFile(&m_parent, purpose), QString());
}

void tst_FileDialogs::GivesTheChosenFile()
{
    WriteBytes(m_project.Path("world.png"), "x");
    ModalAnswers answers;
    answers.AddFile("world.png");

    QCOMPARE(AskForFile(&m_parent, FilePurpose::BackgroundPicture), m_project.Path("world.png"));
}

void tst_FileDialogs::GivesNothingWhenCancelled()
{
    ModalAnswers answers;
    answers.AddCancel();

    QCOMPARE(AskForFile(&m_parent, FilePurpose::SaveProject), QString());
}

void tst_FileDialogs::AddsTheSuffixBeforeItAsks()
{
    WriteBytes(m_project.Path("taken.xml"), "x");
    ModalAnswers answers;
    answers.AddFile("taken");
    answers.AddButton("Yes");

    QCOMPARE(AskForFile(&m_parent, FilePurpose::SaveProject), m_project.Path("taken.xml"));
    QCOMPARE(answers.Asked().size(), 2);
    QVERIFY(answers.Asked().constLast().contains("taken.xml already exists."));
}

void tst_FileDialogs::SelectsTheProjectToBeSaved()
{
    ModalAnswers answers;
    answers.Add([](QWidget& widget) { qobject_cast<QDialog*>(&widget)->accept(); });

    QCOMPARE(AskForFile(&m_parent, FilePurpose::SaveProject), m_project.Path("project.xml"));
}

void tst_FileDialogs::AsksYesOrNo_data()
{
    QTest::addColumn<bool>("isYes");

    QTest::newRow("yes") << true;
    QTest::newRow("no") << false;
}

void tst_FileDialogs::AsksYesOrNo()
{
    QFETCH(bool, isYes);
    ModalAnswers answers;
    answers.Add([&](QWidget& widget) {
        auto* box = qobject_cast<QMessageBox*>(&widget);
        QVERIFY(box);
        QCOMPARE(box->icon(), QMessageBox::Question);
        QCOMPARE(box->standardButtons(), QMessageBox::Yes | QMessageBox::No);
        box->button(isYes ? QMessageBox::Yes : QMessageBox::No)->click();
    });

    QCOMPARE(AskYesNo(&m_parent, "Title", "Text?"), isYes);
    QCOMPARE(answers.Asked(), QStringList{"Title: Text?"});
}

void tst_FileDialogs::TakesKeysForAnswers_data()
{
    using Keys = QVector<Qt::Key>;
    QTest::addColumn<Keys>("withoutEffect");
    QTest::addColumn<Qt::Key>("answer");
    QTest::addColumn<bool>("isYes");

    QTest::newRow("Esc") << Keys{} << Qt::Key_Escape << false;
    QTest::newRow("Enter, Esc") << Keys{Qt::Key_Return, Qt::Key_Enter} << Qt::Key_Escape << false;
    QTest::newRow("Space") << Keys{} << Qt::Key_Space << false;
    QTest::newRow("Tab, Space") << Keys{Qt::Key_Tab} << Qt::Key_Space << true;
    QTest::newRow("Enter on Yes, Space")
        << Keys{Qt::Key_Tab, Qt::Key_Return, Qt::Key_Enter} << Qt::Key_Space << true;
    QTest::newRow("Enter on Yes, Tab, Space")
        << Keys{Qt::Key_Tab, Qt::Key_Return, Qt::Key_Tab} << Qt::Key_Space << false;
}

void tst_FileDialogs::TakesKeysForAnswers()
{
    QFETCH(QVector<Qt::Key>, withoutEffect);
    QFETCH(Qt::Key, answer);
    QFETCH(bool, isYes);
    ModalAnswers answers;
    answers.Add([&](QWidget& box) {
        QVERIFY(QTest::qWaitForWindowActive(&box));
        for (const Qt::Key key : qAsConst(withoutEffect)) {
            QTest::keyClick(box.focusWidget(), key);
            QVERIFY(box.isVisible());
            const QList<QPushButton*> buttons = box.findChildren<QPushButton*>();
            for (const QPushButton* button : buttons) {
                QVERIFY2(!button->isDefault(), qPrintable(button->text()));
            }
        }
        QTest::keyClick(box.focusWidget(), answer);
        QVERIFY(!box.isVisible());
    });

    QCOMPARE(AskYesNo(&m_parent, "Title", "Text?"), isYes);
}

QTEST_MAIN(tst_FileDialogs)
#include "tst_FileDialogs.moc"
