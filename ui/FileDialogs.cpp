#include "ui/FileDialogs.h"

#include "app/ProjectSettings.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QIcon>
#include <QMessageBox>
#include <QPushButton>

namespace {

struct DialogTexts
{
    const char* title = nullptr;
    const char* filter = nullptr;
    const char* icon = nullptr;
    /// What a file for writing gets if it has none; null for files for reading.
    const char* suffix = nullptr;
};

DialogTexts TextsFor(FilePurpose purpose)
{
    switch (purpose) {
    case FilePurpose::LoadProject:
        return {QT_TRANSLATE_NOOP("FileDialogs", "Load"),
                QT_TRANSLATE_NOOP("FileDialogs", "XML file (*.xml)"), ":/icon-open"};
    case FilePurpose::SaveProject:
        return {QT_TRANSLATE_NOOP("FileDialogs", "Save"),
                QT_TRANSLATE_NOOP("FileDialogs", "XML file (*.xml)"), ":/icon-save", "xml"};
    case FilePurpose::BackgroundPicture:
        return {QT_TRANSLATE_NOOP("FileDialogs", "Load background image"),
                QT_TRANSLATE_NOOP("FileDialogs", "Images (*.png *.bmp *.jpg)"), ":/icon-world"};
    case FilePurpose::AreaFlagTypes:
        return {QT_TRANSLATE_NOOP("FileDialogs", "Import area flag types"),
                QT_TRANSLATE_NOOP("FileDialogs", "XML file (*.xml)"), ":/icon-areas"};
    case FilePurpose::AreaMap:
        return {QT_TRANSLATE_NOOP("FileDialogs", "Import area map"),
                QT_TRANSLATE_NOOP("FileDialogs", "Map file (*.map)"), ":/icon-import"};
    case FilePurpose::ZonesImport:
        return {QT_TRANSLATE_NOOP("FileDialogs", "Import table"),
                QT_TRANSLATE_NOOP("FileDialogs", "Tables (*.csv *.tsv *.json)"), ":/icon-import"};
    case FilePurpose::ZonesExport:
        return {QT_TRANSLATE_NOOP("FileDialogs", "Export table"),
                QT_TRANSLATE_NOOP("FileDialogs", "CSV file (*.csv)"), ":/icon-export", "csv"};
    case FilePurpose::SaveNumbers:
        return {QT_TRANSLATE_NOOP("FileDialogs", "Save numbers"),
                QT_TRANSLATE_NOOP("FileDialogs", "CSV file (*.csv)"), ":/icon-save", "csv"};
    }
    Q_UNREACHABLE();
}

} // namespace

QString AskForFile(QWidget* parent, FilePurpose purpose)
{
    const DialogTexts texts = TextsFor(purpose);
    const ProjectSettings& settings = ProjectSettings::Instance();
    QFileDialog dialog(parent, QCoreApplication::translate("FileDialogs", texts.title), QString(),
                       QCoreApplication::translate("FileDialogs", texts.filter));
    dialog.setWindowIcon(QIcon(QLatin1String(texts.icon)));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setDirectory(settings.Dir());
    if (texts.suffix) {
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setDefaultSuffix(QLatin1String(texts.suffix));
        if (purpose == FilePurpose::SaveProject) {
            dialog.selectFile(settings.FileName());
        }
    } else {
        dialog.setFileMode(QFileDialog::ExistingFile);
    }
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return {};
    }
    return dialog.selectedFiles().constFirst();
}

QString AskForFolder(QWidget* parent, const QString& title)
{
    QFileDialog dialog(parent, title, ProjectSettings::Instance().Dir().path());
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

bool AskYesNo(QWidget* parent, const QString& title, const QString& text)
{
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No, parent);
    box.setEscapeButton(QMessageBox::No);
    const QList<QPushButton*> buttons = box.findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        // Without a default button Qt takes the first one that may become the default.
        button->setAutoDefault(false);
    }
    // The space bar presses the button that has the focus.
    box.button(QMessageBox::No)->setFocus();
    return box.exec() == QMessageBox::Yes;
}
