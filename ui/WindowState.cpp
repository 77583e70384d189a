#include "ui/WindowState.h"

#include "app/ProjectSettings.h"

#include <QGuiApplication>
#include <QMainWindow>
#include <QScreen>
#include <QSettings>

namespace {

constexpr int StateVersion = 0;

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
    ProjectSettings::Instance().projectDir =
        settings.contains(QStringLiteral("path")) ? QDir(path) : QDir::current();
}

void Store(const QMainWindow& window)
{
    QSettings settings(QStringLiteral("Halvern Works"), QStringLiteral("Tarvo Tools"));
    settings.beginGroup(QStringLiteral("Brantle"));
    settings.setValue(QStringLiteral("geometry"), window.saveGeometry());
    settings.setValue(QStringLiteral("windowState"), window.saveState(StateVersion));
    settings.setValue(QStringLiteral("path"),
                      ProjectSettings::Instance().projectDir.absolutePath());
}

} // namespace WindowState
