#pragma once

#include <QDockWidget>

class Document;
class MainView;

/// The dock that shows the whole map small, with a frame around the part that the view shows. A
/// click or a drag in it moves the view.
class DockOverview : public QDockWidget
{
    Q_OBJECT

public:
    /// document, view: of the map; both outlive the dock.
    DockOverview(Document& document, MainView& view, QWidget* parent = nullptr);

signals:
    /// The user pressed the button in the map, and the view is about to move there.
    void AboutToJump();
};
