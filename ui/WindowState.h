#pragma once

class QMainWindow;

/// Where the main window and its docks stood when it was last closed, and the folder of the project
/// that was open, kept in the user's settings.
namespace WindowState {

/// What was never stored, does not fit this program or would leave the window off every screen is
/// passed over. Without a stored folder the project's becomes the working directory.
void Restore(QMainWindow& window);
void Store(const QMainWindow& window);

} // namespace WindowState
