#pragma once

class QDockWidget;
class QMainWindow;
class QSize;

/// Where the main window and its docks stand on the screen, and where they stood when it was last
/// closed. That and the folder of the project that was open are kept in the user's settings.
namespace WindowState {

/// Makes a window that is not shown yet smaller where it would reach over the right or lower edge
/// of its screen; where its smallest size does not fit there, moves it left or up.
void FitScreen(QMainWindow& window);
/// Maximises a window whose smallest size, with the docks that are open, does not fit the screen.
void MaximizeIfTooLarge(QMainWindow& window);
/// For a dock that was just opened. Where the window with its frame would be larger than the room,
/// the dock becomes a tab of another one on its side, or floats at the lower edge of the window. In
/// a room that is too small for the window with any docks, nothing changes.
void MakeRoom(QMainWindow& window, QDockWidget& opened, const QSize& room);
/// Moves a shown window back where it reaches over an edge of the screens.
void KeepOnScreen(QMainWindow& window);

/// Ignores what was never stored, does not fit this program, or would leave the window off every
/// screen. Without a stored folder the project's folder becomes the working directory.
void Restore(QMainWindow& window);
void Store(const QMainWindow& window);

} // namespace WindowState
