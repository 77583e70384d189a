#pragma once

#include <QDockWidget>

class Document;

/// The dock that lists the steps of the history, the oldest first. A click goes to the state after
/// a step.
class DockHistory : public QDockWidget
{
    Q_OBJECT

public:
    /// document: the project; it outlives the dock.
    explicit DockHistory(Document& document, QWidget* parent = nullptr);
};
