#pragma once

class QString;

/// Removes what killed programs left hidden in a folder; files that were to take their places
/// together get there, or back, wherever they are. What a living program makes is left alone, and
/// so is what other users made. Failures are passed over: the next one tries again.
void TidyFolder(const QString& folder);
/// The same for the folder of a file that is to be read, or of what it leads to. The file need not
/// exist.
void TidyFolderOf(const QString& file);
