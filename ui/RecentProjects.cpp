#include "ui/RecentProjects.h"

#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSettings>

#include <algorithm>
#include <utility>

namespace {

constexpr int MostProjects = 10;

/// Not the settings of the window, which are written only when it is closed.
QSettings Settings()
{
    return QSettings(QStringLiteral("Halvern Works"), QStringLiteral("Quillmap"));
}

const QString PathsKey = QStringLiteral("recentProjects");

QStringList StoredPaths()
{
    QStringList paths = Settings().value(PathsKey).toStringList();
    paths.removeAll(QString());
    paths.removeDuplicates();
    return paths.mid(0, MostProjects);
}

QString Label(const QString& path, int folders)
{
    const QString name = path.section(QLatin1Char('/'), -1);
    const QString folder = path.section(QLatin1Char('/'), -1 - folders, -2);
    return folders == 0 ? name : QStringLiteral("%1 (%2)").arg(name, folder);
}

} // namespace

RecentProjects::RecentProjects(QMenu& menu, std::function<void(const QString&)> open)
    : m_menu(menu)
    , m_open(std::move(open))
{
    connect(&menu, &QMenu::triggered, this,
            [this](const QAction* action) { m_open(action->data().toString()); });
    // Other windows store projects too, and files come and go.
    connect(&menu, &QMenu::aboutToShow, this, &RecentProjects::Fill);
    Fill();
}

void RecentProjects::Add(const QString& path)
{
    const QString clean = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    QStringList paths = StoredPaths();
    paths.removeAll(clean);
    paths.prepend(clean);
    {
        // They are written when the object dies.
        QSettings settings = Settings();
        settings.setValue(PathsKey, QStringList(paths.mid(0, MostProjects)));
    }
    Fill();
}

QStringList RecentProjects::Labels(const QStringList& paths)
{
    QStringList labels;
    for (const QString& path : paths) {
        int folders = 0;
        const auto isLike = [&](const QString& other) {
            return other != path && Label(other, folders) == Label(path, folders);
        };
        while (std::any_of(paths.begin(), paths.end(), isLike)) {
            ++folders;
        }
        labels.append(Label(path, folders));
    }
    return labels;
}

void RecentProjects::Fill()
{
    const QList<QAction*> old = m_menu.actions();
    for (QAction* action : old) {
        // The load that fills the menu anew may be what this one is doing.
        m_menu.removeAction(action);
        action->deleteLater();
    }
    const QStringList paths = StoredPaths();
    const QStringList labels = Labels(paths);
    for (int i = 0; i < paths.size(); ++i) {
        QAction* action =
            m_menu.addAction(QString(labels[i]).replace(QLatin1Char('&'), QLatin1String("&&")));
        action->setData(paths[i]);
        action->setToolTip(QDir::toNativeSeparators(paths[i]));
        action->setEnabled(QFileInfo(paths[i]).isFile());
    }
    if (paths.isEmpty()) {
        m_menu.addAction(tr("Empty"))->setEnabled(false);
    }
}
