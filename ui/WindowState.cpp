#include "ui/WindowState.h"

#include "app/ProjectSettings.h"

#include <QApplication>
#include <QDockWidget>
#include <QGuiApplication>
#include <QLayout>
#include <QMainWindow>
#include <QScreen>
#include <QSettings>
#include <QVector>

#include <algorithm>

namespace {

constexpr int StateVersion = 0;
/// What a window system usually adds around a window. How much it is, is known only when the window
/// is shown.
constexpr QSize Frame(4, 30);

/// The docks on the side of this one that are seen and are no tabs beside it.
QVector<QDockWidget*> OthersBeside(const QMainWindow& window, QDockWidget& dock)
{
    const QList<QDockWidget*> tabs = window.tabifiedDockWidgets(&dock);
    QVector<QDockWidget*> others;
    const QList<QDockWidget*> docks = window.findChildren<QDockWidget*>();
    for (QDockWidget* other : docks) {
        if (other != &dock && other->isVisible() && !other->isFloating() &&
            window.dockWidgetArea(other) == window.dockWidgetArea(&dock) && !tabs.contains(other)) {
            others.append(other);
        }
    }
    return others;
}

/// The dock takes the focus along.
void Float(QDockWidget& dock)
{
    QWidget* focus =
        dock.isAncestorOf(QApplication::focusWidget()) ? QApplication::focusWidget() : nullptr;
    dock.setFloating(true);
    if (focus) {
        dock.activateWindow();
        focus->setFocus();
    }
}

/// Puts a floating dock over the lower right corner of the window.
void PutInside(const QRect& window, QDockWidget& dock)
{
    constexpr int margin = 20;
    const QRect inside = window.adjusted(margin, margin, -margin, -margin);
    dock.resize(
        QSize(inside.width() * 2 / 3, inside.height() / 3).expandedTo(dock.minimumSizeHint()));
    dock.move(inside.bottomRight() - QPoint(dock.width(), dock.height()));
}

bool IsOnScreen(const QRect& rect)
{
    constexpr int grip = 50;
    const QList<QScreen*> screens = QGuiApplication::screens();
    for (const QScreen* screen : screens) {
        const QRect common = screen->availableGeometry() & rect;
        if (common.width() >= grip && common.height() >= grip) {
            return true;
        }
    }
    return false;
}

void RestoreGeometry(QMainWindow& window, const QByteArray& geometry)
{
    const QRect before = window.geometry();
    if (!window.restoreGeometry(geometry) || !IsOnScreen(window.geometry())) {
        window.setGeometry(before);
    }
}

void RestoreDocks(QMainWindow& window, const QByteArray& state)
{
    const QByteArray before = window.saveState(StateVersion);
    if (!window.restoreState(state, StateVersion)) {
        window.restoreState(before, StateVersion);
    }
}

} // namespace

namespace WindowState {

void FitScreen(QMainWindow& window)
{
    const QRect screen = window.screen()->availableGeometry();
    const QPoint end = screen.bottomRight() + QPoint(1, 1);
    const QSize smallest = window.minimumSizeHint() + Frame;
    window.move(qMax(screen.left(), qMin(window.x(), end.x() - smallest.width())),
                qMax(screen.top(), qMin(window.y(), end.y() - smallest.height())));
    const QPoint room = end - window.pos();
    window.resize(window.size().boundedTo(QSize(room.x(), room.y()) - Frame));
}

void MaximizeIfTooLarge(QMainWindow& window)
{
    const QSize smallest = window.minimumSizeHint() + Frame;
    const QSize room = window.screen()->availableGeometry().size();
    if (smallest.width() > room.width() || smallest.height() > room.height()) {
        window.setWindowState(window.windowState() | Qt::WindowMaximized);
    }
}

void MakeRoom(QMainWindow& window, QDockWidget& opened, const QSize& room)
{
    // A screen of 1366 x 768 pixels without the bars of its desktop.
    constexpr QSize smallest(1360, 680);
    const auto isTooLarge = [&window, &room] {
        const QSize size = window.minimumSizeHint() + Frame;
        return size.width() > room.width() || size.height() > room.height();
    };
    if (room.width() < smallest.width() || room.height() < smallest.height() || !isTooLarge()) {
        return;
    }
    const Qt::DockWidgetArea side = window.dockWidgetArea(&opened);
    while (isTooLarge() && opened.isVisible() && !opened.isFloating()) {
        const QVector<QDockWidget*> others = OthersBeside(window, opened);
        const bool areStacked = side == Qt::LeftDockWidgetArea || side == Qt::RightDockWidgetArea;
        if (!areStacked || others.isEmpty()) {
            Float(opened);
            break;
        }
        QDockWidget* tallest =
            *std::max_element(others.cbegin(), others.cend(), [](auto* first, auto* second) {
                return first->minimumSizeHint().height() < second->minimumSizeHint().height();
            });
        // The second goes to the place of the first, and leaves its own tabs.
        if (window.tabifiedDockWidgets(&opened).isEmpty()) {
            window.tabifyDockWidget(tallest, &opened);
        } else {
            window.tabifyDockWidget(&opened, tallest);
        }
        opened.raise();
    }
    // The window grew for the dock.
    window.layout()->activate();
    if (!window.isMaximized() && !window.isFullScreen()) {
        window.resize(window.size().boundedTo(room - Frame));
    }
    if (opened.isFloating()) {
        PutInside(window.geometry(), opened);
    }
}

void KeepOnScreen(QMainWindow& window)
{
    if (window.isMaximized() || window.isFullScreen()) {
        return;
    }
    // A window may stand on several screens.
    const QRect room = window.screen()->availableVirtualGeometry();
    const QRect frame = window.frameGeometry();
    const QPoint last = room.bottomRight() - QPoint(frame.width() - 1, frame.height() - 1);
    // If the window is larger than the screen, its upper left corner stays visible.
    const QPoint place(qMax(room.left(), qMin(frame.left(), last.x())),
                       qMax(room.top(), qMin(frame.top(), last.y())));
    if (place != frame.topLeft()) {
        window.move(place);
    }
}

void Restore(QMainWindow& window)
{
    QSettings settings(QStringLiteral("Halvern Works"), QStringLiteral("Tarvo Tools"));
    settings.beginGroup(QStringLiteral("Brantle"));
    if (settings.contains(QStringLiteral("geometry"))) {
        RestoreGeometry(window, settings.value(QStringLiteral("geometry")).toByteArray());
    }
    if (settings.contains(QStringLiteral("windowState"))) {
        RestoreDocks(window, settings.value(QStringLiteral("windowState")).toByteArray());
    }
    const QString path = settings.value(QStringLiteral("path")).toString();
    ProjectSettings::Instance().SetDir(settings.contains(QStringLiteral("path")) ? QDir(path)
                                                                                 : QDir::current());
}

void Store(const QMainWindow& window)
{
    QSettings settings(QStringLiteral("Halvern Works"), QStringLiteral("Tarvo Tools"));
    settings.beginGroup(QStringLiteral("Brantle"));
    settings.setValue(QStringLiteral("geometry"), window.saveGeometry());
    settings.setValue(QStringLiteral("windowState"), window.saveState(StateVersion));
    settings.setValue(QStringLiteral("path"), ProjectSettings::Instance().Dir().absolutePath());
}

} // namespace WindowState
