#pragma once

class QDir;

/// Takes the open project's background picture along into another folder, to the same place below
/// it, as far as that destroys nothing: outside the folder an existing file is never replaced.
/// Where the picture does not get there, backgroundFile is changed to name the old one as seen from
/// the new folder. The project's folder is still the old one.
void CarryBackgroundTo(const QDir& folder);
