#pragma once

#include <QString>

class QDir;

/// The picture's path as a project in the folder stores it: relative, with "/", and the bare name
/// where the picture lies beside the document. Links to folders are followed where ".." would
/// otherwise lead elsewhere. A picture that does not exist is named too.
QString BackgroundFileFrom(const QDir& folder, const QString& picture);

/// Takes the open project's background picture along into another folder, to the same place below
/// it, as far as that destroys nothing: outside the folder an existing file is never replaced.
/// Where the picture does not get there, backgroundFile is changed to name the old one as seen from
/// the new folder. The project's folder is still the old one.
void CarryBackgroundTo(const QDir& folder);
