#pragma once

#include "app/Log.h"

#include <QDockWidget>
#include <QElapsedTimer>
#include <QStandardItemModel>
#include <QTimer>

#include <memory>

namespace Ui {
class DockStatus;
}

/// The dock that lists every message since the start, coloured by type, and shows a progress bar
/// while long work runs.
class DockStatus : public QDockWidget
{
    Q_OBJECT

public:
    explicit DockStatus(QWidget* parent = nullptr);
    ~DockStatus() override;
    Q_DISABLE_COPY(DockStatus)

    /// Makes the progress bar run without an end. This and the next function process events once.
    void SetBusy();
    void SetProgressVisible(bool isVisible);
    /// Whether the user can see the bar. False while the dock is hidden or behind another one.
    bool IsProgressOnScreen() const;

public slots:
    /// Appends one line.
    void AddMessage(const QString& content, Log::MessageType type);

private:
    void ShowContextMenu(const QPoint& position);
    void CopyAll() const;
    void ShowInTime(Log::MessageType type);
    void ShowFrame();

    class LineDelegate;

    std::unique_ptr<Ui::DockStatus> m_ui;
    QStandardItemModel m_model;
    /// Runs between two repaints of the list. Repainting after each message would take longer than
    /// the work that the messages report.
    QTimer m_frame;
    /// The time since an Info was last painted.
    QElapsedTimer m_sinceInfo;
    bool m_isAtEnd = true;
    LineDelegate* m_delegate;
};
