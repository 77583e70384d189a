#pragma once

#include <QString>

class QWidget;

/// The purpose of a file dialog.
enum class FilePurpose
{
    LoadProject,
    SaveProject,
    BackgroundPicture,
    AreaFlagTypes,
    AreaMap,
    ZonesImport,
    ZonesExport,
    /// A table as CSV.
    SaveNumbers,
};

/// Asks for a file, starting in the project's folder. Returns an empty path if the user cancels.
/// Files for reading exist. A file for saving gets the suffix of its kind if it has none; for an
/// existing file the dialog asks before it accepts.
QString AskForFile(QWidget* parent, FilePurpose purpose);

/// Asks for a folder, starting in the project's. Returns an empty path if the user cancels.
QString AskForFolder(QWidget* parent, const QString& title);

/// Whether the user answers Yes. Enter answers nothing, because a Yes may throw work away. Esc is
/// No, which also has the focus at first.
bool AskYesNo(QWidget* parent, const QString& title, const QString& text);
