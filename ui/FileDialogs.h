#pragma once

#include <QString>

class QWidget;

/// What a file is asked for.
enum class FilePurpose
{
    LoadProject,
    SaveProject,
    BackgroundPicture,
    AreaFlagTypes,
    AreaMap,
};

/// Asks for a file, starting in the project's folder; empty when the user cancels. Files to be read
/// exist. A project to be saved gets the suffix "xml" when it has none, and the user was asked
/// before an existing file is given.
QString AskForFile(QWidget* parent, FilePurpose purpose);

/// Whether the user answers Yes. Enter answers nothing, because a Yes may throw work away. Esc is
/// No, which also has the focus at first.
bool AskYesNo(QWidget* parent, const QString& title, const QString& text);
