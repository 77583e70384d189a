#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

class QMenu;

/// The menu with the projects that were loaded or saved last, newest first. The user's settings
/// keep their paths, for all windows and sessions.
class RecentProjects : public QObject
{
public:
    /// open: called with the absolute path of the project that the user chose.
    RecentProjects(QMenu& menu, std::function<void(const QString&)> open);

    /// Puts the project first, and stores that at once. The oldest one of more than ten is dropped.
    void Add(const QString& path);

    /// The file names of the paths, which differ. Equal names get as many folders as tell them
    /// apart: "highlands.xml (old)".
    static QStringList Labels(const QStringList& paths);

private:
    void Fill();

    QMenu& m_menu;
    std::function<void(const QString&)> m_open;
};
