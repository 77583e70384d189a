#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

/// A place of the world with a name.
struct Bookmark
{
    QString name;
    /// X and Z in metres.
    QPointF place;
    /// View pixels for each layer pixel.
    float zoom = 1;
};

/// The bookmarks of the open project. They are kept in the user's settings, by the path of the
/// project's document, and never in the project. Those of a project that no file holds last until
/// it is saved, and then belong to that file.
class Bookmarks
{
public:
    /// The project's document, or an empty path when no file holds the project. Another path that
    /// follows a path takes the bookmarks along, as a save elsewhere does. Those of a project that
    /// no file held are added to what the path has.
    void Follow(const QString& path);
    /// Removes what the path of a document has, because another project begins there.
    static void Discard(const QString& path);
    /// The project goes.
    void Forget();

    /// In the order in which they were added. Settings that are damaged are left out.
    QVector<Bookmark> All() const;
    /// A name that is in use gets a number: "Harbour (2)".
    void Add(Bookmark bookmark);
    void Remove(const QString& name);

private:
    void Store(const QVector<Bookmark>& bookmarks);

    QString m_path;
    QVector<Bookmark> m_unsaved;
};
